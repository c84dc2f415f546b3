// Smooth strokes: the pixels of plain ones where they are whole, coverage where they are not, and
// what of a picture is sent.
#include "gx/display/strokes/canvas.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "gx/display/strokes/dashes.h"
#include "gx/display/strokes/smooth.h"
#include "gx/display/strokes/stroke_text.h"
#include "tests/support/counting_screen.h"
#include "tests/support/drawing_board.h"

namespace {
constexpr gx_pixel_t ground = 0x102030, ink = 0xF0E0D0;
constexpr int all = 1 << 20;

// How much of the pixels is covered, in the red of them.
double covered(const gx_canvas_t& canvas, const gx_pixel_box_t& box) {
  double sum = 0;
  for (int y = box.y; y < box.y + box.height; ++y)
    for (int x = box.x; x < box.x + box.width; ++x)
      sum += (double(canvas.pixel(x, y) >> 16U) - 0x10) / (0xF0 - 0x10);
  return sum;
}

int count_shown(gx_canvas_t& canvas) {
  int pixels = 0;
  canvas.show_changes([&](const gx_pixel_box_t& box) { pixels += box.width * box.height; });
  return pixels;
}

TEST(Canvas, StraightLinesCoverWholePixels) {
  gx_canvas_t canvas(200, 100, ground);
  canvas.line(ink, {}, {20, 10, 50, 10}, 1);  // both ends are drawn
  EXPECT_EQ(covered(canvas, {20, 10, 31, 1}), 31);
  EXPECT_EQ(covered(canvas, {0, 0, 200, 100}), 31);
  // Two that meet in a corner fill it, however wide.
  gx_canvas_t corner(200, 100, ground);
  corner.line(ink, {}, {80, 20, 120, 20}, 3);
  corner.line(ink, {}, {120, 60, 120, 20}, 3);
  EXPECT_EQ(covered(corner, {119, 19, 3, 3}), 9);
  EXPECT_EQ(covered(corner, {0, 0, 200, 100}), 43 * 3 + 43 * 3 - 9);
}

TEST(Canvas, SlantedLinesCoverTheirArea) {
  struct case_t {
    gx_line16_t line;
    int width;
  };
  for (const auto& [line, width] : {case_t{{10, 10, 170, 90}, 1},
                                    {{10, 90, 170, 10}, 2},
                                    {{60, 5, 90, 95}, 3},
                                    {{90, 5, 60, 95}, 1}}) {
    gx_canvas_t canvas(200, 100, ground);
    canvas.line(ink, {}, line, width);
    const double length = std::hypot(line.x2 - line.x1, line.y2 - line.y1);
    EXPECT_NEAR(covered(canvas, {0, 0, 200, 100}), length * width, length * width * 0.03);
    EXPECT_GT(covered(canvas, {(line.x1 + line.x2) / 2 - 1, (line.y1 + line.y2) / 2 - 1, 3, 3}), 2);
  }
}

TEST(Canvas, CirclesAndArcsCoverTheirRing) {
  gx_canvas_t canvas(200, 100, ground);
  canvas.arc(ink, {}, {60, 10, 80, 0, 360 * 64}, 2);
  const double turn = 2 * M_PI * 40 * 2;
  EXPECT_NEAR(covered(canvas, {0, 0, 200, 100}), turn, turn * 0.02);
  EXPECT_NEAR(covered(canvas, {80, 30, 40, 40}), 0, 0.01);
  // The quarter from three o'clock up; a clip box keeps half of it.
  gx_canvas_t quarter(200, 100, ground);
  quarter.clip({100, 0, 100, 22});
  quarter.arc(ink, {}, {60, 10, 80, 0, 90 * 64}, 1);
  EXPECT_NEAR(covered(quarter, {0, 0, 200, 100}), M_PI * 40 / 4, 2);
  EXPECT_EQ(covered(quarter, {0, 22, 200, 78}), 0);
}

TEST(Canvas, DashesLeaveGaps) {
  gx_canvas_t canvas(200, 100, ground);
  canvas.line(ink, gx_dash_list(1), {0, 50, 119, 50}, 1);
  EXPECT_EQ(covered(canvas, {0, 0, 200, 100}), 60);
  EXPECT_EQ(covered(canvas, {0, 50, 6, 1}), 6);
  EXPECT_EQ(covered(canvas, {6, 50, 6, 1}), 0);
}

TEST(Canvas, OnlyWhatChangesIsSent) {
  gx_canvas_t canvas(1000, 500, ground);
  EXPECT_EQ(count_shown(canvas), 1000 * 500);  // nothing is known of the window
  EXPECT_EQ(count_shown(canvas), 0);
  const auto draw = [&](gx_pixel_t color) {
    canvas.clear({0, 0, 1000, 500});
    canvas.line(color, {}, {100, 100, 300, 300}, 1);
    canvas.box(color, {500, 400, 100, 50});
  };
  draw(ink);
  const int first = count_shown(canvas);
  EXPECT_GT(first, 5000);
  EXPECT_LT(first, 50000);
  draw(ink);  // the same picture again
  EXPECT_EQ(count_shown(canvas), 0);
  draw(0xFF0000);
  EXPECT_EQ(count_shown(canvas), first);
  canvas.clear({0, 0, 1000, 500});
  EXPECT_EQ(count_shown(canvas), first);
  canvas.forget_shown({0, 0, all, all});
  EXPECT_EQ(count_shown(canvas), 1000 * 500);
  canvas.set_ground(0);
  EXPECT_EQ(canvas.pixel(999, 499), 0U);
  EXPECT_EQ(count_shown(canvas), 1000 * 500);
}

TEST(Canvas, ExclusiveOrAndKeptAreasBringThePictureBack) {
  gx_canvas_t canvas(300, 200, ground);
  canvas.arc(ink, {}, {60, 10, 80, 0, 360 * 64}, 2);
  const gx_pixel_box_t whole{0, 0, 300, 200};
  const auto before = canvas.copy(whole);
  canvas.set_exclusive_or(true);
  canvas.box(ink, {50, 50, 100, 100});
  canvas.line(ink, {}, {0, 0, 299, 150}, 1);
  EXPECT_NE(canvas.copy(whole), before);
  EXPECT_EQ(canvas.pixel(60, 140), ink);  // over the ground it is the colour itself
  canvas.line(ink, {}, {0, 0, 299, 150}, 1);
  canvas.box(ink, {50, 50, 100, 100});
  EXPECT_EQ(canvas.copy(whole), before);
  canvas.set_exclusive_or(false);
  const gx_pixel_box_t beyond{200, 100, 500, 500};  // of which a part is in the picture
  const auto kept = canvas.copy(beyond);
  canvas.box(ink, beyond);
  canvas.put(beyond, kept);
  EXPECT_EQ(canvas.copy(whole), before);
}

// What a screen gets of smooth strokes.
class Smooth : public testing::Test {
 protected:
  Smooth() {
    for (std::size_t i = 0; i < gx_vext.colorrec.size(); ++i)
      gx_vext.colorrec[i] = {0, 0, 0, static_cast<std::uint16_t>(i * 0x1000)};
    EXPECT_TRUE(gx_set_smooth(true));
  }
  ~Smooth() override { gx_set_smooth(false); }
  int inked(const gx_pixel_box_t& box) const {
    int pixels = 0;
    for (int y = box.y; y < box.y + box.height; ++y)
      for (int x = box.x; x < box.x + box.width; ++x) pixels += gx_canvas()->pixel(x, y) != 0;
    return pixels;
  }

