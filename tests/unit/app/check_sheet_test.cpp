// CHEck SHEet: every rule with a sheet that breaks it and one that just does not; the reference
// file; tables that run over; the time of a large sheet.
#include <sys/stat.h>

#include <algorithm>
#include <map>

#include "app/check/sheet/check_rules.h"
#include "gx/edit/bracket.h"
#include "gx/edit/primitives.h"
#include "tests/support/design_session.h"

namespace {

// Nothing to complain about: two resistors, a port, a global, a named net, a frame.
constexpr char clean[] = R"(
symbol res
  pin 1 0,0 IXO
  pin 2 0,4 IXO
  prop CLASS=R
symbol portp
  pin P 0,0 IXO
  prop CLASS=P
symbol glob
  pin P 0,0 IXO
  prop CLASS=gnd
symbol spare
  pin P 0,0 IXO
  prop CLASS=R INST=S1
sheet top
  part R1 res 5,5
  part R2 res 15,5
  port IN portp 2,5
  port OUT portp 2,9
  global GND glob 9,12
  net A
    wire R1.1 R2.1
  net B
    wire R1.2 R2.2
  frame for3
    rect 25,2 30,12
  frame if4
    rect 35,2 39,12
)";

// A clean sheet to break.
struct checking : ::testing::Test {
  checking() : s(clean) {}

  // The lines between the echo and the counts, and the counts.
  lines_t check() {
    auto lines = s.run("check sheet");
    EXPECT_EQ(lines.front(), "# CHEck  SHEet  ");
    EXPECT_EQ(lines.back(), " CHEck  SHEet ");
    lines.erase(lines.begin());
    lines.pop_back();
    for (auto& line : lines) {
      if (line.starts_with("# CHEck  SHEet > ")) line.erase(0, 17);
    }
    return lines;
  }

  // Adds a property under an object; NOFIXED when not `fixed`.
  int add(int holder, std::string_view name, std::string_view value, bool fixed = true) {
    const auto index = kv_pext.file_id_cur;
    gx_object_open(index, holder);
    const int id = gx_object_create(index, gx_type::property_2d, 0, 0);
    gx_property_2dreal(name, value, {}, {.fixed = fixed});
    gx_object_close(index, id);
    gx_object_close(index, holder);
    return id;
  }
  int body(std::string_view inst) {
    return lb_inq_inst_child_id(s.file(), s.inst(inst)).bodpropfam;
  }
  int symbol(int inst) { return gx_instance_info_ptr(s.file(), inst).symbol; }
  int symbol_family(int symbol_id) {
    const int its_body = lb_inq_symbol_child_id(s.file(), symbol_id).body;
    return lb_inq_graphics_property_id(s.file(), its_body).property_family;
  }
  int net_family(std::string_view name) {
    return lb_inq_graphics_property_id(s.file(), s.net(name)).property_family;
  }
  int frame_family(int frame) {
    return lb_inq_graphics_property_id(s.file(), frame).property_family;
  }
  int frame() { return lb_inq_first_frame_id(s.file()).member; }
  // Takes a property away.
  void drop(const gx_object_property_rec_t& property) {
    gx_set_object_deleted(s.file(), property.gene.object_id, true);
  }
  void drop(int holder, std::string_view name) {
    gx_set_object_deleted(s.file(), gx_find_property_name(s.file(), holder, name), true);
  }
  // The instances by their place on the sheet: R1, R2, IN, OUT, GND.
  int nth_inst(int n) {
    int id = lb_inq_first_inst_id(s.file()).member;
    while (--n > 0) id = lb_inq_next_inst_id(s.file(), id);
    return id;
  }
  bool is_selected(int id) { return gx_inq_object_selected(s.file(), id); }

  design_session s;
};

const lines_t no_finding = {"nb_error    = 0 ", "nb_warning  = 0 "};

std::string label(std::string_view letter, int id) {
  return std::string(letter) + std::to_string(id) + " ";
}

lines_t with_counts(lines_t lines, int errors, int warnings) {
  lines.push_back((errors < 2 ? "nb_error    = " : "nb_errors   = ") + std::to_string(errors) +
                  " ");
  lines.push_back((warnings < 2 ? "nb_warning  = " : "nb_warnings = ") + std::to_string(warnings) +
                  " ");
  return lines;
}

