// The moves of keys: panning, stepping the pointer, scrolling the texts.
#include "app/sheet/pan.h"

#include <string>
#include <tuple>

#include "app/sheet/pick.h"
#include "app/state.h"
#include "gx/db/place/geometry.h"
#include "gx/db/queries.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "tests/support/counting_screen.h"
#include "tests/support/drawing_board.h"

namespace {
void move(std::string_view word) {
  const kv_move_t* found = kv_find_move(word);
  ASSERT_NE(found, nullptr) << word;
  kv_make_move(*found);
}

class Moves : public ::testing::Test {
 protected:
  Moves() {
    kv_pext = {};
    for (int i = 0; i < 3; ++i) gx_viewport_create({0, 95000, 9000, 99000}, {1, 0, 3, 0});
    gx_vext.viewport_cmd = 2;
    gx_vext.viewport_list = 3;
    gx_vext.viewport_id = 1;
    gx_vext.cmd_step = 12;
  }
  drawing_board board;
};

TEST_F(Moves, PanThePictureWithThePointer) {
  const gx_boundsreal_t whole = gx_vext.viewport[1].bounds_part;
  for (const char way : {'U', 'D', 'L', 'R'})
    for (const int steps : {5, 20, 80}) {
      const std::string word = std::string("$VPT") + way + std::to_string(steps);
      const std::int32_t by = (way == 'U' || way == 'L' ? 5000 : -5000) * steps;
      const gx_pointreal_t d =
          way == 'U' || way == 'D' ? gx_pointreal_t{0, by} : gx_pointreal_t{by, 0};
      gx_vext.viewport[1].bounds_part = whole;
      gx_vext.obj_pos = {7, 7};
      move(std::string_view(word));
      EXPECT_EQ(gx_vext.obj_pos, (gx_pointreal_t{7 + d.x, 7 + d.y})) << word;
      EXPECT_EQ(gx_vext.viewport[1].bounds_part, gx_move(whole, d)) << word;
    }
  gx_vext.viewport_id = 3;
  move("$VPTU5");
  EXPECT_EQ(gx_vext.obj_pos.x, -399993) << "only pictures pan";
}

TEST_F(Moves, StepThePointerOverTheGrid) {
  const counting_screen screen;
  for (const char way : {'U', 'D', 'L', 'R'})
    for (const int steps : {1, 4}) {
      const std::string word = std::string("$C") + way + std::to_string(steps);
      const std::int32_t by = (way == 'U' || way == 'L' ? -5000 : 5000) * steps;
      const gx_pointreal_t to = way == 'U' || way == 'D' ? gx_pointreal_t{40000, 40000 + by}
                                                         : gx_pointreal_t{40000 + by, 40000};
      gx_vext.obj_pos = {40100, 39900};
      counting_screen::put.clear();
      move(std::string_view(word));
      EXPECT_EQ(gx_vext.obj_pos, to) << word << ": snapped, then moved";
      EXPECT_EQ(counting_screen::put,
                std::to_string(100 + to.x / 100) + "," + std::to_string(100 + to.y / 100) + " ");
    }
  const gx_point16_t pixel = gx_vext.pixel_pos;
  for (const auto& [x, y, word] : {std::tuple{40000, 20000, "$CU4"},
                                   {40000, 60000, "$CD4"},
                                   {20000, 40000, "$CL4"},
                                   {60000, 40000, "$CR4"}}) {
    gx_vext.obj_pos = {x, y};
    move(word);
    EXPECT_EQ(gx_vext.obj_pos, (gx_pointreal_t{x, y})) << word << ": the edge is too near";
    EXPECT_EQ(gx_vext.pixel_pos, pixel) << word;
  }
}

TEST_F(Moves, StepAlongTextsScrollThemAndRecallLines) {
  auto& v = gx_vext;
  v.viewport_id = 2;
  const gx_bounds16_t box = v.viewport[2].pixel_bounds;
  const auto x_after = [&](int from, const char* word) {
    v.pixel_pos = {static_cast<std::int16_t>(from), 960};
    move(word);
    return int{v.pixel_pos.x};
  };
  EXPECT_EQ(x_after(box.xmin + 30, "$CR1"), box.xmin + 42);
  EXPECT_EQ(x_after(box.xmin + 30, "$CL1"), box.xmin + 18);
  EXPECT_EQ(x_after(box.xmin + 17, "$CL1"), box.xmin + 17);  // the edge is too near
  EXPECT_EQ(x_after(box.xmax - 18, "$CR1"), box.xmax - 6);
  EXPECT_EQ(x_after(box.xmax - 17, "$CR1"), box.xmax - 17);

  v.istart_cmd = v.istart_list = 1;
  move("$CR4");
  EXPECT_EQ(v.istart_cmd, 1);
  move("$CL4");
  EXPECT_EQ(v.istart_cmd, 2);
  v.istart_cmd = 140;
  move("$CL4");
  EXPECT_EQ(v.istart_cmd, 140);
  v.viewport_id = 3;
  move("$CL4");
  EXPECT_EQ(v.istart_list, 2);

  v.viewport_id = 2;
  for (std::size_t i = 0; i < 4; ++i) v.line_list[i] = gx_string("line " + std::to_string(i + 1));
  v.nlinlist_end = 4;
  std::string recalled;
  for (int i = 0; i < 3; ++i) {
    move("$CU1");
    recalled += std::string(gx_view(v.str_cmd)) + " ";
  }
  EXPECT_EQ(recalled, "line 2 line 1 line 1 ");
}

TEST(Picking, TakesTheNearestWireAndTheSmallestPart) {
  const drawing_board board(R"(
symbol big
 rect 0,0 8,8
 pin A 0,0 IN
symbol small
 rect 0,0 2,2
 pin A 0,0 IN
sheet top
 page 40,40
 part B1 big 4,4
 part S1 small 6,6
 part S2 small 30,30
 net A
  wire 20,4 20,14 B1.A
 net B
  wire 20,6 26,6
)");
  const auto& file = board.file();
  const auto at = [](double x, double y) {
    return gx_pointreal_t{static_cast<std::int32_t>(x * gxm_step),
                          static_cast<std::int32_t>(y * gxm_step)};
  };
  const auto inst = [&](double x, double y) {
    const int id = kv_pick_instance(file, at(x, y));
    return id == 0 ? "" : lb_inst_name(file, id);
  };
  const auto net = [&](double x, double y, double room = 0.5) {
    const int id = kv_pick_net(file, at(x, y), at(room, 0).x);
    return id == 0 ? "" : lb_net_name(file, id);
  };
  EXPECT_EQ(inst(5, 5) + inst(7, 7) + inst(12, 12) + inst(13, 5) + inst(31, 31), "B1S1B1S2");
  EXPECT_EQ(net(20, 9) + net(20.5, 9) + net(23, 6.25), "AAB");
  EXPECT_EQ(net(20.75, 9) + net(20, 3.25) + net(26.75, 6), "");  // beyond its end
  EXPECT_EQ(net(20.25, 5.9), "B");
  EXPECT_EQ(net(20, 3.25, 1), "A");
  EXPECT_EQ(net(12, 9, 1), "A");  // between a vertex and a pin
  gx_set_object_deleted(board.file(), kv_pick_instance(file, at(7, 7)), true);
  EXPECT_EQ(inst(7, 7), "B1");
  gx_set_object_unvisible(board.file(), kv_pick_net(file, at(23, 6), 1), true);
  EXPECT_EQ(net(23, 6), "");
}

}  // namespace
