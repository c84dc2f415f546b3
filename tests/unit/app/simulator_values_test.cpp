// Values of a simulator in the names of the design: before and after a run, at any place of the
// scale, of whatever deck the simulator was given.
#include <algorithm>
#include <iterator>
#include <set>

#include "app/language/answers.h"
#include "app/values/bits.h"
#include "app/values/condition.h"
#include "app/values/text_room.h"
#include "gx/db/place/geometry.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/viewport_coords.h"
#include "gx/display/viewports.h"
#include "tests/support/counting_screen.h"
#include "tests/support/design_session.h"
#include "tests/support/raw_results.h"

namespace {

// A block twice, U1 without the X that a netlist puts before it; VDD is a global.
constexpr char simulated[] = R"(
symbol mos
  pin D 0,0 IN
  pin G 2,0 OUT
  prop CLASS=M
symbol vdd
  pin A 0,0 IO
  prop CLASS=G
symbol cell
  pin A 0,0 IN
  pin Y 4,0 OUT
symbol in
  pin A 0,0 OUT
  prop CLASS=PORTIN
sheet top
  part XR cell 5,5
  part U1 cell 15,5
  part M1 mos 25,5
  part Q1 mos 35,5 slot=2
  part Q1~2 mos 45,5 slot=1
  global VDD vdd 2,2
  net A
    wire XR.A 5,3 15,3 U1.A
  net Q
    wire XR.Y 9,7 19,7 U1.Y
  net VDD
    wire VDD M1.D
sheet cell
  port A in 2,5
  part M1 mos 8,5
  part M2 mos 14,5
  global VDD vdd 20,2
  net N
    wire M1.G 10,7 14,7 M2.D
  net VDD
    wire VDD 20,7 16,7 M2.G
  net A
    wire A M1.D
)";

class Values : public ::testing::Test {
 protected:
  void SetUp() override { write({}); }
  // Two points, 0 and 10n; the value of variable i goes from i to 2 * i.
  void write(const std::vector<std::string>& more) {
    std::vector<std::string> variables{"time\ttime", "v(a)\tvoltage"};
    variables.insert(variables.end(), more.begin(), more.end());
    std::string bytes = raw_header("Transient Analysis", "real", "0", variables);
    for (const double row : {0.0, 1.0}) {
      bytes += double_bytes({row * 1e-8});
      for (std::size_t i = 1; i < variables.size(); ++i) {
        bytes += double_bytes({static_cast<double>(i) * (1 + row)});
      }
    }
    s.directory().write("a.raw", bytes);
  }
  lines_t run(std::string_view command) { return s.run(command); }
  std::string first(std::string_view command) {
    const auto lines = run(command);
    return lines.empty() ? "" : lines.front();
  }
  void expand() {
    for (const char* command : {"primitive class", "property instance s inst", "property pin s pin",
                                "property net s net", "run"}) {
      run(command);
    }
  }
  design_session s{simulated};
};

TEST_F(Values, NamesOfEveryDeckMeetTheDesignBeforeAndAfterARun) {
  write({"v(r:n)\tvoltage", "v(xu1.n)\tvoltage", "@m.xr.m1[gm]\tadmittance",
         "i(@m.xu1.xm2.msky130_fd_pr__nfet_01v8[id])\tcurrent", "V(VDD)\tvoltage",
         "v(nowhere.n)\tvoltage", "@m.x9.m1[gm]\tadmittance", "ID(M1)\tdevice_current"});
  for (const bool is_expanded : {false, true}) {
    if (is_expanded) expand();
    EXPECT_EQ(run("values file a.raw"),
              (lines_t{"# ngspice : Transient Analysis, plot 1 of 1",
                       "# 2 points, time from 0 s to 10 ns",
                       "# names : 4 of nets, 3 of devices, 2 of nothing", " VALues FILe a.raw "}));
    EXPECT_EQ(first("values net /xr/n"), "# /XR/N : 2 V at 0");
    EXPECT_EQ(first("values net u1.n at 5n"), "# /U1/N : 4.5 V at 5n");
    EXPECT_EQ(first("values net /xr/a at 10n"), "# /A : 2 V at 10n");  // its net at the top
    EXPECT_EQ(first("values net /xr/vdd"), first("values net /vdd"));
    EXPECT_EQ(first("values device xr.m1"), "# /XR/M1 : gm 4 S at 0");
    EXPECT_EQ(first("values device u1.m2 at 10n"), "# /U1/M2 : id 10 A at 10n");
    EXPECT_EQ(first("values device /m1"), "# /M1 : id 9 A at 0");
    EXPECT_EQ(first("values device xr.m2"), "# /XR/M2 : no value");
    EXPECT_EQ(run("values check"),
              (lines_t{"# meets nothing : v(nowhere.n)", "# meets nothing : @m.x9.m1[gm]",
                       "# no value : /Q", "# 2 names that meet nothing, 1 nets without a value",
                       " VALues CHEck "}));
  }
}