TEST_F(checking, ACleanSheetAndTheForms) {
  EXPECT_EQ(check(), no_finding);
  EXPECT_TRUE(s.selected().empty());
  EXPECT_EQ(s.run("che she before"),
            (lines_t{"# CHEck  SHEet  before ", "# CHEck  SHEet > nb_error    = 0 ",
                     "# CHEck  SHEet > nb_warning  = 0 ", " CHEck  SHEet before "}));
  kv_pext.file_id_cur = 0;
  EXPECT_EQ(s.run("che she"),
            (lines_t{"# CHEck  SHEet  ", "# !! Error : No Valid current sheet ? : "}));
}

TEST_F(checking, PropertiesThatMayStandOnceOnABody) {
  const int inst = s.inst("R1");
  const int second_class = add(body("R1"), "class", "X");
  // The symbol's CLASS is then the second one.
  EXPECT_EQ(check(), with_counts({"# !! Error : more than 1 property \"CLASS\" on the body : ",
                                  "## !! : " + label("I_", inst),
                                  "# !! Error : properties with same name on the body :",
                                  "## !! : " + label("I_", inst),
                                  "#    properties with same name : \"class\" "},
                                 2, 0));
  EXPECT_FALSE(is_selected(second_class));
  const int of_symbol = gx_find_property_name(s.file(), symbol_family(symbol(inst)), "CLASS");
  EXPECT_TRUE(is_selected(of_symbol));
}

TEST_F(checking, InstanceNames) {
  add(body("R1"), "INST", "R9");
  auto lines = check();
  EXPECT_EQ(lines[0], "# !! Error : more than 1 property \"INST\" on the body : ");
  EXPECT_EQ(lines[3], "## !! : " + label("I_", s.inst("R1")));
}

TEST_F(checking, InstOnTheSymbolServesWithAWarning) {
  const int inst = s.inst("R1");
  drop(body("R1"), "INST");
  const int family = symbol_family(symbol(inst));
  const int on_symbol = add(family, "INST", "R7");
  // R2 has its own and the symbol's.
  EXPECT_EQ(
      check(),
      with_counts(
          {"# !! Warning : property \"INST\" found on symbol: ",
           "## !! : " + label("S_", symbol(inst)) + "of instance: " + label("I_", inst),
           "# !! Error : more than 1 property \"INST\" on the body : ",
           "## !! : " + label("I_", s.inst("R2")),
           "# !! Error : properties with same name on the body :",
           "## !! : " + label("I_", s.inst("R2")), "#    properties with same name : \"INST\" "},
          2, 1));
  EXPECT_TRUE(is_selected(on_symbol));
}

TEST_F(checking, InstancesWithoutName) {
  // GND and the ports have none: their CLASS begins with G and P. So R1 with CLASS R ...
  const int inst = s.inst("R1");
  const int its_body = body("R1");
  drop(its_body, "INST");
  const int other = add(its_body, "VALUE", "1k");
  EXPECT_EQ(check(), with_counts({"# !! Warning : no property \"INST\" found on the component : ",
                                  "## !! : " + label("I_", inst),
                                  "# !! found property \"CLASS\" instead : \"R\" "},
                                 0, 1));
  EXPECT_TRUE(is_selected(other));
  // ... and without one.
  drop(symbol_family(symbol(inst)), "CLASS");
  EXPECT_EQ(check(), with_counts({"# !! Error : no property \"INST\" found on the component : ",
                                  "## !! : " + label("I_", inst)},
                                 1, 0));
}

TEST_F(checking, PortsAreNamedByTheirFirstPin) {
  const int in = nth_inst(3), out = nth_inst(4);
  const auto name_of = [&](int inst) -> gx_object_property_rec_t& {
    const auto pin = s.pin(inst, 1).pinpropfam;
    return gx_property_info_ptr(s.file(), gx_find_property_name(s.file(), pin, "NET"));
  };
  name_of(out).nvalue = gx_value("in");
  EXPECT_EQ(check(), with_counts({"# !! Error : PORT with same name  : \"IN\" "}, 1, 0));
  drop(name_of(in));
  EXPECT_EQ(check(), with_counts({"# !! Error : PORT without name ( --> property NET ) "}, 1, 0));
  EXPECT_TRUE(is_selected(in));
}

