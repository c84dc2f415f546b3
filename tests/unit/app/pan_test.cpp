// The moves of keys: panning, stepping the pointer, scrolling the texts.
#include "app/sheet/pan.h"

#include "app/state.h"
#include "gx/db/place/geometry.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
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
  gx_vext.obj_pos = {10100, 19900};
  move("$CR1");
  EXPECT_EQ(gx_vext.obj_pos, (gx_pointreal_t{15000, 20000})) << "snapped, then moved";
  EXPECT_EQ(gx_vext.pixel_pos, (gx_point16_t{250, 300}));
  move("$CU4");
  EXPECT_EQ(gx_vext.obj_pos, (gx_pointreal_t{15000, 20000})) << "the edge is too near";
  move("$CD4");
  EXPECT_EQ(gx_vext.obj_pos, (gx_pointreal_t{15000, 40000}));
  move("$CL4");
  EXPECT_EQ(gx_vext.pixel_pos, (gx_point16_t{250, 500})) << "it would leave the picture";
}

}  // namespace