TEST_F(Values, APartOfAPackageIsFoundByItsSlot) {
  write({"@q1.1[gm]\tadmittance", "@q1.2[gm]\tadmittance", "@q1.3[gm]\tadmittance"});
  run("property instance s slot");
  expand();
  run("values file a.raw");
  EXPECT_EQ(first("values device q1~2"), "# /Q1~2 : gm 2 S at 0");
  EXPECT_EQ(first("values device q1"), "# /Q1 : gm 3 S at 0");
  EXPECT_EQ(first("values check"), "# meets nothing : @q1.3[gm]");
}

TEST_F(Values, WhatIsSelectedIsAskedForOnTheSheetThatOneHasWalkedTo) {
  write({"v(r:n)\tvoltage", "v(xu1.n)\tvoltage", "@m.xu1.m1[gm]\tadmittance"});
  run("values file a.raw");
  run("view down U1");
  run("select object edit N_" + std::to_string(s.net("N")));
  EXPECT_EQ(first("values net"), "# /U1/N : 3 V at 0");
  run("select object edit I_" + std::to_string(s.inst("M1")));
  EXPECT_EQ(first("values device at 10n"), "# /U1/M1 : gm 8 S at 10n");
  run("unselect all");
  EXPECT_EQ(run("values device").back(), "# !! Error : No DEVICE selected ? ");
}

TEST_F(Values, TheScaleHasEndsAndCrossingsAreFound) {
  EXPECT_EQ(run("values at 5n"), (lines_t{"# VALues AT 5n ", "# !! Error : No results open ? "}));
  run("values file a.raw");
  EXPECT_EQ(run("values at 5ns"), lines_t{" VALues AT 5 ns "});
  EXPECT_EQ(run("values at 11n").back(), "# !! Error : Not from 0 s to 10 ns ? ");
  EXPECT_EQ(run("values at 5_0").back(), "# !! Error : Number invalid ? ");
  EXPECT_EQ(run("values net /a at 11n").back(), "# !! Error : Not from 0 s to 10 ns ? ");
  EXPECT_EQ(run("values at"), lines_t{" VALues AT 5 ns "});
  EXPECT_EQ(run("values next /a rise level 1.75"),
            (lines_t{"# /a : 1.75 V at 7.5n", " VALues NEXt /a rise level 1.75 "}));
  EXPECT_EQ(run("values next /a rise level 1.75").back(),
            "# !! Warning : No more crossing of 1.75");
  EXPECT_EQ(first("values previous /a rise"), "# /a : 1.5 V at 5n");
  EXPECT_EQ(run("values next /a fall").back(), "# !! Warning : No more crossing of 1.5");
}

TEST_F(Values, AreDrawnBesideTheirNetsAndTakenAway) {
  gx_vext.bitmap_size = gx_nominal_size;
  for (const auto& viewport : set_viewports()) gx_viewport_create(viewport.bounds, viewport.border);
  kv_display_picture_all(gx_vext.viewport_edit, kv_pext.file_id_cur);
  const counting_screen screen;
  // What a command draws, as the pixels in the edit viewport that its lines begin at.
  const auto drawn = [&](std::string_view command) {
    counting_screen::lines.clear();
    EXPECT_FALSE(first(command).starts_with('#')) << command;
    gx_pen_flush();
    const auto& box = gx_viewport_rec(gx_vext.viewport_edit).clip_wind;
    std::set<std::pair<int, int>> places;
    for (const auto& line : counting_screen::lines)
      if (line.x1 > box.xmin && line.x1 < box.xmax && line.y1 > box.ymin && line.y1 < box.ymax)
        places.insert({line.x1, line.y1});
    return places;
  };
  run("values file a.raw");
  const auto plain = drawn("view all");
  ASSERT_FALSE(plain.empty());
  const auto with_values = drawn("values on");
  EXPECT_EQ(drawn("view all"), with_values);
  std::set<std::pair<int, int>> added;
  std::ranges::set_difference(with_values, plain, std::inserter(added, added.end()));
  ASSERT_FALSE(added.empty());
  // One text, beside the net A.
  const auto net = gx_object_abs_origin_bounds(s.file(), s.net("A"), 0).bounds;
  const auto low = gx_viewport_pt_real_to_pixel(gx_vext.viewport_edit, {net.xmin, net.ymin}),
             high = gx_viewport_pt_real_to_pixel(gx_vext.viewport_edit, {net.xmax, net.ymax});
  for (const auto& [x, y] : added) {
    EXPECT_TRUE(x > low.x - 40 && x < high.x + 40) << x;
    EXPECT_TRUE(y > low.y - 20 && y < high.y + 20) << y;
  }
  EXPECT_EQ(drawn("values off"), plain);
}

