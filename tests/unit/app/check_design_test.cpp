// CHEck DESign: the example with one fault of each rule, what is no fault, rules, and the walk
// through the findings.
#include <algorithm>
#include <filesystem>
#include <set>

#include "expand/store.h"
#include "tests/support/checked_design.h"
#include "tests/support/open_count.h"

namespace {

TEST(CheckDesign, FindsTheFaultsOfTheExampleAndLeavesItAsItIs) {
  design_session s(read_file(faults + "faults.gxt"), "faults");
  kv_sext = kv_defref_exp_rec_t{};
  const auto lines = s.run("DO " + faults + "check.do");
  EXPECT_EQ(read_file("faults/findings.json"), read_file(faults + "findings.json"));
  EXPECT_EQ(gx_vext.num_errors, 31);
  EXPECT_EQ(gx_vext.num_warnings, 8);
  const auto at = std::ranges::find(lines, "# CHEck  DESign  ");
  ASSERT_GT(lines.end() - at, 43);
  EXPECT_EQ(
      lines_t(at + 1, at + 3),
      (lines_t{"# 1 Error sheet-missing /XH : no sheet behind the block :", "#    not found"}));
  const auto counts = std::ranges::find(lines, "# CHEck  DESign > nb_errors   = 31 ");
  ASSERT_GT(lines.end() - counts, 4);
  EXPECT_EQ(lines_t(counts + 1, counts + 4),
            (lines_t{"# CHEck  DESign > nb_warnings = 8 ", "# CHEck  DESign > nb_waived   = 0 ",
                     " CHEck  DESign "}));
  // Every rule has its fault but the one of CHEck SHEet's tables, and one that is off.
  for (const auto& row : kv_rules()) {
    EXPECT_EQ(std::ranges::count(kv_pext.findings, row.rule, &kv_finding_t::rule) > 0,
              row.rule != kv_rule::too_many && row.rule != kv_rule::net_repeated)
        << row.name;
  }
  // No sheet is changed or walked to, nothing of an expansion stays.
  EXPECT_TRUE(s.selected().empty());
  EXPECT_EQ(kv_pext.file_level_cur, 1);
  EXPECT_EQ(gx_vext.num_file_open, 1);
  EXPECT_EQ(kv_sext.nets.count, 0);
  EXPECT_FALSE(std::filesystem::exists("faults/sheet.gx_1.ref"));

  // Errors that RUN leaves a sheet at, and a check of the sheet in view, change nothing of it.
  s.run("check sheet");
  s.run("check design");
  EXPECT_EQ(read_file("faults/findings.json"), read_file(faults + "findings.json"));

  // What is longer than the list is wide takes several lines there.
  EXPECT_EQ(s.run("show finding 33"),
            (lines_t{"# 33 Error many-drivers /BOTH",
                     "#    several pins drive it : \"/B1/O\" and \"/B2/O\"", " SHOw FINding 33 "}));
  EXPECT_EQ(s.run("show finding 10").size(), 4U);
  kv_pext.finding_shown = 0;
  // Every finding can be gone to.
  for (std::size_t n = 1; n <= kv_pext.findings.size(); ++n) {
    EXPECT_EQ(s.run("next finding").back(), " NEXt FINding " + std::to_string(n) + " ");
    const auto& finding = kv_pext.findings[n - 1];
    EXPECT_EQ(gx_view(gx_vext.filear[std::size_t(kv_pext.file_id_cur)].file_pathname),
              finding.sheet);
    EXPECT_TRUE(gx_inq_object_selected(s.file(), finding.object_id)) << finding.path;
  }
  EXPECT_EQ(s.run("next finding"),
            (lines_t{"# NEXt FINding ", "# !! Warning : No more findings "}));
}

TEST(CheckDesign, OpensEachSheetOnceAsTheOtherCommandsOverAllSheetsDo) {
  checked c(R"(
symbol mid
 pin A 0,0 IN
symbol low
 pin A 0,0 IN
sheet low
  part B buf 4,4
sheet mid
  part L1 low 4,4
  part L2 low 4,8
sheet top
  part M1 mid 4,4
  part M2 mid 4,8
  part L low 4,12
)");
  const std::string top = "top/sheet.gx_1", mid = "mid/sheet.gx_1", low = "low/sheet.gx_1";
  open_count opened({top, mid, low});
  using counts_t = std::map<std::string, int>;
  c.s.run("check design");
  EXPECT_EQ(opened.take(), (counts_t{{top, 1}, {mid, 1}, {low, 1}}));
  // These take the primary sheet from memory.
  c.s.run("list hierarchy");
  EXPECT_EQ(opened.take(), (counts_t{{mid, 1}, {low, 1}}));
  c.s.run("find path *");
  EXPECT_EQ(opened.take(), (counts_t{{mid, 1}, {low, 1}}));
}

TEST(CheckDesign, WhatComesFromOutsideDrives) {
  // A port of the top brings a signal in, one that takes it out does not; a global is a supply.
  checked c(R"(
sheet top
  part B1 buf 4,4
  part B2 buf 4,8
  part B3 buf 4,12
  port A in 2,4
  port B out 2,8
  port C in 12,4
  global VDD vdd 2,12
  net A
    wire A B1.I
  net B
    wire B B2.I
  net C
    wire B1.O 10,4 10,8 B2.O
  net
    wire VDD B3.I
  net
    wire B3.O 10,12 C
)");
  EXPECT_EQ(c.findings(), (lines_t{"no-driver /B", "many-drivers /C", "single-pin /VDD"}));
}

TEST(CheckDesign, NetsMarkedAsOpenAreNoFindings) {
  checked c(R"(
sheet top
  part B1 buf 4,4
  part B2 buf 4,8
  net A NOCONN=1
    wire 2,4 B1.I
  net B NOCONN=""
    wire 2,8 B2.I
  net C noconn=yes
    wire B2.O 10,8
)");
  EXPECT_EQ(c.findings(), (lines_t{"no-driver /B", "pin-unused /B1/O", "single-pin /B"}));
}

// The findings of a net of two pins, by their electrical types: N no-driver, M many-drivers.
constexpr std::string_view electrical_types[] = {
    "input",       "output",   "bidirectional", "tri_state",      "passive",      "free",
    "unspecified", "power_in", "power_out",     "open_collector", "open_emitter", "no_connect"};
constexpr std::string_view of_pairs[] = {"N",         ".M",         "...",         "....",
                                         ".....",     "N.....",     "N......",     "NNNNNNNN",
                                         ".M.M....M", "NM.....NM.", "NM.....NM..", "N......N...."};

TEST(CheckDesign, ElectricalTypesSayWhatDrivesWhat) {
  std::string symbols, sheet = "sheet top\n";
  for (const auto type : electrical_types) {
    const bool in = type == "input" || type == "power_in";
    const bool out =
        type == "output" || type == "power_out" || type.starts_with("open") || type == "tri_state";
    symbols += "symbol " + std::string(type) + "\n pin P 0,0 " +
               (in    ? "IN"
                : out ? "OUT"
                      : "IXO") +
               " ELECTRICAL=" + std::string(type) + "\n prop CLASS=U\n";
  }
  std::set<std::string> expected, found;
  for (std::size_t a = 0; a < std::size(electrical_types); ++a)
    for (std::size_t b = 0; b <= a; ++b) {
      const auto pair = std::to_string(a) + "_" + std::to_string(b);
      const auto x = std::to_string(4 + 8 * a), x2 = std::to_string(8 + 8 * a),
                 y = std::to_string(4 + 4 * b);
      const auto part = [&](const char* name, std::size_t type, const std::string& at) {
        sheet += " part " + (name + pair) + " " + std::string(electrical_types[type]) + " " + at +
                 "," + y + "\n";
      };
      part("A", a, x);
      part("B", b, x2);
      sheet += " net X" + pair + "\n  wire A" + pair + ".P B" + pair + ".P\n";
      const char rule = of_pairs[a][b];
      if (rule != '.') expected.insert((rule == 'N' ? "no-driver /X" : "many-drivers /X") + pair);
    }
  checked c(symbols + sheet);
  for (const auto& line : c.findings())
    if (line.find("-driver") != std::string::npos) found.insert(line);
  EXPECT_EQ(found, expected);
}

TEST(CheckDesign, ASupplyWithoutSourceIsOneFinding) {
  // VDD and GND are needed by several pins; a mark on a net of a lower sheet is the source of GND.
  // A pin that may be open, or whose net a lower sheet marks as open, is no single pin.
  checked c(R"(
symbol chip
 pin V 0,0 IN ELECTRICAL=power_in
 pin G 0,4 IN ELECTRICAL=Power_In
 pin N 0,8 IXO ELECTRICAL=no_connect
 prop CLASS=U
symbol low
 pin A 0,0 IXO
sheet low
  port A in 2,2
  part R1 res 8,2
  global GND gnd 16,2
  net A NOCONN=1
    wire A R1.1
  net G ELECTRICAL=power_out
    wire R1.2 GND
sheet top
  part U1 chip 4,4
  part U2 chip 14,4
  part X1 low 24,4
  global GND gnd 4,20
  global VDD vdd 10,2
  net GND
    wire GND 2,20 2,8 U1.G
    wire 2,20 12,20 12,8 U2.G
  net VDD
    wire VDD U1.V
    wire VDD U2.V
  net
    wire U1.N 2,12
  net OUT
    wire X1.A 22,4
)");
  EXPECT_EQ(c.findings(), lines_t{"no-driver /VDD"});
  EXPECT_EQ(kv_pext.findings[0].words, "nothing supplies it : 2 power inputs, the first \"/U1/V\"");
}

TEST(CheckDesign, ADrawnMarkDrivesAndDriversAreCounted) {
  checked c(R"(
sheet top
  part B1 buf 10,4
  part B2 buf 10,12
  part B3 buf 10,20
  part B4 buf 10,24
  part B5 buf 10,28
  net A ELECTRICAL=output
    wire 2,4 B1.I
  net B ELECTRICAL=input
    wire 2,12 B2.I
  net C
    wire B3.O 20,20 20,28 B5.O
    wire 20,24 B4.O
)");
  c.findings();
  lines_t drivers;
  for (const auto& finding : kv_pext.findings)
    if (finding.rule == kv_rule::no_driver || finding.rule == kv_rule::many_drivers)
      drivers.push_back(finding.path + " " + finding.words);
  EXPECT_EQ(drivers, (lines_t{"/B nothing drives it : 1 input \"/B2/I\"",
                              "/C several pins drive it : \"/B3/O\" and \"/B4/O\" and 1 more"}));
}

// Something may drive it from outside.
TEST(CheckDesign, ANetWithAPortEachWayHasADriver) {
  for (const std::string first : {"IN", "OUT"}) {
    const std::string second = first == "IN" ? "OUT" : "IN";
    checked both("symbol a\n pin P 0,0 IXO NET=X\n prop CLASS=PORT" + first +
                 "\nsymbol b\n pin P 0,0 IXO NET=X\n prop CLASS=PORT" + second + R"(
sheet top
  part B1 buf 10,4
  part P1 a 4,4
  part P2 b 4,8
  net
    wire P1.P 8,4 B1.I
    wire 8,4 8,8 P2.P
)");
    EXPECT_EQ(both.findings(), lines_t{"pin-unused /B1/O"}) << first;
  }
}

TEST(CheckDesign, APinOnASliceMeetsTheBitsOfItAlone) {
  // Of the bits 4 to 7 B1 drives 5; W1 reads 5 and 6, B2 reads 4; 7 has no pin. A port of both
  // directions drives, too.
  checked c(R"(
symbol wide
  pin D 0,0 IN bits 0:1
  prop CLASS=W
symbol io
  pin P 0,0 IXO
  prop CLASS=PORTIO
sheet top
  part W1 wide 10,4
  part B1 buf 4,8
  part B2 buf 10,12
  part B3 buf 20,20
  part B4 buf 20,24
  port X io 18,20
  bus D 4:7
    wire W1.D 2,4 2,16 9,16 9,12 B2.I
    wire 9,8 9,12
    wire B1.O 9,8
    bit 5 W1.D
    bit 5 B1.O
    bit 4 B2.I
  part W2 wide 10,40
  bus E 0:1
    wire W2.D 2,40
  net X
    wire X B3.I
  net C
    wire B3.O 30,20 30,28 18,28 18,24 B4.I
)");
  EXPECT_EQ(c.findings(), (lines_t{"no-driver /D", "no-driver /E", "pin-open /B1/I",
                                   "pin-unused /B2/O", "pin-unused /B4/O", "single-pin /D_0",
                                   "single-pin /D_2", "single-pin /E_0", "single-pin /E_1"}));
  EXPECT_EQ(kv_pext.findings[0].words,
            "nothing drives its bits 4, 6 : the first input is \"/B2/I\"");
  EXPECT_EQ(kv_pext.findings[1].words,
            "nothing drives its bits 0 to 1 : the first input is \"/W2/D\"");
}

TEST(CheckDesign, PinsWithoutTypeAreTakenForNoDrivers) {
  checked c(R"(
sheet top
  part U1 untyped 4,4
  part U2 untyped 4,8
  part B1 buf 14,4
  part B2 buf 14,8
  net A
    wire U1.B 10,4 10,8 U2.B
    wire 10,4 B1.I
  net B
    wire U1.A 2,4 2,8 U2.A
    wire 2,8 2,12 24,12 24,4 B1.O
  net C
    wire B2.O 20,8 20,10 12,10 12,8 B2.I
)");
  EXPECT_EQ(c.findings(), lines_t{});
}

TEST(CheckDesign, TwoPinsThatSayOutAreTwoDrivers) {
  checked c(R"(
sheet top
  part U1 untyped 4,4
  part B1 buf 14,4
  part B2 buf 14,8
  net A
    wire U1.A 2,4 2,12 24,12 24,8 24,4 B1.O
    wire 24,8 B2.O
  net B
    wire U1.B 12,4 B1.I
    wire 12,4 12,8 B2.I
)");
  EXPECT_EQ(c.findings(), lines_t{"many-drivers /A"});
  EXPECT_TRUE(kv_pext.findings.back().words.ends_with("\"/B1/O\" and \"/B2/O\""));
}

TEST(CheckDesign, GlobalsMeetOnceWhereTheyComeTogether) {
  // Two blocks bring VDD and GND to one net; each alone is sound. A third level says nothing more.
  checked c(R"(
symbol high
  pin A 0,0 IXO
sheet high
  port A in 2,2
  global VDD vdd 6,2
  part R1 res 8,6
  net A
    wire A VDD
    wire 4,2 4,6 R1.1
    wire 4,6 4,8 12,8 R1.2
symbol low
  pin A 0,0 IXO
sheet low
  port A in 2,2
  global GND gnd 6,2
  net A
    wire A GND
symbol both
  pin A 0,0 IXO
sheet both
  port A in 2,2
  part H high 8,2
  part L low 8,6
  net A
    wire A H.A
    wire 4,2 4,6 L.A
sheet top
  part X both 4,4
  part Y both 4,8
  net N
    wire X.A 2,4 2,8 Y.A
)");
  EXPECT_EQ(c.findings(), lines_t{"globals-joined /X/A"});
  EXPECT_EQ(kv_pext.findings[0].words, "globals on one net : \"VDD\" \"GND\"");
}

TEST(CheckDesign, ErrorsOfARunThatNoRuleTellsAreFindings) {
  // Two ports on one net, at each of 40 visits: reported once. A sheet that cannot be read is one.
  std::string top = "sheet top\n page 400,400\n part Z bad 300,300\n";
  for (int i = 0; i < 40; ++i) {
    const auto n = std::to_string(i), y = std::to_string(4 + 4 * i);
    top += " part X" + n + " pair 4," + y + "\n part R" + n + " res 12," + y + "\n net\n  wire X" +
           n + ".A R" + n + ".1\n net\n  wire X" + n + ".B R" + n + ".2\n";
  }
  checked c(
      "symbol pair\n pin A 0,0 IXO\n pin B 0,2 IXO\n"
      "sheet pair\n port A in 2,2\n port B in 2,6\n part R res 8,2\n"
      " net N\n  wire A R.1\n  wire 4,2 4,6 B\n  wire 4,6 12,6 R.2\n"
      "symbol bad\nsheet bad\n" +
      top);
  c.s.directory().write("bad/sheet.gx_1", "no sheet");
  const auto found = c.findings();
  EXPECT_EQ(std::ranges::count(found, "run /"), 1);
  EXPECT_EQ(std::ranges::count(found, "single-pin /N_1000"), 0);
  EXPECT_EQ(found.front(), "sheet-missing /Z");
  EXPECT_TRUE(std::ranges::any_of(kv_pext.findings, [](const auto& finding) {
    return finding.words.starts_with("2 differents ports connected on same equipot");
  }));
  EXPECT_EQ(gx_vext.errors_in_all, gx_vext.num_errors);
}

TEST(CheckDesign, EveryFindingIsPlacedAtItsOwnObject) {
  // The pins of two parts of one name, on a sheet below.
  const std::string block = "symbol blk\nsheet blk\n part B buf 4,4\n part B buf 4,8 TIMIND=200\n";
  std::set<int> objects;
  {
    checked c(block + "sheet top\n part X blk 4,4\n");
    c.findings();
    for (const auto& finding : kv_pext.findings) {
      if (finding.rule == kv_rule::pin_open || finding.rule == kv_rule::pin_unused)
        objects.insert(finding.object_id);
      EXPECT_EQ(finding.at, "/X") << finding.path;
    }
    EXPECT_EQ(objects.size(), 4U);
  }
  // What was reported before a run had to end; a path that it could not store by what is above it.
  const std::string name(60, 'N');
  checked c(block + "symbol deep\nsheet deep\n part " + name + " buf 4,4\n" +
            "sheet top\n part X blk 4,4\n part " + name + " deep 9,4\n");
  EXPECT_EQ(c.findings(),
            (lines_t{"inst-same-name /X/B", "run /X/B", "run /" + name + "/" + name}));
  EXPECT_EQ(kv_pext.findings[1].sheet, "blk/sheet.gx_1");
  EXPECT_EQ(kv_pext.findings[2].object_id, c.s.inst(name));
  EXPECT_EQ(c.s.run("show finding 3").back(), " SHOw FINding 3 ");
}

TEST(CheckDesign, AMessageAboutAPartIsNotPlacedAtANetOfItsName) {
  checked c("sheet top\n part B buf 4,4 TIMIND=200\n net B\n  wire B.I 2,4\n");
  const auto found = c.findings();
  const auto at = std::ranges::find(found, "run /B");
  ASSERT_NE(at, found.end());
  EXPECT_EQ(std::ranges::find(kv_pext.findings, kv_rule::run, &kv_finding_t::rule)->object_id,
            c.s.inst("B"));
}

TEST(CheckDesign, ASheetThatIsNotWholeIsAFindingOfTheSheet) {
  checked c("symbol bad\nsheet bad\n part B buf 4,4\nsheet top\n part X bad 4,4\n",
            [](auto& files) {
              for (auto& file : files)
                for (auto* object : file.file->ptr_to_ar_objindex)
                  if (file.directory == "bad" && object->object_type == gx_type::frame_family)
                    object->object_type = gx_type::tag_family;
            });
  EXPECT_EQ(c.findings().front(), "sheet-missing /X");
  const auto& finding = kv_pext.findings.front();
  EXPECT_EQ(finding.words, "not whole : no frame_family");
  EXPECT_EQ(finding.at + " " + finding.sheet, "/X bad/sheet.gx_1");
  EXPECT_EQ(finding.object_id, 0);
}

TEST(CheckDesign, NamesThatTheDrawingRepeatsAreNoFinding) {
  const std::string sheet =
      "sheet top\n part R res 4,4\n part S res 4,8\n global VDD vdd 20,20\n"
      " net A\n  wire R.1 0,4\n net A\n  wire S.1 0,8\n"
      " net VDD\n  wire R.2 20,4\n net VDD\n  wire 20,20 20,24\n"
      " net H\n  wire S.2 10,8\n net H\n  wire 30,30 34,30\n"
      " port Q in 50,50\n net Q\n  wire 50,50 54,50\n net Q\n  wire 60,60 64,60\n";
  // Both nets A show their name, of the nets H one does.
  bool is_hidden = false;
  checked c(sheet, [&](auto& files) {
    for (auto* object : files.back().file->ptr_to_ar_objindex) {
      if (object->object_type != gx_type::property_2d) continue;
      auto& property = reinterpret_cast<gx_object_property_rec_t&>(*object);
      const auto value = gx_view(property.nvalue);
      if (value == "A" || (value == "H" && !is_hidden)) property.visible = 1;
      is_hidden = is_hidden || value == "H";
    }
  });
  EXPECT_EQ(std::ranges::count(c.findings(), "net-same-name /H"), 1);
  EXPECT_EQ(std::ranges::count(kv_pext.findings, kv_rule::net_same_name, &kv_finding_t::rule), 1);
  EXPECT_EQ(kv_pext.findings[0].words, "NETS connected by their name  : \"H\"");
  c.s.run("rule net-repeated warning");
  EXPECT_EQ(std::ranges::count(c.findings(), "net-repeated /A"), 1);
  // CHEck SHEet names the first one.
  EXPECT_EQ(c.s.run("check sheet")[1], "# !! warning : NETS connected by their name  : \"A\" ");
}

TEST(CheckDesign, ComparesMoreNamesAndStoresMoreThanASessionDoes) {
  std::string sheet = "sheet top\n";
  for (int i = 0; i < 1100; ++i)
    sheet += " part R" + std::to_string(i % 1099) + " buf " + std::to_string(i) + ",4\n";
  checked c(sheet);
  c.s.run("store size 1000");
  const auto found = c.findings();
  EXPECT_EQ(std::ranges::count(found, "inst-same-name /R0"), 1);
  EXPECT_FALSE(std::ranges::any_of(
      found, [](const auto& f) { return f.starts_with("too-many") || f.starts_with("run"); }));
}

}  // namespace
