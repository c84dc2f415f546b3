// The viewport table, its conversions and the zoom.
#include "gx/display/viewports.h"

#include <vector>

#include "app/sheet/views.h"
#include "gx/display/drawable_size.h"
#include "gx/display/screen_state.h"
#include "gx/display/strokes/offscreen.h"
#include "gx/display/window.h"
#include "gx/vext.h"
#include "tests/support/counting_screen.h"
#include "tests/support/drawing_board.h"
#include "tests/support/fatal_stop.h"

namespace {
constexpr gx_border_info border{1, 0, 3, 0};

// The application's window of 1001 x 1001 pixels.
void make_screen() {
  gx_reset_state();
  gx_init_noview(set_viewports(), {1001, 1001});
}

TEST(ViewportTable, LaysOutTheScreenWithoutOverlap) {
  make_screen();
  const gx_bounds16_t expected[] = {
      {4, 5, 996, 749}, {4, 955, 733, 995}, {4, 754, 733, 950}, {737, 754, 996, 995}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(gx_viewport_rec(i + 1).pixel_bounds, expected[i]) << i;
    EXPECT_EQ(gx_viewport_rec(i + 1).clip_wind, expected[i]) << i;
    EXPECT_FALSE(gx_viewport_rec(i + 1).vp_blocked) << i;
  }
  EXPECT_EQ(gx_viewport_pixel_to_vpid({500, 400}), 1);
  EXPECT_EQ(gx_viewport_pixel_to_vpid({996, 400}), 0) << "the edge is outside";
  EXPECT_EQ(gx_viewport_pixel_to_vpid({800, 800}), 4);

  gx_vext.bitmap_size = {500, 2000};
  gx_viewports_update();
  EXPECT_EQ(gx_viewport_rec(1).pixel_bounds, (gx_bounds16_t{2, 10, 498, 1498}));
}

TEST(ViewportTable, TextsTakeTheirShareOfTheWindow) {
  make_screen();
  auto& v = gx_vext;
  const auto measures = [&] {
    return std::vector<int>{v.bitmap_size.x, v.bitmap_size.y, v.pixel_pos.x, v.pixel_pos.y,
                            v.cmd_x0,        v.cmd_y0,        v.listb_x0,    v.listb_y0,
                            v.cmd_height,    v.cmd_step,      v.list_height, v.list_step};
  };
  EXPECT_EQ(measures(), (std::vector{1000, 1000, 500, 500, 0, 0, 0, 0, 13, 11, 13, 26}));
  v.cmd_xi = 7;
  v.cmd_yi = 10;
  v.listb_xi = 5;
  v.listb_yi = 20;
  gx_take_size(10240 + 1, 7680 + 1);
  EXPECT_EQ(measures(),
            (std::vector{10240, 7680, 5120, 3840, 70, 100, 50, 200, 100, 120, 100, 200}));
}

// The window's true size is known when it is first shown: one pixel more, which what was fitted
// before follows, and what the user has moved to does not.
TEST(ViewportTable, AFittedPartFollowsTheSize) {
  make_screen();
  gx_viewport_rec(1).file_index = 1;
  const gx_boundsreal_t page = {0, 0, 990000, 740000};
  gx_viewport_fit(1, page);
  const auto resize = [](std::int16_t size) {
    gx_vext.bitmap_size = {size, size};
    gx_viewports_update();
  };
  resize(700);
  const gx_shown_t followed = gx_viewport_shown(1);
  gx_viewport_fit(1, page);
  EXPECT_EQ(gx_viewport_shown(1), followed);
  gx_viewport_translate(1, 1, 0, 5000);
  const gx_shown_t moved = gx_viewport_shown(1);
  resize(1000);
  EXPECT_EQ(gx_viewport_shown(1), moved);
}

TEST(ViewportTable, ALaterViewportBlocksWhatItLiesOn) {
  make_screen();
  gx_viewport_create({50000, 60000, 99000, 74000}, border);  // its corners lie in the first
  EXPECT_TRUE(gx_viewport_rec(1).vp_blocked);
  EXPECT_FALSE(gx_viewport_rec(3).vp_blocked);
  EXPECT_EQ(gx_viewport_pixel_to_vpid({100, 100}), 0) << "only the blocked one is there";
  EXPECT_EQ(gx_viewport_pixel_to_vpid({600, 700}), 5);
  gx_viewport_create({0, 0, 100000, 100000}, border);  // encloses all: no corner inside any
  EXPECT_FALSE(gx_viewport_rec(3).vp_blocked);

  gx_viewport_delete(1);
  EXPECT_EQ(gx_vext.viewport_id_max, 5);
  EXPECT_EQ(gx_viewport_rec(4).bounds_vp.xmin, 50000) << "the later ones moved down";
  expect_stop([] { gx_viewport_delete(6); }, gx_code::viewport_id_invalid);
  expect_stop([] { gx_viewport_select(0); }, gx_code::viewport_id_invalid);
}

TEST(Conversions, ThereAndBack) {
  drawing_board board;
  gx_vext.viewport[1].bounds_part = {-30050, 20010, 49950, 100010};
  EXPECT_EQ(gx_viewport_pt_real_to_pixel(1, {0, 50000}), (gx_point16_t{400, 400}));
  gx_pointreal_t point;
  EXPECT_EQ(gx_viewport_pixel_to_obj2d({400, 400}, point), 1);
  EXPECT_EQ(point, (gx_pointreal_t{-50, 50010}));
  EXPECT_EQ(gx_viewport_obj2d_to_pixel(1, -2550), 25);

  // Far points end at the clamp, never wrapped.
  EXPECT_EQ(gx_viewport_pt_real_to_pixel(1, {INT32_MAX, INT32_MIN}), (gx_point16_t{20000, -20000}));
  EXPECT_EQ(gx_viewport_obj2d_to_pixel(1, INT32_MIN), 20000);
  gx_vext.viewport[1].bounds_part.xmin = INT32_MAX;
  gx_vext.viewport[1].object_scale = INT32_MAX;
  gx_viewport_pixel_to_obj2d({800, 400}, point);
  EXPECT_EQ(point.x, INT32_MAX);

  gx_vext.viewport[1].file_index = 0;
  EXPECT_EQ(gx_viewport_pt_real_to_pixel(1, {5000, 5000}), gx_point16_t{});
  gx_viewport_pixel_to_obj2d({400, 400}, point);
  EXPECT_EQ(point, gx_pointreal_t{}) << "no file is shown";
}

TEST(Zoom, FitsCentresAndKeepsWithinLimits) {
  drawing_board board;
  auto& vp = gx_vext.viewport[1];
  gx_viewport_fit(1, {0, 100000, 160000, 180000});
  EXPECT_EQ(vp.object_scale, 210) << "200 and a margin of 5 percent";
  EXPECT_EQ(vp.bounds_part, (gx_boundsreal_t{-4000, 56000, 164000, 224000}));
  gx_viewport_fit(1, {10, 10, 20, 20});
  EXPECT_EQ(vp.object_scale, 1);
  gx_viewport_fit(1, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX});
  EXPECT_GT(vp.object_scale, 1000000);
  EXPECT_LT(vp.bounds_part.xmin, vp.bounds_part.xmax);
  gx_viewport_translate(1, 1, -1, INT32_MAX);
  EXPECT_LT(vp.bounds_part.ymin, vp.bounds_part.ymax);