TEST_F(checking, SymbolReferences) {
  const int inst = s.inst("R1"), sym = symbol(inst);
  s.directory().write("res/symbol.gx", "_2\n");
  const lines_t out_of_date = {"# !! Error : Out Of Date  reference for : " + label("S_", sym),
                               "# !! Existing Symbol path  : ", "# !! \"res/symbol.gx_1\" "};
  auto twice = out_of_date;  // both R1 and R2
  twice.insert(twice.end(), out_of_date.begin(), out_of_date.end());
  EXPECT_EQ(check(), with_counts(twice, 2, 0));
  EXPECT_TRUE(is_selected(inst));
  std::filesystem::remove("res/symbol.gx");
  const auto lines = check();
  EXPECT_EQ(lines_t(lines.begin(), lines.begin() + 3),
            (lines_t{"# !! Error : invalid Symbol reference for : " + label("S_", sym),
                     "# !! Error :  Symbol path  : ", "# !! \"res/symbol.gx_1\" "}));
  EXPECT_EQ(lines[6], "nb_errors   = 2 ");
}

TEST_F(checking, PinProperties) {
  const int inst = s.inst("R1");
  const auto pair = s.pin(inst, 1);
  const auto place = "## !! : " + label("P_", pair.pinpropfam);
  // The instance's pin comes before the symbol's; so the symbol's are the second ones.
  add(pair.pinpropfam, "PINTYPE", "IN");
  const lines_t same_name = {"# !! Error : properties with same name on the pin :", place,
                             "#    properties with same name : \"PINTYPE\" "};
  lines_t expected = {"# !! Error : more than 1 property \"PINTYPE\" on the pin : ", place};
  expected.insert(expected.end(), same_name.begin(), same_name.end());
  EXPECT_EQ(check(), with_counts(expected, 2, 0));
  drop(pair.pinpropfam, "PINTYPE");
  EXPECT_EQ(check(), no_finding);

  const int loose = add(pair.pinpropfam, "PIN", "7", false);
  const auto lines = check();
  EXPECT_EQ(lines_t(lines.begin(), lines.begin() + 4),
            (lines_t{"# !! Error : property \"PIN\" NOFIXED on the pin : ", place,
                     "# !! Error : more than 1 property \"PIN\" on the pin : ", place}));
  EXPECT_TRUE(is_selected(loose));
}

TEST_F(checking, PinsWithoutNameOrTypeOrWithTheSameName) {
  const int inst = s.inst("R1"), other = s.inst("R2");
  const auto first = s.pin(inst, 1), second = s.pin(inst, 2);
  const auto value = [&](gx_pin_pair_t pair, std::string_view name) -> gx_value_record_t& {
    return gx_property_info_ptr(s.file(), gx_find_property_name(s.file(), pair.pin, name)).nvalue;
  };
  value(second, "PIN") = gx_value("1");
  const auto same = [](int id) {
    return lines_t{"# !! Error : pin with same name on the Instance :",
                   "## !! : " + label("I_", id), "#    Pin with same name : \"1\" "};
  };
  auto both = same(inst);
  for (const auto& line : same(other)) both.push_back(line);
  EXPECT_EQ(check(), with_counts(both, 2, 0));
  EXPECT_TRUE(is_selected(gx_find_property_name(s.file(), body("R1"), "INST")));
  value(second, "PIN") = gx_value("2");

  drop(first.pin, "PINTYPE");
  drop(second.pin, "PIN");
  const auto missing = [&](int id) {
    const auto p1 = label("P_", s.pin(id, 1).pinpropfam), p2 = label("P_", s.pin(id, 2).pinpropfam);
    return lines_t{"# !! Warning : no property \"PINTYPE\" found on the pin : ", "## !! : " + p1,
                   "# !! Error : no property \"PIN\" found on the pin : ", "## !! : " + p2};
  };
  auto all = missing(inst);
  for (const auto& line : missing(other)) all.push_back(line);
  EXPECT_EQ(check(), with_counts(all, 2, 2));
  EXPECT_TRUE(is_selected(gx_find_property_name(s.file(), first.pin, "PIN")));
}