TEST_F(Values, AnExpectationThatFailsIsAnErrorOfTheSession) {
  write({"@m1[gm]\tadmittance"});
  run("values file a.raw");
  const auto before = gx_session.num_errors;
  EXPECT_EQ(run("values expect /a 1 1.1"), lines_t{" VALues EXPect /a 1 1.1 "});
  EXPECT_EQ(run("values expect /m1[gm] 4 4 at 10n"), lines_t{" VALues EXPect /m1[gm] 4 4 at 10n "});
  EXPECT_EQ(gx_session.num_errors, before);
  EXPECT_EQ(run("values expect /a 1 1.1 at 5n"),
            (lines_t{"# VALues EXPect /a 1 1.1 at 5n ", "# !! Error : /A is 1.5 V at 5n"}));
  for (const char* command : {"values expect /q 0 1", "values expect /m1[id] 0 1",
                              "values expect /nosuch 0 1", "values expect /a 0 x"}) {
    run(command);
  }
  EXPECT_EQ(gx_session.num_errors, before + 5);
}

TEST_F(Values, AFileThatChangesIsReadAgainWhenACommandAsks) {
  run("values file a.raw");
  run("values at 10n");
  EXPECT_EQ(first("values net /q"), "# /Q : no value");
  write({"v(q)\tvoltage"});
  EXPECT_EQ(first("values net /q"), "# /Q : 4 V at 10n");
  s.directory().write("a.raw", "no results\n");
  EXPECT_EQ(run("values net /q").back(),
            "# !! Error : "
            "a.raw: is no file of results");
}

TEST_F(Values, DevicesThatMeetAConditionAreNumberedAndGoneTo) {
  write({"@m.xr.m1[vds]\tvoltage", "@m.xr.m1[vdsat]\tvoltage", "@m.xr.m2[vds]\tvoltage",
         "@m.xr.m2[vdss]\tvoltage", "@m1[vds]\tvoltage"});
  run("values file a.raw");
  EXPECT_EQ(
      run("list devices vds-vdsat<0 & vds > 3"),
      (lines_t{"# 1 /XR/M2 : vds 4 V, vdsat 5 V", "# 1 of 2 devices that have these values at 0",
               " LIST DEVices vds-vdsat<0 & vds > 3 "}));
  EXPECT_EQ(run("show finding 1").back(), " SHOw FINding 1 ");
  EXPECT_EQ(gx_view(kv_pext.cur_sim_path), "XR/");
  EXPECT_TRUE(gx_inq_object_selected(s.file(), s.inst("M2")));
  EXPECT_EQ(run("waive finding 1 because").back(),
            "# !! Error : Devices of LIST DEVices are no findings ? ");
  EXPECT_EQ(run("list devices vds <").back(), "# !! Error : Condition : a value is wanted : \"\"");
}

// Types, texts and numbers of the records that answers make.
std::string taken_records;
void take_record(std::string_view type, std::span<const kv_named_value_t> fields) {
  taken_records += std::string(type) + ":";
  for (const auto& field : fields) {
    const auto* text = std::get_if<std::string_view>(&field.value);
    const auto* number = std::get_if<double>(&field.value);
    const auto* whole = std::get_if<std::int64_t>(&field.value);
    char digits[40] = "";
    if (number != nullptr) std::snprintf(digits, sizeof digits, "%g", *number);
    taken_records += " " + (text != nullptr     ? std::string(*text)
                            : whole != nullptr  ? std::to_string(*whole)
                            : number != nullptr ? digits
                                                : "flag");
  }
  taken_records += "\n";
}