  EXPECT_EQ(gx_area_of({10, 20}, {5, 8}), (gx_boundsreal_t{5, 8, 10, 20}));
  EXPECT_EQ(gx_area_of({10, 20}, {10, 8}), (gx_boundsreal_t{10, 8, 5010, 20}));
}

TEST(Zoom, KeepsThePointUnderThePointer) {
  drawing_board board;
  const gx_point16_t pointer{300, 700};
  gx_pointreal_t before, after;
  gx_viewport_pixel_to_obj2d(pointer, before);
  ASSERT_TRUE(gx_viewport_zoom_at(1, pointer, 1, 2));
  EXPECT_EQ(gx_vext.viewport[1].object_scale, 50);
  gx_viewport_pixel_to_obj2d(pointer, after);
  EXPECT_EQ(before, after);
  ASSERT_TRUE(gx_viewport_zoom_at(1, pointer, 6, 5));
  gx_viewport_pixel_to_obj2d(pointer, after);
  EXPECT_EQ(before, after);
  for (int i = 0; i < 100; ++i) gx_viewport_zoom_at(1, pointer, 5, 6);
  EXPECT_FALSE(gx_viewport_zoom_at(1, pointer, 5, 6)) << "one unit a pixel is the end";
  EXPECT_EQ(gx_vext.viewport[1].object_scale, 1);
  EXPECT_TRUE(gx_viewport_zoom_at(1, pointer, 6, 5)) << "and the way back is open";
  for (int i = 0; i < 200; ++i) gx_viewport_zoom_at(1, pointer, 6, 5);
  EXPECT_LT(gx_vext.viewport[1].bounds_part.xmin, gx_vext.viewport[1].bounds_part.xmax);
}
TEST(ViewportTable, BordersAndSegmentsAreDrawnInIt) {
  drawing_board board;
  EXPECT_EQ(lines_of(5, 1,
                     [] {
                       gx_viewport_draw_segment(1, {10, 20}, {30, 40}, 5, 1);
                     }),
            (std::vector<gx_line16_t>{{110, 120, 130, 140}}));
  EXPECT_EQ(gx_viewport_inq_pixel_min(1), (gx_point16_t{100, 100}));
  gx_draw_new_viewport_border(1, 3, 6);
  EXPECT_EQ(gx_vext.viewport[1].border.pixel_width, 3);
  EXPECT_EQ(gx_vext.viewport[1].border.border_color, 6);
  gx_draw_new_viewport_border(1, 300, 1000);
  EXPECT_EQ(gx_vext.viewport[1].border.pixel_width, 255);
  EXPECT_EQ(gx_vext.viewport[1].border.border_color, gx_nb_of_colors - 1);
  gx_draw_new_viewport_border(1, 1, 3);
  { const gx_offscreen_t without_screen({0, 0, 9, 9}); }
  gx_sync();
  const counting_screen screen;
  { const gx_offscreen_t picture({0, 0, 9, 9}); }
  EXPECT_EQ(counting_screen::pictures, 1);
  gx_clear_viewport(1);
  EXPECT_EQ(counting_screen::cleared, (gx_box16_t{101, 101, 799, 799}));
  EXPECT_EQ(counting_screen::clipped, (gx_box16_t{100, 100, 801, 801}));
  gx_clear_window();
  EXPECT_EQ(counting_screen::cleared, (gx_box16_t{1, 1, 998, 998}));
  EXPECT_EQ(gx_bounds_to_clipping_window({10000, 10000, 90000, 90000}, {3, 0, 0, 0}),
            (gx_bounds16_t{102, 102, 898, 898}));
  EXPECT_TRUE(gx_inq_file_disp_vpn(1, 1));
  EXPECT_FALSE(gx_inq_file_disp_vpn(2, 1) || gx_inq_file_disp_vpn(1, 2));
  gx_vext.viewport[1].vp_blocked = true;
  expect_stop([] { gx_draw_viewport_border(1); }, gx_code::viewport_blocked);
  expect_stop([] { gx_draw_new_viewport_border(1, 1, 3); }, gx_code::viewport_blocked);
  expect_stop([] { gx_viewport_draw_segment(1, {}, {}, 1, 0); }, gx_code::viewport_blocked);
  gx_vext.init_done = false;
  expect_stop([] { gx_draw_viewport_border(1); }, gx_code::init_not_done);
  expect_stop([] { gx_viewport_inq_pixel_min(1); }, gx_code::init_not_done);
  expect_stop([] { gx_viewport_select(1); }, gx_code::init_or_open_file_not_done);
  expect_stop([] { gx_viewport_create({}, border); }, gx_code::init_or_open_file_not_done);
}