TEST_F(checking, Nets) {
  const int second = add(net_family("A"), "net", "A2");
  const auto where = label("N_", s.net("A"));
  EXPECT_EQ(check(), with_counts({"# !! Error : more than 1 property \"NET\" on the net : " + where,
                                  "# !! Error : properties with same name on the net :" + where,
                                  "#    properties with same name : \"NET\" "},
                                 2, 0));
  EXPECT_TRUE(is_selected(second));
  EXPECT_TRUE(is_selected(gx_inq_first_net_segment_id(s.file(), s.net("A"))));
  gx_set_object_deleted(s.file(), second, true);
  gx_property_info_ptr(s.file(), gx_find_property_name(s.file(), net_family("B"), "NET")).nvalue =
      gx_value("a");
  EXPECT_EQ(check(), with_counts({"# !! warning : NETS connected by their name  : \"A\" "}, 0, 1));
}

TEST_F(checking, Frames) {
  const int second = add(frame_family(frame()), "FREXP", "other");
  const auto place = "## !! : " + label("F_", frame());
  EXPECT_EQ(check(),
            with_counts({"# !! Error : more than 1 property \"FREXP\" on the frame : ", place,
                         "# !! Error : properties with same name on the frame :", place,
                         "#    properties with same name : \"FREXP\" "},
                        2, 0));
  drop(frame_family(frame()), "FREXP");
  drop(frame_family(frame()), "FREXP");
  EXPECT_TRUE(is_selected(second));
  EXPECT_EQ(
      check(),
      with_counts({"# !! Warning : no property \"FREXP\" found on the frame : ", place}, 0, 1));
  add(frame_family(frame()), "FREXP", "IF4");
  EXPECT_EQ(check(), with_counts({"# !! Error : Frame with same name  : \"IF4\" "}, 1, 0));
}

TEST_F(checking, UnusedSymbolsLeaveTheSheet) {
  const int used = symbol(s.inst("R1")), glob = symbol(nth_inst(5));
  gx_set_object_deleted(s.file(), nth_inst(5), true);
  check();
  EXPECT_FALSE(gx_inq_object_deleted(s.file(), glob));  // a deleted instance still names it
  gx_instance_info_ptr(s.file(), nth_inst(5)).symbol = gx_object_id_t(used);
  check();
  EXPECT_TRUE(gx_inq_object_deleted(s.file(), glob));
  EXPECT_TRUE(gx_inq_object_deleted(s.file(), lb_inq_symbol_child_id(s.file(), glob).body));
  EXPECT_FALSE(gx_inq_object_deleted(s.file(), used));
}

TEST_F(checking, ReferenceFileIsWholeOrTheOldOneStays) {
  check();
  const int res = symbol(s.inst("R1")), portp = symbol(nth_inst(3)), glob = symbol(nth_inst(5));
  const auto line = [](int id, std::string_view name) {
    std::string text = " C_" + std::to_string(id);
    text.resize(8, ' ');
    return text + "\"" + std::string(name) + "/symbol.gx_1\" ";
  };
  const lines_t whole = {"#    \"top/sheet.gx_1\"", line(res, "res"),     line(res, "res"),
                         line(portp, "portp"),      line(portp, "portp"), line(glob, "glob")};
  EXPECT_EQ(s.directory().lines("top/sheet.gx_1.ref"), whole);
  EXPECT_FALSE(std::filesystem::exists("top/sheet.gx_1.ref.new"));

  // Not to be opened: said, and nothing is checked.
  std::filesystem::create_directory("top/sheet.gx_1.ref.new");
  EXPECT_EQ(
      s.run("check sheet"),
      (lines_t{"# CHEck  SHEet  ", " !! impossible to open : ", " !! \"top/sheet.gx_1.ref\" "}));
  std::filesystem::remove("top/sheet.gx_1.ref.new");
  // What stands at the temporary's place is not opened: neither a link nor a FIFO without a reader.
  s.directory().write("precious", "kept");
  std::filesystem::create_symlink("../precious", "top/sheet.gx_1.ref.new");
  EXPECT_EQ(s.run("check sheet").back(), " CHEck  SHEet ");
  EXPECT_EQ(s.directory().read("precious"), "kept");
  mkfifo("top/sheet.gx_1.ref.new", 0600);
  EXPECT_EQ(s.run("check sheet").back(), " CHEck  SHEet ");
  EXPECT_EQ(s.directory().lines("top/sheet.gx_1.ref"), whole);
  // A file that cannot take its place is no success.
  std::filesystem::remove("top/sheet.gx_1.ref");
  std::filesystem::create_directories("top/sheet.gx_1.ref/held");
  const auto lines = s.run("check sheet");
  EXPECT_EQ(lines.back(), " !! \"top/sheet.gx_1.ref\" ");
  EXPECT_EQ(std::ranges::count(lines, " CHEck  SHEet "), 0);
  EXPECT_FALSE(std::filesystem::exists("top/sheet.gx_1.ref.new"));
}

