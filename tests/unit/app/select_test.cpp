// What selecting and marking leave in the state: points, places of the pointer, steps that are
// taken back.
#include "gx/db/undo.h"
#include "gx/edit/undo_replay.h"
#include "gx/vext.h"
#include "tests/support/design_session.h"

namespace {

// Two resistors side by side, their nets above and below, and a frame at the right.
constexpr char sheet[] = R"(
symbol res
  rect -1,0 1,4
  pin 1 0,0 IXO
  pin 2 0,4 IXO
  prop CLASS=R
  show INST 2,2
sheet top
  part R1 res 5,5
  part R2 res 15,5
  net A at 8,4.5
    wire R1.1 5,4 15,4 R2.1
  net B
    wire R1.2 R2.2
  frame for3
    rect 25,2 30,12
)";

struct selecting : ::testing::Test {
  selecting() : s(sheet), r1(s.inst("R1")), r2(s.inst("R2")), a(s.net("A")), b(s.net("B")) {}
  bool is(int id) const { return gx_inq_object_selected(s.file(), id); }
  design_session s;
  int r1, r2, a, b;
};

TEST_F(selecting, AnAreaLeavesItsBasePoint) {
  s.run("sel are ver edit 0.2 0.15 0.3 0.22");
  ASSERT_EQ(s.selected().size(), 1U);
  EXPECT_EQ(gx_object_id_ptr(s.file(), s.selected()[0]).object_type, gx_type::vertex_2d);
  EXPECT_EQ(gx_vext.base_point, (gx_pointreal_t{25000, 20000}));
  s.run("uns all; sel are prop edit 0.3 0.3 0.5 0.4");  // R1's name
  ASSERT_EQ(s.selected().size(), 1U);
  EXPECT_EQ(gx_view(gx_property_info_ptr(s.file(), s.selected()[0]).nvalue), "R1");
  s.run("uns all; sel are inst edit 0.22 0.22 0.28 0.28");
  EXPECT_TRUE(is(s.pin(r1, 1).pinpropfam));
  EXPECT_FALSE(is(s.pin(r1, 2).pinpropfam));
  EXPECT_EQ(gx_vext.base_point, (gx_pointreal_t{25000, 25000}));
  s.run("uns all; sel prop edit inst r2");
  EXPECT_TRUE(kv_pext.act_prop_exist);
  EXPECT_EQ(gx_view(kv_pext.act_prop_value), "R2");
  EXPECT_EQ(s.run("smash on"), lines_t{" SMAsh ON "});
  s.run("sel obj edit I_" + std::to_string(r2));
  EXPECT_TRUE(is(lb_inq_inst_child_id(s.file(), r2).bodpropfam));
  for (const int property : lb_inst_properties(s.file(), r2)) EXPECT_TRUE(is(property));
}

TEST_F(selecting, MarkedRectangleEndsAtTheObjectPosition) {
  EXPECT_EQ(s.run("mark rect edit 0.1 0.1"), lines_t{" MARK RECtangle Edit 0.10 0.10 "});
  EXPECT_TRUE(kv_pext.mark_rect_done);
  EXPECT_EQ(kv_pext.obj_ptr1, (gx_pointreal_t{10000, 10000}));
  EXPECT_EQ(s.run("mark edit 0.5 0.6"), lines_t{" MARK Edit 0.50 0.60 "});
  EXPECT_EQ(gx_vext.obj_pos, (gx_pointreal_t{50000, 60000}));
  EXPECT_EQ(s.run("select area all"), lines_t{" SELect AREa  Edit all "});
  EXPECT_FALSE(kv_pext.mark_rect_done);
  EXPECT_TRUE(is(r1) && is(a) && is(b) && !is(r2));
  gx_vext.obj_pos = {12400, 12600};
  gx_vext.viewport_id = 4;
  EXPECT_EQ(s.run("mark"), lines_t{" MARK Context 0.10 0.15 "});
  for (const auto vpid : {2, 3}) {
    gx_vext.viewport_id = static_cast<gx_vpid_t>(vpid);
    EXPECT_EQ(s.run("sel area all").back(), "# !! Error : Viewport Invalid ? ");
    EXPECT_EQ(s.run("status property").back(),
              "# !! Error : Viewport Invalid ? (cursor position) ");
  }
  kv_pext.file_id_context = 0;
  gx_vext.viewport_id = 4;
  for (const char* command : {"sel area all", "mark context 1 1"})
    EXPECT_EQ(s.run(command).back(), "# !! Error :  No sheet available in window ? ");
}

TEST_F(selecting, EachCommandIsOneUndoStep) {
  gx_undo_init(kv_pext.file_id_cur);
  s.run("sel area inst edit 0.1 0.1 1.9 1.0");
  const auto taken = s.selected();
  s.run("sel prop edit net");
  s.run("cha pro swi n");
  const auto& net = *lb_find_prop_net(s.file(), a, "NET");
  EXPECT_EQ(net.visible, 0);
  EXPECT_TRUE(gx_inq_object_unvisible(s.file(), net.gene.object_id));
  s.run("uns all");
  EXPECT_TRUE(gx_undo_restore_one_step());
  EXPECT_TRUE(gx_undo_restore_one_step());
  EXPECT_EQ(net.visible, 1);
  EXPECT_FALSE(gx_inq_object_unvisible(s.file(), net.gene.object_id));
  EXPECT_TRUE(gx_undo_restore_one_step());
  EXPECT_EQ(s.selected(), taken);
  EXPECT_TRUE(gx_undo_restore_one_step());
  EXPECT_TRUE(s.selected().empty());
  gx_set_object_deleted(s.file(), r1, true);
  EXPECT_EQ(s.run("status object edit " + std::to_string(r1)).back(),
            "# !! Error :  4 th  parameter incorrect ( object handle Invalid ) ? ");
}

}  // namespace