  drawing_board board_;
  counting_screen screen_;
};

TEST_F(Smooth, LettersLieWhereTheirStrokesDo) {
  gx_text(1, "E", 400, 500, 10, 0, 7);
  const gx_pixel_t full = gx_pixel_of(7);
  for (int y = 490; y <= 500; ++y) EXPECT_EQ(gx_canvas()->pixel(400, y), full) << y;
  for (int x = 400; x <= 406; ++x) EXPECT_EQ(gx_canvas()->pixel(x, 500), full) << x;
  EXPECT_EQ(inked({380, 470, 60, 60}), 11 + 6 + 6 + 5);
  gx_text(1, "E", 600, 500, 10, 1, 7);  // upwards: its stem lies flat
  for (int x = 590; x <= 600; ++x) EXPECT_EQ(gx_canvas()->pixel(x, 500), full) << x;
}

TEST_F(Smooth, TextsTooSmallToReadAreBars) {
  gx_text(1, "VPP VDD", 400, 500, 5, 0, 7);
  std::map<gx_pixel_t, int> colors;
  for (int y = 490; y <= 505; ++y)
    for (int x = 395; x < 450; ++x) ++colors[gx_canvas()->pixel(x, y)];
  EXPECT_EQ(colors.size(), 2U);  // the ground, and one between it and the text's
  EXPECT_FALSE(colors.contains(gx_pixel_of(7)));
  EXPECT_EQ(inked({400 + 3 * 6, 490, 6, 16}), 0);  // a gap between the words
  EXPECT_EQ(inked({400, 497, 17, 3}), 17 * 3);
}

TEST_F(Smooth, AWidthIsThatOfLinesAndLetters) {
  gx_set_line_width(2);
  gx_pen_line(7, 0, {300, 300, 399, 300});
  EXPECT_EQ(inked({290, 290, 120, 20}), 101 * 2);
  gx_set_line_width(0);  // a screen of 2160
  EXPECT_EQ(gx_line_width(), 2);
  gx_set_line_width(100);
  EXPECT_EQ(gx_line_width(), gx_max_line_width);
}
}  // namespace
