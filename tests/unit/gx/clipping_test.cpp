#include "gx/display/strokes/clipping.h"

#include <cmath>

#include "gx/vext.h"
#include "tests/support/drawing_board.h"

namespace {
// The clip window is 100..900; lines are cut to 101..899.
struct line_case {
  const char* what;
  gx_line16_t line;
  bool visible;
  gx_line16_t cut{};
};

TEST(LineClipping, CutsToTheInnerWindow) {
  drawing_board board;
  const line_case cases[] = {
      {"inside", {200, 200, 300, 250}, true, {200, 200, 300, 250}},
      {"on the inner edge", {101, 101, 899, 899}, true, {101, 101, 899, 899}},
      {"a point", {200, 200, 200, 200}, false},
      {"left of it", {0, 200, 50, 700}, false},
      {"below it", {200, 950, 800, 901}, false},
      {"horizontal across", {0, 500, 1000, 500}, true, {101, 500, 899, 500}},
      {"horizontal backwards", {1000, 500, 0, 500}, true, {899, 500, 101, 500}},
      {"horizontal along the edge", {0, 101, 1000, 101}, false},
      {"horizontal just inside", {0, 102, 1000, 102}, true, {101, 102, 899, 102}},
      {"vertical across", {500, 20, 500, 300}, true, {500, 101, 500, 300}},
      {"vertical along the edge", {899, 0, 899, 1000}, false},
      {"slanted through two sides", {0, 400, 1000, 600}, true, {101, 420, 899, 579}},
      {"slanted, one end inside", {500, 500, 1500, 1000}, true, {500, 500, 899, 699}},
      {"backwards", {1500, 1000, 500, 500}, true, {899, 700, 500, 500}},
      {"past a corner", {0, 250, 250, 0}, true, {101, 149, 149, 101}},
      {"beside a corner", {0, 150, 150, 0}, false},
      {"steep, out through the top", {263, 327, 264, -7058}, true, {263, 327, 263, 101}},
      {"steep, in through the bottom", {301, 9000, 300, 500}, true, {300, 899, 300, 500}},
      {"as far as pixels go", {-20000, -20000, 20000, 20000}, true, {101, 101, 899, 899}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    gx_line16_t line = c.line;
    ASSERT_EQ(gx_line_clipping(1, line), c.visible);
    if (!c.visible) continue;
    EXPECT_NEAR(line.x1, c.cut.x1, 1);
    EXPECT_NEAR(line.y1, c.cut.y1, 1);
    EXPECT_NEAR(line.x2, c.cut.x2, 1);
    EXPECT_NEAR(line.y2, c.cut.y2, 1);
  }
}

TEST(Clipping, AreasAndArcs) {
  drawing_board board;
  EXPECT_TRUE(gx_circle_clipping(1, {95, 500}, 5));
  EXPECT_FALSE(gx_circle_clipping(1, {94, 500}, 5));
  EXPECT_TRUE(gx_circle_clipping(1, {500, 500}, 20000)) << "the edge may cross the window";
  EXPECT_TRUE(gx_filled_rectangle_clipping(1, {100, 100}, {900, 900}));
  EXPECT_FALSE(gx_filled_rectangle_clipping(1, {99, 200}, {300, 300}));
  EXPECT_TRUE(gx_arc_clipping(1, {0, 0}, {500, 500}, {1000, 1000}));
  EXPECT_FALSE(gx_arc_clipping(1, {100, 500}, {900, 500}, {500, 100})) << "on the edge only";
  gx_vext.viewport[1].clip_wind = {100, 200, 900, 600};
  const std::pair<gx_point16_t, bool> points[] = {{{100, 200}, true},  {{900, 600}, true},
                                                  {{150, 150}, false}, {{700, 601}, false},
                                                  {{99, 300}, false},  {{901, 300}, false}};
  for (const auto& [p, is_inside] : points) {
    EXPECT_EQ(gx_filled_rectangle_clipping(1, p, {300, 300}), is_inside) << p.x << " " << p.y;
    EXPECT_EQ(gx_filled_rectangle_clipping(1, {300, 300}, p), is_inside) << p.x << " " << p.y;
    EXPECT_EQ(gx_circle_clipping(1, p, 0), is_inside) << p.x << " " << p.y;
  }
  gx_vext.viewport[1].vp_blocked = true;
  gx_line16_t line{200, 200, 300, 300};
  EXPECT_FALSE(gx_line_clipping(1, line));
  EXPECT_FALSE(gx_arc_clipping(1, {500, 500}, {500, 500}, {500, 500}));
}
}  // namespace
