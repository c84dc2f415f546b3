// Objects drawn into the pen: which strokes, in which colour and style.
#include <sstream>

#include "gx/db/queries.h"
#include "gx/display/sheet/draw.h"
#include "gx/display/sheet/highlight.h"
#include "gx/display/sheet/markers.h"
#include "gx/vext.h"
#include "tests/support/counting_screen.h"
#include "tests/support/drawing_board.h"
#include "tests/support/fatal_stop.h"
#include "tests/support/session_case.h"

namespace {
constexpr int black = 0, green = 2, cyan = 4, white = 7;
constexpr auto draws = gx_draw_mode::draw;
constexpr auto erases = gx_draw_mode::erase;
using segments_t = std::vector<gx_line16_t>;

segments_t drawn(int id, int color, int style = 0, gx_draw_mode mode = draws) {
  return lines_of(color, style, [&] { gx_display_prim(1, 1, id, 0, mode, false); });
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

// What is drawn of a sheet: "COLOUR STYLE" and lines "x,y-x,y", boxes "x,y widthxheight" or arcs.
class drawing_session {
 public:
  explicit drawing_session(std::string_view design) : board_(design) {}
  ~drawing_session() { gx_highlight_clear_all(); }
  lines_t answer(const std::string& line) {
    std::istringstream words(line);
    std::string verb, name;
    words >> verb;
    if (verb == "draw" || verb == "erase") {
      const auto mode = verb == "draw" ? draws : erases;
      if (words.eof()) return strokes([] { lb_display_all_inst(1, 1, draws); });
      const int id = object_named(board_, words);
      const bool is_net = gx_object_id_ptr(board_.file(), id).object_type == gx_type::net;
      return strokes([&] {
        is_net ? gx_display_net(1, 1, id, mode) : gx_display_prim(1, 1, id, 0, mode, false);
      });
    }
    if (verb == "mark") {  // the first net, or that of another file, with a colour of the marks
      int file = 1, color = 1;
      words >> name >> file >> color;
      gx_highlight_net(static_cast<gx_file_index_t>(file), board_.id(gx_type::net),
                       name == "-" ? "" : name, 0, color);
    } else if (verb == "mark-segment") {
      gx_highlight_segment(1, board_.id(gx_type::segment));
    } else if (verb == "unmark") {
      gx_highlight_clear(1);
    } else if (verb == "left") {  // the edge of what is shown
      words >> gx_vext.viewport[1].bounds_part.xmin;
    } else if (verb == "dotted") {
      board_.record<gx_object_vertex_rec_t>().dotted = 1;
      words >> board_.file().dot_width;
    } else {
      EXPECT_TRUE(change_object(board_, line)) << line;
    }
    return {};
  }

 private:
  static lines_t strokes(const std::function<void()>& draw) {
    lines_t lines;
    see_strokes(draw, [&](const gx_stroke_group_t& group) {
      std::ostringstream text;
      text << group.color << ' ' << group.dashes;
      for (const auto& l : group.lines)
        text << ' ' << l.x1 << ',' << l.y1 << '-' << l.x2 << ',' << l.y2;
      for (const auto& b : group.boxes)
        text << " box " << b.x << ',' << b.y << ' ' << b.width << 'x' << b.height;
      for (const auto& c : group.arcs)
        text << " arc " << c.x << ',' << c.y << ' ' << c.size << ' ' << c.angle << '+' << c.extent;
      lines.push_back(text.str());
    });
    return lines;
  }
  drawing_board board_;
};

TEST(Drawing, ObjectsHaveTheirStrokes) { expect_sessions<drawing_session>("picture/strokes.txt"); }

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
