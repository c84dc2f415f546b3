// Objects drawn into the pen: which strokes, in which colour and style.
#include <algorithm>

#include "gx/db/queries.h"
#include "gx/display/sheet/draw.h"
#include "gx/display/sheet/highlight.h"
#include "gx/display/sheet/markers.h"
#include "gx/vext.h"
#include "tests/support/counting_screen.h"
#include "tests/support/drawing_board.h"
#include "tests/support/fatal_stop.h"

namespace {
constexpr int black = 0, red = 1, green = 2, cyan = 4, white = 7;
constexpr auto draws = gx_draw_mode::draw;
constexpr auto erases = gx_draw_mode::erase;
using segments_t = std::vector<gx_line16_t>;

segments_t drawn(int id, int color, int style = 0, gx_draw_mode mode = draws) {
  return lines_of(color, style, [&] { gx_display_prim(1, 1, id, 0, mode, false); });
}

TEST(Drawing, SelectedAndErasedLines) {
  const drawing_board board("sheet top\n page 20,20\n line 2,4 3,4 color cyan style 2\n");
  auto& line = board.record<gx_object_line_rec_t>();
  const int id = line.gene.object_id;
  const segments_t expected{{200, 300, 250, 300}};
  EXPECT_EQ(drawn(id, cyan, 2), expected);
  EXPECT_EQ(drawn(id, black, 2, erases), expected);
  gx_set_object_selected(board.file(), id, true);
  EXPECT_EQ(drawn(id, green, 3), expected);
  EXPECT_TRUE(drawn(id, cyan, 2).empty());
  for (const int flag : {gx_flag_deleted, gx_flag_unvisible}) {
    line.gene.status = static_cast<std::int16_t>(flag);
    EXPECT_TRUE(drawn(id, cyan, 2).empty()) << flag;
  }
}

TEST(Drawing, ThickLinesAreThinLinesSideBySide) {
  const drawing_board board(
      "sheet top\n page 20,20\n line 2,4 6,4 color cyan width 3\n line 2,4 4,2 color cyan width "
      "5\n");
  EXPECT_EQ(drawn(board.id(gx_type::line_2d), cyan),
            (segments_t{{200, 301, 400, 301}, {200, 302, 400, 302}, {200, 303, 400, 303}}));
  // Two more at 45 degrees, beside each other in x.
  const auto lines = drawn(board.id(gx_type::line_2d, 2), cyan);
  ASSERT_EQ(lines.size(), 7U);
  EXPECT_EQ(lines[0], (gx_line16_t{199, 300, 299, 200}));
}

TEST(Drawing, HostileRecordsStopOrStayInTheWindow) {
  const drawing_board board(
      "sheet top\n page 20,20\n line 2,2 2.2,2.2\n polyline 2,2 2.2,2.2 color black\n"
      " circle 2,2 1 color cyan\n text A at 2,2 color cyan\n");
  auto& line = board.record<gx_object_line_rec_t>();
  const int id = line.gene.object_id;
  line.line_style = 5;
  expect_stop([&] { drawn(id, cyan); }, gx_code::invalid_style);
  line.line_style = -1;
  expect_stop([&] { drawn(id, cyan); }, gx_code::invalid_style);
  line.line_style = 0;
  line.line_width = 0;
  expect_stop([&] { drawn(id, cyan); }, gx_code::invalid_line_2d);
  line.line_width = 255;
  line.line_color = 200;
  line.pt2 = {INT32_MAX, INT32_MIN};
  line.gene.bounds = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
  EXPECT_GT(drawn(id, white).size(), 254U);

  auto& polyline = board.record<gx_object_polyline_rec_t>();
  polyline.n_points = 32767;
  for (int i = 1; i < 16; ++i)
    polyline.points[static_cast<std::size_t>(i)] = {i * 100, i % 2 * 900};
  EXPECT_EQ(drawn(polyline.gene.object_id, black).size(), 15U);
  polyline.n_points = -3;
  EXPECT_TRUE(drawn(polyline.gene.object_id, black).empty());

  auto& text = board.record<gx_object_property_rec_t>();
  text.rotate = 200;
  text.height = INT32_MIN;
  EXPECT_TRUE(drawn(text.gene.object_id, cyan).empty());
  auto& circle = board.record<gx_object_circle_rec_t>();
  circle.gene.origin = {INT32_MAX, INT32_MIN};
  circle.gene.bounds = line.gene.bounds;
  circle.rad = INT32_MAX;
  drawn(circle.gene.object_id, cyan);
  const int frame = board.id(gx_type::frame);
  expect_stop([&] { drawn(frame, cyan); }, gx_code::object_type_invalid, "STEP1");
  expect_stop([&] { drawn(30000, cyan); }, gx_code::object_id_invalid);
  expect_stop([&] { gx_display_prim(2, 1, frame, 0, draws, false); }, gx_code::viewport_id_invalid);
}

TEST(Drawing, AWalkDrawsAllBelow) {
  const drawing_board board(
      "sheet top\n page 20,20\n line 2,4 3,4 color cyan\n line 2,6 3,6 color cyan\n"
      " text - at 6,6 color cyan\n");
  const int frame = board.id(gx_type::frame);
  const auto walk = [&](int color, bool forced) {
    return lines_of(color, 0, [&] {
      lb_display_all_frame(1, 1, draws);
      gx_display_object(1, 1, frame, 0, true, draws, forced);
    });
  };
  EXPECT_EQ(walk(cyan, false).size(), 2U * 3U);
  EXPECT_EQ(walk(green, true).size(), 1U) << "the text; lines are dashed";
  EXPECT_EQ(gx_vext.viewport[1].object_id, frame);
  EXPECT_EQ(board.file().displayed, 1);
  gx_set_object_deleted(board.file(), frame, true);
  EXPECT_EQ(lines_of(cyan, 0, [] { lb_display_all_frame(1, 1, draws); }).size(), 0U);
  gx_vext.display_on = false;
  EXPECT_EQ(walk(cyan, false).size(), 0U);
}

// --- instances

// A symbol of a line and a pin, placed once.
std::string placed(std::string_view how = "", std::string_view more = "") {
  std::string text =
      "symbol s\n line 0.4,0.2 1,0.4 color cyan\n pin A 1.2,0.6\n"
      "sheet top\n page 20,20\n part U s 8,8 ";
  return text.append(how).append("\n").append(more);
}

TEST(PlacedSymbol, TurnsAndMirrors) {
  // The line runs from (2000, 1000) to (5000, 2000), in pixels (20, 10) to (50, 20).
  const gx_line16_t offsets[2][4] = {
      {{20, 10, 50, 20}, {10, -20, 20, -50}, {-20, -10, -50, -20}, {-10, 20, -20, 50}},
      {{20, -10, 50, -20}, {10, 20, 20, 50}, {-20, 10, -50, 20}, {-10, -20, -20, -50}}};
  const gx_point16_t pins[2][4] = {{{60, 30}, {30, -60}, {-60, -30}, {-30, 60}},
                                   {{60, -30}, {30, 60}, {-60, 30}, {-30, -60}}};
  for (int mirrored = 0; mirrored < 2; ++mirrored)
    for (int rotate = 0; rotate < 4; ++rotate) {
      SCOPED_TRACE(rotate + 10 * mirrored);
      const drawing_board board(
          placed("rotate " + std::to_string(rotate) + (mirrored != 0 ? " mirror" : "")));
      const auto see = [](int color) {
        return lines_of(color, 0, [] { lb_display_all_inst(1, 1, draws); });
      };
      const auto& o = offsets[mirrored][rotate];
      const auto shift = [](int v) { return static_cast<std::int16_t>(500 + v); };
      EXPECT_EQ(see(cyan), (segments_t{{shift(o.x1), shift(o.y1), shift(o.x2), shift(o.y2)}}));
      const auto diamond = see(red);
      ASSERT_EQ(diamond.size(), 4U);
      int x = 0, y = 0;
      for (const auto& edge : diamond) {
        x += edge.x1;
        y += edge.y1;
      }
      EXPECT_EQ(x / 4, 500 + pins[mirrored][rotate].x);
      EXPECT_EQ(y / 4, 500 + pins[mirrored][rotate].y);
    }
}

// --- nets

segments_t net_drawn(const drawing_board& board, int color) {
  return lines_of(color, 0, [&] { gx_display_net(1, 1, board.id(gx_type::net), draws); });
}

// From the pin at (46000, 43000) to a vertex at (60000, 43000).
constexpr std::string_view stub = "net\n wire U.A 12,8.6\n";

TEST(DrawnNet, MarksTheLooseEndOfAStub) {
  const drawing_board board(placed("", stub));
  board.record<gx_object_vertex_rec_t>().dotted = 1;
  board.file().dot_width = 300;
  EXPECT_EQ(net_drawn(board, cyan), (segments_t{{560, 530, 700, 530}}));
  std::vector<gx_bounds16_t> dots;
  see_strokes([&] { gx_display_net(1, 1, board.id(gx_type::net), draws); },
              [&](const gx_stroke_group_t& group) {
                if (group.color != cyan) return;
                for (const gx_box16_t& b : group.boxes)
                  dots.push_back({b.x, b.y, static_cast<std::int16_t>(b.x + b.width),
                                  static_cast<std::int16_t>(b.y + b.height)});
              });
  EXPECT_EQ(dots, (std::vector<gx_bounds16_t>{{697, 527, 703, 533}}));
  const auto mark = net_drawn(board, white);
  ASSERT_EQ(mark.size(), 8U);
  EXPECT_EQ(mark[0], (gx_line16_t{554, 530, 560, 536}));
  EXPECT_EQ(mark[4], (gx_line16_t{553, 530, 560, 537}));
}

TEST(DrawnNet, OnlyAStubWithoutANameHasALooseEnd) {
  const std::pair<const char*, std::size_t> cases[] = {
      {"net\n prop NETS=x\n wire U.A 12,8.6\n", 8},  // not its name
      {"net N\n wire U.A 12,8.6\n", 0},
      {"part V s 12,8\n net\n wire U.A V.A\n", 0},  // between two pins
      {"net\n wire U.A 12,8.6 12,9\n", 0}};         // two segments
  for (const auto& [net, lines] : cases)
    EXPECT_EQ(net_drawn(drawing_board(placed("", net)), white).size(), lines) << net;
  const drawing_board board(placed("", cases[1].first));
  gx_set_object_deleted(board.file(),
                        lb_net_properties(board.file(), board.id(gx_type::net)).first(), true);
  EXPECT_EQ(net_drawn(board, white).size(), 8U);
}

TEST(DrawnNet, AMarkedNetStandsOutWithItsName) {
  const drawing_board board(placed("", stub));
  const int net = board.id(gx_type::net);
  const segments_t segment{{560, 530, 700, 530}};
  gx_highlight_net(1, net, "AB");
  EXPECT_EQ(net_drawn(board, green), segment);
  EXPECT_EQ(net_drawn(board, cyan), segments_t{});
  // A line to the box at the pin, where there is room, the box, and the name in it.
  const auto probe = net_drawn(board, white);
  const auto count_inside = [&](int x0, int y0, int x1, int y1) {
    return std::count_if(probe.begin(), probe.end(), [&](const gx_line16_t& l) {
      return std::min(l.x1, l.x2) >= x0 && std::max(l.x1, l.x2) <= x1 &&
             std::min(l.y1, l.y2) >= y0 && std::max(l.y1, l.y2) <= y1;
    });
  };
  EXPECT_EQ(std::count(probe.begin(), probe.end(), gx_line16_t{560, 530, 610, 580}), 1);
  const auto in_name = count_inside(611, 581, 784, 679);
  EXPECT_GT(in_name, 10);
  EXPECT_EQ(count_inside(610, 580, 785, 680), in_name + 4);
  gx_highlight_net(2, net, "other sheet");
  gx_highlight_clear(1);
  EXPECT_EQ(net_drawn(board, cyan), segment);
  gx_highlight_segment(1, board.id(gx_type::segment));
  EXPECT_EQ(net_drawn(board, green), segment);
  constexpr int yellow = 5;
  gx_highlight_net(1, net, "", 0, 2);
  EXPECT_EQ(net_drawn(board, yellow), segment) << "in the second colour";
  gx_highlight_clear_all();
  EXPECT_EQ(net_drawn(board, green), segments_t{});
}

TEST(DrawnNet, ANameIsAtTheFirstEndWithRoom) {
  const drawing_board board(placed("", " net N\n  wire U.A 4,8.6\n"));
  auto& part = gx_vext.viewport[1].bounds_part;
  part.xmin = -20000;  // the pin at 760, the other end at 500
  const auto line_at = [&](std::string_view name) {
    gx_highlight_net(1, board.id(gx_type::net), name);
    for (const auto& line : net_drawn(board, white))
      if (line.x2 == line.x1 + 50 && line.y2 == line.y1 + 50) return int{line.x1};
    return 0;
  };
  EXPECT_EQ(line_at("A"), 500);
  EXPECT_EQ(line_at("ABCD"), 500);
  EXPECT_EQ(line_at("ABCDEFGHI"), 760) << "no room anywhere";
  part.xmin = 0;
  EXPECT_EQ(line_at("A"), 560);
  gx_highlight_clear_all();
}

TEST(DrawnNet, AMarkedNetWithoutAWireShowsItsPinsAndName) {
  const drawing_board board(placed("", stub));
  const int net = board.id(gx_type::net);
  gx_highlight_net(1, net, "AB");
  auto name = net_drawn(board, white);
  name.erase(name.begin(), name.begin() + 8);  // the mark of the loose end
  gx_set_object_deleted(board.file(), board.id(gx_type::segment), true);
  EXPECT_EQ(net_drawn(board, green).size(), 4U) << "the diamond of its pin";
  EXPECT_EQ(net_drawn(board, white), name) << "at the same place";
  gx_highlight_clear_all();
  EXPECT_EQ(net_drawn(board, green).size() + net_drawn(board, white).size(), 0U);
}

// --- what lies on top

TEST(Drawing, WhatIsDrawnLaterLiesOnTop) {
  const drawing_board board;
  gx_vext.color_obj_selected = green;
  // The colour of each stroke, in the order in which they are sent.
  const auto order = [&](const std::function<void()>& draw) {
    std::string colors;
    see_strokes(draw, [&](const gx_stroke_group_t& group) {
      for (std::size_t i = 0; i < group.lines.size() + group.boxes.size() + group.arcs.size(); ++i)
        colors += std::to_string(group.color);
    });
    return colors;
  };
  const auto line = [](int color, int y) {
    gx_pen_line(color, 0, {200, static_cast<std::int16_t>(y), 400, static_cast<std::int16_t>(y)});
  };
  EXPECT_EQ(order([&] {
              line(1, 300);
              gx_pen_box(2, 150, 250, 100, 100);  // hides the line
              line(1, 310);
              gx_pen_arc(3, 0, {300, 200, 200, 0, 23040});
              gx_pen_line(2, 0, {390, 200, 399, 500});
            }),
            "12132");
  EXPECT_EQ(order([&] {
              for (int i = 0; i < 3; ++i) {
                line(1, 200 + 50 * i);
                line(4, 220 + 50 * i);
              }
            }),
            "111444")
      << "apart from each other: one request a colour";
  std::string crowded;
  for (int i = 0; i < 300; ++i) crowded += "14";
  EXPECT_EQ(order([&] {
              for (int i = 0; i < 100; ++i) line(i % 2 == 0 ? 1 : 4, 300);
            }),
            crowded.substr(0, 100));
}

// --- grid and markers

TEST(Drawing, ShapesOfASheetAreLinesBoxesAndArcs) {
  const drawing_board board(R"(
sheet top
  page 20,20
  rect 2,2 4,6
  rect 2,2 4,6 filled
  circle 6,6 2
  circle 6,6 0.04
)");
  const auto strokes = [&](int id) {
    std::string text;
    see_strokes([&] { gx_display_prim(1, 1, id, 0, draws, false); },
                [&](const gx_stroke_group_t& group) {
                  for (const auto& line : group.lines)
                    text += std::to_string(line.x2) + "," + std::to_string(line.y2) + " ";
                  for (const auto& box : group.boxes)
                    text += std::to_string(box.width) + "x" + std::to_string(box.height) + " at " +
                            std::to_string(box.x) + "," + std::to_string(box.y);
                  for (std::size_t i = 0; i < group.arcs.size(); ++i) text += "arc ";
                });
    return text;
  };
  EXPECT_EQ(strokes(board.id(gx_type::rectangle_2d, 1)), "300,200 300,400 200,400 200,200 ");
  EXPECT_EQ(strokes(board.id(gx_type::rectangle_2d, 2)), "100x200 at 200,200");
  EXPECT_EQ(strokes(board.id(gx_type::circle_2d, 1)), "arc ");
  EXPECT_EQ(strokes(board.id(gx_type::circle_2d, 2)), "400,402 402,400 400,398 398,400 ");
}

TEST(Drawing, ASelectedViewportClips) {
  const drawing_board board;
  const counting_screen screen;
  gx_vext.viewport[1].clip_wind = {100, 200, 900, 600};
  gx_viewport_select(1);
  const auto& box = counting_screen::clipped;
  EXPECT_EQ((std::vector<int>{box.x, box.y, box.width, box.height}),
            (std::vector{100, 200, 801, 401}));
  gx_vext.viewport[1].border.pixel_width = 3;
  gx_clear_viewport(1);
  const auto& cleared = counting_screen::cleared;
  EXPECT_EQ((std::vector<int>{cleared.x, cleared.y, cleared.width, cleared.height}),
            (std::vector{103, 103, 795, 795}));
}

TEST(Drawing, DotsOfAGridAndOfAMarkedRectangle) {
  const drawing_board board;
  const auto boxes_of = [](const std::function<void()>& draw) {
    std::string text;
    see_strokes(draw, [&](const gx_stroke_group_t& group) {
      for (const auto& box : group.boxes)
        text += std::to_string(box.x) + "," + std::to_string(box.y) + ":" +
                std::to_string(box.width) + " ";
    });
    return text;
  };
  // Seven by two, every fifth column wider; places are those of the viewport.
  EXPECT_EQ(boxes_of([] {
              gx_viewport_draw_grid(1, {10, 20}, {70, 50}, 7, 2, 7);
            }),
            "109,120:2 120,120:1 130,120:1 140,120:1 150,120:1 159,120:2 170,120:1 "
            "109,150:2 120,150:1 130,150:1 140,150:1 150,150:1 159,150:2 170,150:1 ");
  for (const auto& [nx, ny] : {std::pair{1, 2}, {2, 1}})
    expect_stop(
        [nx = nx, ny = ny] {
          gx_viewport_draw_grid(1, {}, {9, 9}, nx, ny, 7);
        },
        gx_code::viewport_id_invalid);
  EXPECT_EQ(boxes_of([] {
              gx_display_rectangle_dot({220, 210}, {200, 200}, 7, 3);
            }),
            "200,200:3 200,210:3 210,200:3 210,210:3 ");
}

// Marks of the place (50000, 30000), pixel (600, 400), as their corners in steps of four pixels.
TEST(Drawing, MarksHaveTheirShapesAndStayOffTheEdge) {
  const drawing_board board;
  const auto corners = [](int step, int color, void (*mark)(gx_vpid_t, gx_pointreal_t),
                          gx_pointreal_t at = {50000, 30000}) {
    std::string text;
    for (const auto& line : lines_of(color, 0, [&] { mark(drawing_board::edit, at); }))
      text += std::to_string((line.x2 - 600) / step) + "," +
              std::to_string((line.y2 - 400) / step) + " ";
    return text;
  };
  EXPECT_EQ(corners(4, white, gx_display_half_cross), "-1,2 1,2 -1,-2 1,-2 0,0 ");
  EXPECT_EQ(corners(4, white, gx_display_cross),
            "-2,1 -1,2 1,-2 2,-1 0,0 -2,-1 -1,-2 1,2 2,1 0,0 ");
  EXPECT_EQ(corners(4, green, gx_display_selvertex), "-2,-1 -2,1 2,-1 2,1 0,0 ");
  EXPECT_EQ(corners(6, white, gx_display_pin_nocon), "0,1 1,0 0,-1 -1,0 0,1 1,0 0,-1 -1,0 ");
  // Ten pixels from the edge are room enough, nine are not.
  const auto is_drawn = [&](std::int32_t x, std::int32_t y) {
    return !corners(4, white, gx_display_cross, {x * 100, y * 100}).empty();
  };
  EXPECT_TRUE(is_drawn(10, 400) && is_drawn(790, 400) && is_drawn(400, 10) && is_drawn(400, 790));
  EXPECT_FALSE(is_drawn(9, 400) || is_drawn(791, 400) || is_drawn(400, 9) || is_drawn(400, 791));
  gx_vext.viewport[1].vp_blocked = true;
  EXPECT_FALSE(is_drawn(400, 400));
}

TEST(Drawing, MarksKeptByACommandAreDrawnAgainUntilForgotten) {
  const drawing_board board;
  const auto drawn_again = [] {
    return lines_of(white, 0, [] { gx_display_kept_marks(1); }).size() +
           lines_of(white, 1, [] { gx_display_kept_marks(1); }).size();
  };
  gx_keep_cross(1, {40000, 40000});
  gx_keep_cross(1, {40000, 40000});
  gx_keep_link(1, {40000, 40000}, {50000, 50000});
  EXPECT_EQ(drawn_again(), 10U + 1U);
  gx_forget_marks(2);
  EXPECT_EQ(drawn_again(), 10U + 1U);
  gx_forget_marks(1);
  EXPECT_EQ(drawn_again(), 0U);
  gx_vext.viewport_current = 0;
  expect_stop([] { gx_display_cross(1, {40000, 40000}); }, gx_code::viewport_id_invalid);
}

}  // namespace
