// From the nets of sheets to the flat nets of the design: joins, ports, globals, buses.
#include "gx/vext.h"
#include "tests/unit/expand/flatten_fixture.h"

namespace {

TEST_F(FlattenTest, NetsJoinWhereTheyTouchAndByTheirNames) {
  // N1 and N2 end on the same pin; the two A are one net, letter case ignored; B stands alone.
  EXPECT_EQ(run("sheet top\n"
                " part R1 r 2,0\n part R2 r 10,0\n part R3 r 20,0\n"
                " net\n  wire R1.2 R2.1\n"
                " net N2\n  wire R2.1 8,8\n"
                " net A\n  wire R1.1 0,0\n"
                " net a\n  wire R2.2 16,0\n"
                " net B\n  wire R3.1 19,0\n"
                " net\n  wire R3.2 26,0\n"),
            lines_t{});
  const lines_t flat = nets();
  ASSERT_EQ(flat.size(), 4U);
  // The master is the first net with a name; the unnamed one is its child.
  EXPECT_TRUE(flat[0].starts_with("/N2 0 in /R2/1 out /R1/2 + /N_")) << flat[0];
  EXPECT_TRUE(flat[0].ends_with(" 3")) << flat[0];
  EXPECT_EQ(flat[1], "/A 0 in /R1/1 out /R2/2 + /a 3");
  EXPECT_EQ(flat[2], "/B 0 in /R3/1");
  EXPECT_TRUE(flat[3].starts_with("/N_") && flat[3].ends_with(" 0 out /R3/2")) << flat[3];
  EXPECT_EQ(text(kv_ptrto_net_rec(4).name), "");  // only its path has a name
  EXPECT_EQ(text(kv_net_ptrto_net_child_rec(1, 1).name), "");
}

// A chain of two resistors between ports A and B, with an inner net that bears a port's name.
constexpr char chain_sheet[] =
    "symbol chain\n pin A 0,0 IN\n pin B 4,0 OUT\n"
    "sheet chain\n"
    " port A p 0,0\n port B p 20,0\n"
    " part R1 r 2,0\n part R2 r 10,0\n"
    " net IN\n  wire A R1.1\n"
    " net A\n  wire R1.2 R2.1\n"
    " net\n  wire R2.2 B\n";

TEST_F(FlattenTest, PortsBringTheNetsOfTheInstanceDown) {
  EXPECT_EQ(run(std::string(chain_sheet) +
                "symbol pair\n pin X 0,0 IN\n pin Y 4,0 OUT\n"
                "sheet pair\n"
                " port X p 0,0\n port Y p 20,0\n part C1 chain 2,0\n part C2 chain 10,0\n"
                " net X\n  wire X C1.A\n net M\n  wire C1.B C2.A\n net Y\n  wire C2.B Y\n"
                "sheet top\n"
                " part P pair 2,0\n"
                " net T\n  wire P.X 0,0\n net U\n  wire P.Y 10,0\n"),
            lines_t{});
  const lines_t flat = nets();
  ASSERT_EQ(flat.size(), 5U);
  EXPECT_EQ(flat[0], "/T 0 in /P/C1/R1/1 + /P/X 2 + /P/C1/IN 2");
  EXPECT_TRUE(flat[1].starts_with("/U 0 out /P/C2/R2/2 + /P/Y 2 + /P/C2/N_")) << flat[1];
  EXPECT_TRUE(flat[2].starts_with("/P/M 0 in /P/C2/R1/1 out /P/C1/R2/2 + ")) << flat[2];
  EXPECT_EQ(flat[3], "/P/C1/A 0 in /P/C1/R2/1 out /P/C1/R1/2");
  EXPECT_EQ(leaves(), (lines_t{"/P/C1/R1", "/P/C1/R2", "/P/C2/R1", "/P/C2/R2"}));
  EXPECT_EQ(kv_sext.macros.count, 3);
  EXPECT_EQ(text(kv_ptrto_macro_rec(2).sim_path), "/P/C1");
  EXPECT_EQ(text(kv_ptrto_macro_rec(2).file_path), "pair/sheet.gx_1");
  EXPECT_EQ(text(kv_ptrto_pinm_rec(3).sim_path), "/P/C1/A");
  EXPECT_EQ(kv_ptrto_pinm_rec(3).net_ind, 1);
}

TEST_F(FlattenTest, PortsOfOneNameJoinTheirNets) {
  EXPECT_EQ(run("symbol s\n pin A 0,0 IN\n"
                "sheet s\n port A p 0,0\n port A p 0,9\n part R1 r 2,0\n part R2 r 2,9\n"
                " net K\n  wire A R1.1\n net L\n  wire 0,9 R2.1\n"
                " net M\n  wire R1.2 9,0\n net O\n  wire R2.2 9,9\n"
                "sheet top\n part S s 2,0\n net T\n  wire S.A 0,0\n"),
            lines_t{});
  EXPECT_EQ(nets()[0], "/T 0 in /S/R1/1 /S/R2/1 + /S/K 2 + /S/L 2");
}

TEST_F(FlattenTest, GlobalsAreOneNetAcrossTheDesign) {
  const std::string leaf =
      "symbol leaf\n pin A 0,0 IN\n"
      "sheet leaf\n port A p 0,0\n part R1 r 2,0\n global VDD g 9,0\n"
      " net A\n  wire A R1.1\n net V\n  wire R1.2 9,0\n";
  EXPECT_EQ(run(leaf + "sheet top\n part X leaf 2,0\n part Y leaf 2,9\n part R r 12,0\n"
                       " global vdd g 20,0\n"
                       " net N\n  wire X.A Y.A R.1\n net P\n  wire R.2 20,0\n"),
            lines_t{});
  EXPECT_EQ(nets(), (lines_t{"/vdd 4 out /X/R1/2 /Y/R1/2 /R/2 + /P 3 + /X/V 3 + /Y/V 3",
                             "/N 0 in /X/R1/1 /Y/R1/1 /R/1 + /X/A 2 + /Y/A 2"}));
}

// A block that ties its port to a global inside.
constexpr char tie_sheet[] =
    "symbol tie\n pin A 0,0 IXO\n"
    "sheet tie\n port A p 0,0\n part R1 r 2,0\n global VDD g 1,0\n"
    " net A\n  wire A 1,0 R1.1\n net Z\n  wire R1.2 9,0\n";

TEST_F(FlattenTest, NetsThatMeetAGlobalInsideBlocksAreItsNet) {
  // M and N meet VDD only inside the blocks: the first becomes VDD's flat net and keeps its path.
  EXPECT_EQ(run(std::string(tie_sheet) + "sheet top\n part X tie 2,0\n part Y tie 2,9\n"
                                         " net M\n  wire X.A 0,0\n net N\n  wire Y.A 0,9\n"),
            lines_t{});
  EXPECT_EQ(nets()[0], "/M 4 in /X/R1/1 /Y/R1/1 + /N 3 + /X/A 2 + /Y/A 2");
  EXPECT_EQ(text(kv_ptrto_net_rec(1).name), "VDD");
}

TEST_F(FlattenTest, APinOfSeveralBitsIsNotTiedToAGlobalInsideItsBlock) {
  EXPECT_EQ(run("symbol tie\n pin A 0,0 IXO bits 0:1\n"
                "sheet tie\n port A p 0,0\n global VDD g 1,0\n net A\n  wire A 1,0\n"
                "sheet top\n part X tie 2,0\n net M\n  wire X.A 0,0\n"),
            (lines_t{"# !! Pin of INStance : \"/X/A\"    :   not compatible at level -1 ? "}));
  EXPECT_EQ(nets()[0], "/M 0");
}

TEST_F(FlattenTest, AMemberThatMeetsAGlobalInsideABlockLeavesItsBusABus) {
  EXPECT_EQ(run(std::string(tie_sheet) + "sheet top\n part X tie 2,0\n part R r 10,0\n"
                                         " bus D 0:1\n  wire X.A 0,0 0,9 10,9 R.1\n"
                                         "  bit 1 X.A\n  bit 0 R.1\n"),
            lines_t{"# !! Error : Pin without Net : \"/R/2\""});
  EXPECT_EQ(nets(), (lines_t{"/D 1 bus", "/D_0 1 in /R/1", "/D_1 4 sub in /X/R1/1 + /X/A 2",
                             "/X/Z 0 out /X/R1/2"}));
}

TEST_F(FlattenTest, DifferentGlobalsOfASheetAndTheSheetAboveAreAnError) {
  EXPECT_EQ(run(std::string(tie_sheet) +
                "sheet top\n part X tie 2,0\n global GND g 0,0\n net M\n  wire X.A 0,0\n"),
            (lines_t{"# !! Error Different Globals connected --> ",
                     "# !!   Top Global name:\"GND\"", "# !! child Global name:\"VDD\""}));
  EXPECT_EQ(gx_vext.num_errors, 1);
  EXPECT_EQ(nets()[0], "/GND 4 in /X/R1/1 + /M 3 + /X/A 2");
}

TEST_F(FlattenTest, BusesHaveMembersAndPinsMeetTheirRange) {
  EXPECT_EQ(run("symbol ram\n pin D 0,0 IN bits 0:3\n prop CLASS=M\n"
                "sheet top\n"
                " part U1 ram 2,0\n part U2 ram 2,9\n part R0 r 10,0\n part R2 r 10,9\n"
                " bus D 4:7\n  wire U1.D 0,0 0,9 U2.D R0.1\n  wire R0.1 R2.1\n"
                "  bit 4 R0.1\n  bit 6 R2.1\n"
                " net A\n  wire R0.2 16,0\n net B\n  wire R2.2 16,9\n"),
            lines_t{});
  // Single bits stand before the pins that all members share.
  EXPECT_EQ(nets(), (lines_t{"/D 1 bus", "/D_0 1 in /R0/1 /U1/D /U2/D", "/D_1 1 in /U1/D /U2/D",
                             "/D_2 1 in /R2/1 /U1/D /U2/D", "/D_3 1 in /U1/D /U2/D",
                             "/A 0 out /R0/2", "/B 0 out /R2/2"}));
  const auto& bus = kv_ptrto_net_rec(1);
  EXPECT_EQ(bus.net_bus_start, 4);
  EXPECT_EQ(bus.net_bus_end, 7);
  EXPECT_EQ(bus.netind_start, 2);
  const auto& member = kv_ptrto_net_rec(4);
  EXPECT_EQ(member.bus, 1);
  EXPECT_EQ(member.posinbus, 2);
  EXPECT_EQ(text(member.name), "D_2");
  EXPECT_EQ(member.first_prop, bus.first_prop);
  EXPECT_EQ(member.object_id, bus.object_id);
  EXPECT_EQ(kv_ptrto_pin_rec(5).pin_net_start, 6);  // R2.1
  EXPECT_EQ(kv_ptrto_pin_rec(5).net_ind, 1);
}

TEST_F(FlattenTest, BusRangesGoDownThroughPorts) {
  // The block takes two bits of the four, from bit 2 on, and one of them further down.
  const std::string blocks =
      "symbol one\n pin A 0,0 IN\n"
      "sheet one\n port A p 0,0\n part R r 2,0\n net A\n  wire A R.1\n net Z\n  wire R.2 9,0\n"
      "symbol two\n pin D 0,0 IN bits 0:1\n"
      "sheet two\n port D p 0,0 bits 0:1\n part X one 4,0\n"
      " bus D 0:1\n  wire D X.A\n  bit 1 X.A\n";
  EXPECT_EQ(run(blocks + "sheet top\n part T two 2,0\n bus D 0:3\n  wire T.D 0,0\n  bit 2 T.D\n"),
            lines_t{});
  EXPECT_EQ(nets()[0], "/D 1 bus + /T/D 2");
  EXPECT_EQ(nets()[4], "/D_3 1 in /T/X/R/1 + /T/X/A 2");
  // A pin says which bit of the flat bus it meets, whatever the range of its sheet's bus.
  EXPECT_EQ(run("symbol r2\n pin 1 0,0 IN\n prop CLASS=R\n"
                "symbol cell\n pin I 0,0 IN bits 4:7\n"
                "sheet cell\n port I p 0,0 bits 4:7\n part R r2 4,0\n bus I 4:7\n  wire I R.1\n"
                "  bit 5 R.1\n"
                "sheet top\n part C cell 2,0\n bus T 0:3\n  wire C.I 0,0\n"),
            lines_t{});
  EXPECT_EQ(kv_ptrto_pin_rec(1).pin_net_start, 1);
}

TEST_F(FlattenTest, GlobalsNameMembersOfABus) {
  EXPECT_EQ(run("sheet top\n part R r 4,0\n global GND g 0,2\n global VDD g 0,4\n"
                " bus D 0:2\n  wire R.1 0,0 0,2 0,4\n  bit 1 R.1\n"
                " net Z\n  wire R.2 9,0\n"),
            (lines_t{"# !! Error Different Globals connected --> ", "# !! 1rst Global name:\"GND\"",
                     "# !! 2nd  Global name:\"VDD\""}));
  // Both globals meet bit 0; the first one has it.
  EXPECT_EQ(nets(),
            (lines_t{"/D 1 bus", "/D_0 4 sub", "/D_1 1 in /R/1", "/D_2 1", "/Z 0 out /R/2"}));
  const auto& member = kv_ptrto_net_rec(2);
  EXPECT_EQ(text(member.name), "GND");
  EXPECT_EQ(member.father_net, 1);
  EXPECT_EQ(kv_ptrto_net_rec(1).first_sub_net, 2);
}

// The flat nets: "path kind type name".
std::vector<std::string> named_nets() {
  std::vector<std::string> lines;
  for (std::int32_t i = 1; i <= kv_sext.nets.count; ++i) {
    const auto& net = kv_ptrto_net_rec(i);
    lines.push_back(std::string(kv_string_view(net.sim_path)) + " " + std::to_string(net.net_kind) +
                    " " + std::to_string(net.net_type) + " " +
                    std::string(kv_string_view(net.name)));
  }
  return lines;
}

TEST_F(FlattenTest, AGlobalMayNameMembersOfSeveralBusesAndHaveANetOfItsOwn) {
  // Each placement of the cell names a member of its own bus; `low` names one through its port.
  const std::string cells =
      "symbol cell\n pin A 0,0 IN\n"
      "sheet cell\n port A p 0,0\n part R r 2,0\n global VDD g 9,4\n"
      " net A\n  wire A R.1\n bus IB 0:1\n  wire R.2 9,4\n  bit 1 R.2\n"
      "symbol low\n pin A 0,0 IN\n"
      "sheet low\n port A p 0,0\n global VDD g 2,0\n net A\n  wire A 2,0\n";
  EXPECT_EQ(run(cells + "sheet top\n part X cell 2,0\n part Y cell 2,9\n part L low 20,0\n"
                        " part R r 30,0\n global VDD g 40,0\n"
                        " net T\n  wire X.A Y.A\n bus B 4:5\n  wire L.A 25,0\n  bit 5 L.A\n"
                        " net P\n  wire R.2 40,0\n net U\n  wire R.1 29,9\n"),
            lines_t{});
  EXPECT_EQ(named_nets(),
            (lines_t{"/VDD 4 1 VDD", "/T 0 1 T", "/B 1 3 B", "/B_0 1 1 B_0", "/B_1 4 2 VDD",
                     "/U 0 1 U", "/X/IB 1 3 IB", "/X/IB_0 4 2 VDD", "/X/IB_1 1 1 IB_1",
                     "/Y/IB 1 3 IB", "/Y/IB_0 4 2 VDD", "/Y/IB_1 1 1 IB_1"}));
}

TEST_F(FlattenTest, InitialStatesReachTheFlatNets) {
  EXPECT_EQ(run("sheet top\n part R r 4,0\n part S r 4,9\n global VDD g 9,9\n  pinprop INIT=1F\n"
                " global GND g 20,0\n  pinprop INIT=7\n"
                " net A INIT=0\n  wire R.1 0,0\n bus D 0:1 INIT=XZ\n  wire R.2 9,0\n"
                " net V\n  wire S.2 9,9\n net G INIT=LONG\n  wire S.1 20,0\n"),
            (lines_t{"# !! INIT property on PIN of GLOBAL Invalid ", "# !! Global name  : \"GND\"",
                     "# !! INIT value  : \"7\"", "# !! INIT property on Local NET Invalid ",
                     "# !! NET name  : \"G\"", "# !! INIT value  : \"LONG\""}));
  EXPECT_EQ(gx_vext.num_errors, 2);
  struct expected_t {
    std::string path;
    int state, fixed;
  };
  const expected_t expected[] = {{"/VDD", 19, 1}, {"/GND", 0, 0}, {"/A", 17, 0},
                                 {"/D", 0, 0},    {"/D_0", 6, 0}, {"/D_1", 6, 0}};
  ASSERT_EQ(kv_sext.nets.count, 6);
  for (std::int32_t i = 1; i <= 6; ++i) {
    const auto& record = kv_ptrto_net_rec(i);
    const auto& want = expected[i - 1];
    EXPECT_EQ(text(record.sim_path), want.path);
    EXPECT_EQ(record.state_init, want.state) << want.path;
    EXPECT_EQ(record.cur_state.state, want.state) << want.path;
    EXPECT_EQ(record.cur_state.fixed, want.fixed) << want.path;
  }
}

}  // namespace