TEST_F(Values, AnswersAreRecords) {
  write({"v(q)\tvoltage", "@m.xr.m1[vds]\tvoltage"});
  kv_set_record_taker(take_record);
  const auto records = [&](std::string_view command) {
    taken_records.clear();
    run(command);
    return taken_records;
  };
  EXPECT_EQ(records("values file a.raw"),
            "results: ngspice Transient Analysis 2 time 0 1e-08 2 1 0\n");
  EXPECT_EQ(records("values at 5n"), "place: 5e-09\n");
  EXPECT_EQ(records("values net /q"), "value: /Q  3 V 5e-09\n");
  EXPECT_EQ(records("values net /vdd at 10n"), "value: /VDD  nan V 1e-08\n") << "not in the file";
  EXPECT_EQ(records("values device /xr/m1 at 0"), "value: /XR/M1 vds 3 V 0\n");
  EXPECT_EQ(records("values expect /q 1 2.5"), "expectation: /Q 3 V 1 2.5 5e-09 flag\n");
  EXPECT_EQ(records("list devices vds>1"),
            "device: 1 /XR/M1\nvalue: /XR/M1 vds 4.5 V 5e-09\ncounts: 1 1\n");
  EXPECT_EQ(records("values next /q rise level 3.5"), "crossing: /q 3.5 7.5e-09\n");
  kv_set_record_taker(nullptr);
}

TEST(Bits, AreANumberWhereEachIsClear) {
  const auto number = [](std::vector<double> bits, bool falls) {
    std::vector<rs_value_t> values;
    for (const double bit : bits) values.push_back({bit, 0});
    return kv_number_of_bits(values, falls, 0, 1.8);
  };
  EXPECT_EQ(number({1.8, 0.1, 1.7, 0}, true), 10U);
  EXPECT_EQ(number({1.8, 0.1, 1.7, 0}, false), 5U);
  EXPECT_EQ(number(std::vector<double>(64, 1.8), true), UINT64_MAX);
  EXPECT_FALSE(number({1.8, 0.9}, true));
  EXPECT_FALSE(number({1.19}, true) || number({0.61}, true));
  EXPECT_EQ(kv_number_of_bits({{2.3, 0}, {3.7, 0}, {2, 0}}, false, 2, 4), 2U);
  EXPECT_FALSE(number({std::numeric_limits<double>::quiet_NaN()}, true));
  EXPECT_FALSE(number(std::vector<double>(65, 0.0), true));
}

// Cells of four pixels: what is told apart is at least that far away.
TEST(TextRoom, NoTextIsDrawnOverAnother) {
  kv_text_room_t room({100, 100, 199, 199});
  EXPECT_TRUE(room.take_free({110, 110, 130, 118}));
  EXPECT_FALSE(room.take_free({130, 110, 150, 118}));
  EXPECT_FALSE(room.take_free({104, 100, 114, 111}));
  EXPECT_TRUE(room.take_free({136, 110, 150, 118}));
  EXPECT_FALSE(room.take_free({190, 150, 200, 158}));  // beyond the picture
  room.take({50, 180, 120, 500});                      // in part
  EXPECT_FALSE(room.take_free({112, 190, 116, 196}));
  EXPECT_TRUE(room.take_free({124, 190, 130, 196}));
}

TEST(Condition, IsReadAsItIsWritten) {
  const struct {
    const char* text;
    bool holds;
  } cases[] = {{"a<b", true},         {"a>b", false},     {"a+2*b=5", true},
               {"(a+2)*b=6", true},   {"b-a-1=0", true},  {"-a=-1", true},
               {"abs(a-b)>=1", true}, {"a!=b", true},     {"a/b<=500m", true},
               {"a<b & a>b", false},  {"a<b&&b<3", true}, {"b=2.0000000001", true},
               {"nan=nan", false},    {"nan!=1", false},  {"1e-9<1n", false}};
  for (const auto& [text, holds] : cases) {
    kv_condition_t condition;
    std::string fault;
    ASSERT_TRUE(condition.read(text, fault)) << text << fault;
    std::vector<double> values;
    for (const auto& name : condition.parameters()) {
      values.push_back(name == "a"   ? 1
                       : name == "b" ? 2
                                     : std::numeric_limits<double>::quiet_NaN());
    }
    EXPECT_EQ(condition.holds(values), holds) << text;
  }
  for (const char* text : {"", "a", "a<", "a<b<c", "(a<b", "a<b)", "1n5<2", "a<b|c", "a ? b"}) {
    kv_condition_t condition;
    std::string fault;
    EXPECT_FALSE(condition.read(text, fault)) << text;
  }
}

}  // namespace