// A sheet of n instances of one symbol with two pins, or of n named nets.
std::string many(std::string_view what, int n) {
  std::string text =
      "symbol r\n pin 1 0,0 IXO\n pin 2 0,1 IXO\n prop CLASS=R\nsheet top\n"
      " page 4000,4000\n";
  for (int i = 0; i < n; ++i) {
    const auto number = std::to_string(i);
    const auto x = std::to_string(1 + 2 * (i % 100)), y = std::to_string(2 + 2 * (i / 100));
    if (what == "part") text += "part R" + number + " r " + x + "," + y + "\n";
    if (what == "net") text += "net N" + number + "\n wire " + x + "," + y + " 0," + y + "\n";
  }
  return text;
}

TEST(CheckTables, NineHundredNinetyNineFitAndMoreAreToldOnce) {
  for (const auto& [n, errors] : {std::pair{999, 0}, {1003, 1}}) {
    design_session s(many("part", n));
    const auto lines = s.run("check sheet");
    EXPECT_EQ(std::ranges::count(lines, "# !! Error : Too many INSTANCES "), errors);
    EXPECT_EQ(lines[lines.size() - 3],
              "# CHEck  SHEet > nb_error    = " + std::to_string(errors) + " ");
  }
}

// Where tables of a single name run over: once each, whatever follows.
TEST_F(checking, ATableThatRunsOverIsAFindingOfItsOwner) {
  kv_links_t links;
  const auto report = kv_check_sheet(s.file(), links, 1);
  std::map<std::string, std::string> found;
  for (const auto& finding : report.findings) {
    EXPECT_EQ(finding.rule, kv_rule::too_many);
    auto& where = found[kv_words_of(finding)];
    const int id = finding.where.on_sheet;
    where += id == s.inst("R2")       ? "R2 "
             : id == nth_inst(4)      ? "OUT "
             : id == s.net("B")       ? "B "
             : id == s.inst("R1")     ? "R1 "
             : finding.where.inst > 0 ? std::to_string(finding.where.inst == s.inst("R1")) + " "
                                      : "F ";
  }
  EXPECT_EQ(found, (std::map<std::string, std::string>{
                       {"Too many INSTANCES", "R2 "},
                       {"Too many PORTS", "OUT "},
                       {"Too many nets :", "B "},
                       {"Too many frames :", "F "},
                       {"Too many pins :", "1 0 "},
                       {"Too many properties on the body :", "R1 R2 0 "},
                       {"Too many properties on pins :", "1 1 0 0 0 0 0 "}}));
}

TEST(CheckTables, OneOfSeveralNamesThatOccurAgainIsTold) {
  design_session s(
      "symbol r\n pin 1 0,0 IXO\n prop CLASS=R\n"
      "sheet top\n part b r 4,4\n part A r 4,8\n part B r 4,12\n part a r 4,16\n part a r 4,20\n"
      " net n\n  wire 20,4 24,4\n net M\n  wire 20,8 24,8\n net m\n  wire 20,12 24,12\n"
      " net N\n  wire 20,16 24,16\n");
  EXPECT_EQ(s.run("check sheet"),
            (lines_t{"# CHEck  SHEet  ", "# !! Error : INSTANCE with same name  : \"b\" ",
                     "# !! warning : NETS connected by their name  : \"n\" ",
                     "# CHEck  SHEet > nb_error    = 1 ", "# CHEck  SHEet > nb_warning  = 1 ",
                     " CHEck  SHEet "}));
  kv_links_t links;
  lines_t all;
  for (const auto& finding : kv_check_sheet(s.file(), links, kv_names_compared).findings)
    all.push_back(kv_words_of(finding) + " " + std::to_string(finding.where.on_sheet) + " " +
                  std::to_string(finding.more) + (finding.is_further ? " further" : ""));
  EXPECT_EQ(all, (lines_t{"INSTANCE with same name  : \"b\" 28 0",
                          "INSTANCE with same name  : \"A\" 33 0 further",
                          "NETS connected by their name  : \"n\" 61 1"}));
}

}  // namespace
