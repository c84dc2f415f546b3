// CHEck SHEet: what it leaves in the sheet, tables that run over, and the places of its findings.
#include <map>

#include "app/check/sheet/check_rules.h"
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

  int symbol(int inst) { return gx_instance_info_ptr(s.file(), inst).symbol; }
  // The instances by their place on the sheet: R1, R2, IN, OUT, GND.
  int nth_inst(int n) {
    int id = lb_inq_first_inst_id(s.file()).member;
    while (--n > 0) id = lb_inq_next_inst_id(s.file(), id);
    return id;
  }
  design_session s;
};

TEST_F(checking, UnusedSymbolsLeaveTheSheet) {
  const int used = symbol(s.inst("R1")), glob = symbol(nth_inst(5));
  gx_set_object_deleted(s.file(), nth_inst(5), true);
  s.run("check sheet");
  EXPECT_FALSE(gx_inq_object_deleted(s.file(), glob));  // a deleted instance still names it
  gx_instance_info_ptr(s.file(), nth_inst(5)).symbol = gx_object_id_t(used);
  s.run("check sheet");
  EXPECT_TRUE(gx_inq_object_deleted(s.file(), glob));
  EXPECT_TRUE(gx_inq_object_deleted(s.file(), lb_inq_symbol_child_id(s.file(), glob).body));
  EXPECT_FALSE(gx_inq_object_deleted(s.file(), used));
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