TEST(Zoom, WhatWasShownIsShownAgainInAnotherWindowToo) {
  drawing_board board;
  auto& vp = gx_vext.viewport[1];
  const gx_shown_t shown = gx_viewport_shown(1);
  gx_viewport_zoom_at(1, {300, 700}, 1, 2);
  gx_viewport_show(1, shown);
  EXPECT_EQ(gx_viewport_shown(1), shown);
  vp.pixel_bounds = {100, 100, 500, 900};  // narrower: around the same middle
  gx_viewport_show(1, shown);
  EXPECT_EQ(vp.object_scale, 100);
  EXPECT_EQ(vp.bounds_part, (gx_boundsreal_t{20000, 0, 60000, 80000}));
  gx_viewport_pan(1, 10, -20);
  EXPECT_EQ(vp.bounds_part, (gx_boundsreal_t{19000, 2000, 59000, 82000}));
  EXPECT_FALSE(gx_viewport_zoom_at(1, {300, 700}, 0, 1) ||
               gx_viewport_zoom_at(1, {300, 700}, 1, 0));
  EXPECT_TRUE(gx_pixels_near({5, 5}, {7, 3}, 2));
  EXPECT_FALSE(gx_pixels_near({5, 5}, {8, 5}, 2) || gx_pixels_near({5, 5}, {5, 2}, 2));
}
}  // namespace
