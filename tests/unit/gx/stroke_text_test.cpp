#include "gx/display/strokes/stroke_text.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>

#include "gx/text/messages/message_list.h"
#include "gx/vext.h"
#include "tests/support/counting_screen.h"
#include "tests/support/drawing_board.h"
#include "tests/support/fatal_stop.h"

namespace {
constexpr int color = 7;

void set_size(std::int16_t height, std::int16_t step) {
  gx_vext.cmd_height = height;
  gx_vext.cmd_step = step;
  gx_setarray_hortext();
}

std::vector<gx_line16_t> screen_text(std::string_view text, int istart = 1) {
  return lines_of(color, 0, [&] { gx_hortext(1, text, istart, 200, 300, true, color); });
}

std::vector<gx_line16_t> sheet_text(std::string_view text, int height, int rotation) {
  return lines_of(color, 0, [&] { gx_text(1, text, 400, 500, height, rotation, color); });
}

using points_t = std::vector<std::pair<int, int>>;

std::vector<points_t> strokes_of(char32_t c) {
  std::vector<points_t> strokes;
  for (const auto stroke : gx_glyph(c)) {
    strokes.emplace_back();
    for (const auto p : stroke) strokes.back().emplace_back(p.x, p.y);
  }
  return strokes;
}

constexpr char32_t no_glyph[] = {U' ', U'\n', 0x7F, 0x85, 0xA0};

using pixels_t = std::set<points_t::value_type>;

// The pixels of thin lines.
pixels_t pixels_of(const std::vector<gx_line16_t>& lines) {
  pixels_t pixels;
  for (const auto& line : lines) {
    const int dx = line.x2 - line.x1, dy = line.y2 - line.y1;
    const int steps = std::max({std::abs(dx), std::abs(dy), 1});
    for (int i = 0; i <= steps; ++i)
      pixels.emplace(line.x1 + std::lround(double(dx) * i / steps),
                     line.y1 + std::lround(double(dy) * i / steps));
  }
  return pixels;
}

TEST(StrokeFont, EveryCharacterHasALookOfItsOwn) {
  drawing_board board;
  EXPECT_EQ(strokes_of('!'), (std::vector<points_t>{{{0, 1000}, {0, 300}}, {{0, 150}, {0, 0}}}));
  EXPECT_EQ(strokes_of('"'),
            (std::vector<points_t>{{{250, 1000}, {250, 800}}, {{550, 1000}, {550, 800}}}));
  EXPECT_EQ(strokes_of('#'), (std::vector<points_t>{{{100, 0}, {200, 1000}},
                                                    {{400, 0}, {500, 1000}},
                                                    {{0, 400}, {600, 400}},
                                                    {{0, 600}, {600, 600}}}));
  for (const char32_t c : no_glyph) EXPECT_TRUE(gx_glyph(c).empty());
  // In texts of the sheet, and of the screen in windows of several sizes.
  const auto expect_all_different = [&](auto draw) {
    std::map<pixels_t, std::string> looks;
    for (char c = '!'; c <= '~'; ++c) looks[pixels_of(draw(std::string(1, c)))] += c;
    for (const auto& [pixels, characters] : looks) EXPECT_EQ(characters.size(), 1U) << characters;
  };
  for (const int height : {5, 6, 7, 8, 9, 10, 12, 15, 20}) {
    SCOPED_TRACE(height);
    expect_all_different([&](const auto& text) { return sheet_text(text, height, 0); });
  }
  for (const auto& [height, step] : {std::pair{6, 8}, {8, 11}, {9, 12}, {12, 14}}) {
    SCOPED_TRACE(height);
    set_size(static_cast<std::int16_t>(height), static_cast<std::int16_t>(step));
    expect_all_different([&](const auto& text) { return screen_text(text); });
  }
}

TEST(StrokeFont, ScalesOnceForTheScreen) {
  drawing_board board;
  gx_setarray_hortext();
  EXPECT_EQ(gx_vext.coef_charh, 0) << "no size yet";
  set_size(13, 14);
  EXPECT_EQ(gx_vext.coef_charh, 76);
  EXPECT_EQ(gx_vext.coef_chars, 85);
  EXPECT_EQ(screen_text("!"),
            (std::vector<gx_line16_t>{{200, 300, 200, 310}, {200, 312, 200, 313}}));
}

TEST(SheetText, ReadsInFourDirections) {
  drawing_board board;
  EXPECT_EQ(sheet_text(std::string(99, 'L'), 5, 0).size(), 2U * 60U) << "cut to 60";
  EXPECT_TRUE(sheet_text(std::string(201, 'L'), 5, 0).empty()) << "wider than the window";
  // At 10 pixels "L" is a stroke of 10 up and one of 6 along; the second one stands 12 further.
  EXPECT_EQ(sheet_text("L", 10, 0),
            (std::vector<gx_line16_t>{{400, 490, 400, 500}, {400, 500, 406, 500}}));
  EXPECT_EQ(sheet_text("L", 10, 2), sheet_text("L", 10, 0));
  EXPECT_EQ(sheet_text(" L", 10, 1),
            (std::vector<gx_line16_t>{{390, 488, 400, 488}, {400, 488, 400, 482}}));
  EXPECT_EQ(sheet_text(" L", 10, 3),
            (std::vector<gx_line16_t>{{410, 512, 400, 512}, {400, 512, 400, 518}}));
}

TEST(SheetText, StaysInTheViewportAndMayClearItsGround) {
  drawing_board board;  // its viewport ends at 100 and 900
  const auto at = [](int x, int y, bool opaque = false, int rotation = 0) {
    return lines_of(color, 0, [&] { gx_text(1, "L", x, y, 10, rotation, color, opaque); });
  };
  EXPECT_EQ(at(897, 500), (std::vector<gx_line16_t>{{897, 490, 897, 500}, {897, 500, 900, 500}}));
  EXPECT_EQ(at(400, 105), (std::vector<gx_line16_t>{{400, 100, 400, 105}, {400, 105, 406, 105}}));
  EXPECT_FALSE(at(900, 900).empty());
  for (const auto& [x, y] : {std::pair{901, 500}, {99, 500}, {400, 99}, {400, 901}})
    EXPECT_TRUE(at(x, y).empty()) << x << " " << y;
  const gx_grid_point_t stroke[] = {{0, 0}, {600, 300}};
  const auto polyline = [&](int x, int y) {
    return lines_of(color, 0, [&] { gx_polyline_char_2d16(1, x, y, 10, 0, stroke, color); });
  };
  EXPECT_EQ(polyline(400, 500), (std::vector<gx_line16_t>{{400, 500, 406, 497}}));
  EXPECT_EQ(polyline(897, 101), (std::vector<gx_line16_t>{{897, 101, 900, 100}}));
  const counting_screen screen;
  const auto cleared = [&](int x, int y, int rotation) {
    at(x, y, true, rotation);
    return counting_screen::cleared;
  };
  EXPECT_EQ(cleared(400, 500, 0), (gx_box16_t{400, 490, 12, 15}));
  EXPECT_EQ(cleared(400, 500, 1), (gx_box16_t{390, 488, 15, 12}));
  EXPECT_EQ(cleared(400, 500, 3), (gx_box16_t{395, 500, 15, 12}));
  EXPECT_EQ(cleared(895, 895, 0), (gx_box16_t{895, 885, 5, 15}));
  // A line of a list clears all of itself, or as far as it goes.
  set_size(10, 12);
  const auto line = [](std::string_view text, bool whole) {
    gx_hortext(1, text, 1, 200, 300, whole, color);
    return counting_screen::cleared;
  };
  EXPECT_EQ(line("ab", true), (gx_box16_t{199, 299, 60 * 12 + 1, 17}));
  EXPECT_EQ(line("ab", false), (gx_box16_t{199, 299, 3 * 12 + 2, 17}));
  EXPECT_EQ(line(std::string(70, 'a'), false), (gx_box16_t{199, 299, 60 * 12 + 2, 17}));
  // The list may have letters of its own.
  gx_set_list_width(100);
  gx_vext.list_height = 5;
  gx_vext.viewport_list = 1;
  EXPECT_EQ(line("ab", true), (gx_box16_t{199, 299, 100 * 6 + 1, 9}));
  gx_vext.viewport_list = 2;
  EXPECT_EQ(line("ab", true), (gx_box16_t{199, 299, 60 * 12 + 1, 17}));
  EXPECT_EQ(screen_text("abL", 3), screen_text("L"));
  EXPECT_TRUE(screen_text("ab", 3).empty());
}

}  // namespace
