// Objects drawn into the pen: which strokes, in which colour and style.
#include <algorithm>

#include "gx/display/draw.h"
#include "gx/display/highlight.h"
#include "gx/vext.h"
#include "tests/support/drawing_board.h"
#include "tests/unit/fatal_stop.h"

namespace {
constexpr int black = 0, red = 1, green = 2, cyan = 4, white = 7;
constexpr auto draws = gx_draw_mode::draw;
constexpr auto erases = gx_draw_mode::erase;
using lines_t = std::vector<gx_line16_t>;

// A sheet with a frame whose graphics hold the primitives of the test.
class Drawing : public ::testing::Test {
 protected:
  Drawing() {
    frame_ = gxm_add_plain(board.tree, gx_type::frame, board.family(gx_type::frame_family));
    graphics_ = gxm_add_plain(board.tree, gx_type::graphics, frame_);
  }

  gx_object_line_rec_t& add_line(gx_pointreal_t from, gx_pointreal_t by) {
    auto& line = board.add<gx_object_line_rec_t>(
        from, {std::min(0, by.x), std::min(0, by.y), std::max(0, by.x), std::max(0, by.y)},
        graphics_);
    line.pt2 = by;
    line.line_color = cyan;
    return line;
  }
  gx_object_circle_rec_t& add_circle(gx_pointreal_t at, std::int32_t rad) {
    auto& circle = board.add<gx_object_circle_rec_t>(at, {-rad, -rad, rad, rad}, graphics_);
    circle.rad = rad;
    circle.border_color = cyan;
    return circle;
  }
  gx_object_property_rec_t& add_text(gx_pointreal_t at, std::string_view value, int father) {
    auto& text = board.add<gx_object_property_rec_t>(at, {0, -1000, 6000, 500}, father);
    std::copy(value.begin(), value.end(), text.nvalue.char_);
    text.nvalue.len = static_cast<std::int32_t>(value.size());
    text.visible = 1;
    text.line_color = cyan;
    text.height = 1000;
    return text;
  }

  lines_t drawn(int id, int color, int style = 0, gx_draw_mode mode = draws) {
    return lines_of(color, style, [&] { gx_display_prim(1, 1, id, 0, mode, false); });
  }

  drawing_board board;
  int frame_ = 0, graphics_ = 0;
};

TEST_F(Drawing, SelectedAndErasedLines) {
  auto& line = add_line({10000, 20000}, {5000, 0});
  line.line_style = 2;
  const int id = line.gene.object_id;
  const lines_t expected{{200, 300, 250, 300}};
  EXPECT_EQ(drawn(id, cyan, 2), expected);
  EXPECT_EQ(drawn(id, black, 2, erases), expected);
  board.select(id);
  EXPECT_EQ(drawn(id, green, 3), expected);
  EXPECT_TRUE(drawn(id, cyan, 2).empty());
  for (const int flag : {gx_flag_deleted, gx_flag_unvisible}) {
    line.gene.status = static_cast<std::int16_t>(flag);
    EXPECT_TRUE(drawn(id, cyan, 2).empty()) << flag;
  }
}

TEST_F(Drawing, ThickLinesAreThinLinesSideBySide) {
  auto& flat = add_line({10000, 20000}, {20000, 0});
  flat.line_width = 3;
  EXPECT_EQ(drawn(flat.gene.object_id, cyan),
            (lines_t{{200, 301, 400, 301}, {200, 302, 400, 302}, {200, 303, 400, 303}}));
  auto& slanted = add_line({10000, 20000}, {10000, -10000});
  slanted.line_width = 5;  // two more at 45 degrees, beside each other in x
  const auto lines = drawn(slanted.gene.object_id, cyan);
  ASSERT_EQ(lines.size(), 7U);
  EXPECT_EQ(lines[0], (gx_line16_t{199, 300, 299, 200}));
}

TEST_F(Drawing, HostileRecordsStopOrStayInTheWindow) {
  auto& line = add_line({10000, 10000}, {1000, 1000});
  line.line_style = 5;
  expect_stop([&] { drawn(line.gene.object_id, cyan); }, gx_code::invalid_style);
  line.line_style = -1;
  expect_stop([&] { drawn(line.gene.object_id, cyan); }, gx_code::invalid_style);
  line.line_style = 0;
  line.line_width = 0;
  expect_stop([&] { drawn(line.gene.object_id, cyan); }, gx_code::invalid_line_2d);
  line.line_width = 255;
  line.line_color = 200;
  line.pt2 = {INT32_MAX, INT32_MIN};
  line.gene.bounds = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
  EXPECT_GT(drawn(line.gene.object_id, white).size(), 254U);

  auto& polyline = board.add<gx_object_polyline_rec_t>({10000, 10000}, {0, 0, 900, 900}, graphics_);
  polyline.n_points = 32767;
  for (int i = 1; i < 16; ++i)
    polyline.points[static_cast<std::size_t>(i)] = {i * 100, i % 2 * 900};
  EXPECT_EQ(drawn(polyline.gene.object_id, black).size(), 15U);
  polyline.n_points = -3;
  EXPECT_TRUE(drawn(polyline.gene.object_id, black).empty());

  auto& text = add_text({10000, 10000}, "A", graphics_);
  text.rotate = 200;
  text.height = INT32_MIN;
  EXPECT_TRUE(drawn(text.gene.object_id, cyan).empty());
  add_circle({INT32_MAX, INT32_MIN}, INT32_MAX).gene.bounds = line.gene.bounds;
  drawn(graphics_ + 4, cyan);
  expect_stop([&] { drawn(frame_, cyan); }, gx_code::object_type_invalid, "STEP1");
  expect_stop([&] { drawn(30000, cyan); }, gx_code::object_id_invalid);
  expect_stop([&] { gx_display_prim(2, 1, frame_, 0, draws, false); },
              gx_code::viewport_id_invalid);
}

TEST_F(Drawing, AWalkDrawsAllBelow) {
  add_line({10000, 20000}, {5000, 0});
  add_line({10000, 30000}, {5000, 0});
  const int inner = gxm_add_plain(board.tree, gx_type::property_family, frame_);
  add_text({30000, 30000}, "-", inner);
  gxm_add_plain(board.tree, gx_type::pin, frame_, {50000, 50000});
  gxm_grow_boxes(board.tree);
  const auto walk = [&](int color, bool forced) {
    return lines_of(color, 0, [&] {
      lb_display_all_frame(1, 1, draws);
      gx_display_object(1, 1, frame_, 0, true, draws, forced);
    });
  };
  EXPECT_EQ(walk(cyan, false).size(), 2U * 3U);
  EXPECT_EQ(walk(red, false).size(), 2U * 4U);
  EXPECT_EQ(walk(green, true).size(), 4U + 1U) << "pin and text; lines are dashed";
  EXPECT_EQ(gx_vext.viewport[1].object_id, frame_);
  EXPECT_EQ(board.file().displayed, 1);
  gx_object_id_ptr(board.file(), frame_).status |= gx_flag_deleted;
  EXPECT_EQ(lines_of(cyan, 0, [] { lb_display_all_frame(1, 1, draws); }).size(), 0U);
  gx_vext.display_on = false;
  EXPECT_EQ(walk(cyan, false).size(), 0U);
}

// --- instances

class PlacedSymbol : public Drawing {
 protected:
  PlacedSymbol() {
    instances_ = board.family(gx_type::instance_family);
    auto& symbol =
        gxm_add<gx_object_symbol_rec_t>(board.tree, board.family(gx_type::symbol_family), {});
    symbol_ = symbol.gene.object_id;
    body_ = gxm_add_plain(board.tree, gx_type::body, symbol_);
    graphics_ = gxm_add_plain(board.tree, gx_type::graphics, body_);
    const int pins = gxm_add_plain(board.tree, gx_type::pin_family, symbol_);
    pin_ = gxm_add_plain(board.tree, gx_type::pin, pins, {6000, 3000});
    gx_object_id_ptr(board.file(), pin_).bounds = {-1000, -1000, 1000, 1000};
    add_line({2000, 1000}, {3000, 1000});
  }

  int place(gx_pointreal_t at, int rotate, bool fliph) {
    auto& instance = gxm_add<gx_object_instance_rec_t>(board.tree, instances_, at);
    instance.symbol = static_cast<gx_object_id_t>(symbol_);
    instance.rotate = static_cast<std::uint8_t>(rotate);
    instance.fliph = fliph;
    const int id = instance.gene.object_id;
    properties_ = gxm_add_plain(board.tree, gx_type::bodpropfam, id);
    const int pins = gxm_add_plain(board.tree, gx_type::pin_family, id);
    auto& pin = gxm_add<gx_object_pinpropfam_rec_t>(board.tree, pins, {6000, 3000});
    pinpropfam_ = pin.gene.object_id;
    gxm_grow_boxes(board.tree);
    return id;
  }

  int instances_ = 0, symbol_ = 0, body_ = 0, pin_ = 0, properties_ = 0, pinpropfam_ = 0;
};

TEST_F(PlacedSymbol, TurnsAndMirrors) {
  // The line runs from (2000, 1000) to (5000, 2000), in pixels (20, 10) to (50, 20).
  const gx_line16_t offsets[2][4] = {
      {{20, 10, 50, 20}, {10, -20, 20, -50}, {-20, -10, -50, -20}, {-10, 20, -20, 50}},
      {{20, -10, 50, -20}, {10, 20, 20, 50}, {-20, 10, -50, 20}, {-10, -20, -20, -50}}};
  const gx_point16_t pins[2][4] = {{{60, 30}, {30, -60}, {-60, -30}, {-30, 60}},
                                   {{60, -30}, {30, 60}, {-60, 30}, {-30, -60}}};
  for (int mirrored = 0; mirrored < 2; ++mirrored)
    for (int rotate = 0; rotate < 4; ++rotate) {
      SCOPED_TRACE(rotate + 10 * mirrored);
      const int id = place({40000, 40000}, rotate, mirrored != 0);
      const auto& o = offsets[mirrored][rotate];
      const auto shift = [](int v) { return static_cast<std::int16_t>(500 + v); };
      EXPECT_EQ(lines_of(cyan, 0, [&] { lb_display_one_inst(1, 1, id, draws); }),
                (lines_t{{shift(o.x1), shift(o.y1), shift(o.x2), shift(o.y2)}}));
      const auto diamond = lines_of(red, 0, [&] { lb_display_one_inst(1, 1, id, draws); });
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

class DrawnNet : public PlacedSymbol {
 protected:
  DrawnNet() {
    place({40000, 40000}, 0, false);  // its pin lies at (46000, 43000)
    const int vertices = board.family(gx_type::vertex_family);
    auto& vertex = gxm_add<gx_object_vertex_rec_t>(board.tree, vertices, {60000, 43000});
    vertex_ = vertex.gene.object_id;
    vertex.gene.bounds = {0, 0, 0, 0};
    vertex.dotted = 1;
    board.tree.file->dot_width = 300;
    auto& net = gxm_add<gx_object_net_rec_t>(board.tree, board.family(gx_type::net_family), {});
    net_ = net.gene.object_id;
    net.gene.bounds = {40000, 40000, 60000, 60000};
    segment_ = &add_segment();
  }

  gx_object_segment_rec_t& add_segment() {
    auto& segment = gxm_add<gx_object_segment_rec_t>(board.tree, net_, {});
    segment.vertex1 = static_cast<gx_object_id_t>(pinpropfam_);
    segment.vertex2 = static_cast<gx_object_id_t>(vertex_);
    segment.line_color = cyan;
    return segment;
  }
  lines_t drawn(int color, int style = 0) {
    return lines_of(color, style, [&] { gx_display_net(1, 1, net_, draws); });
  }
  auto dots(int color) {
    std::vector<gx_bounds16_t> boxes;
    see_strokes([&] { gx_display_net(1, 1, net_, draws); },
                [&](const gx_stroke_group_t& group) {
                  if (group.color != color) return;
                  for (const gx_box16_t& b : group.boxes)
                    boxes.push_back({b.x, b.y, static_cast<std::int16_t>(b.x + b.width),
                                     static_cast<std::int16_t>(b.y + b.height)});
                });
    return boxes;
  }

  int vertex_ = 0, net_ = 0;
  gx_object_segment_rec_t* segment_ = nullptr;
};

TEST_F(DrawnNet, MarksTheLooseEndOfAStub) {
  EXPECT_EQ(drawn(cyan), (lines_t{{560, 530, 700, 530}}));
  EXPECT_EQ(dots(cyan), (std::vector<gx_bounds16_t>{{697, 527, 703, 533}}));
  const auto mark = drawn(white);
  ASSERT_EQ(mark.size(), 8U);
  EXPECT_EQ(mark[0], (gx_line16_t{554, 530, 560, 536}));
  EXPECT_EQ(mark[4], (gx_line16_t{553, 530, 560, 537}));

  const auto set_name = [&](gx_object_property_rec_t& text, std::string_view name) {
    std::copy(name.begin(), name.end(), text.name.char_);
    text.name.len = static_cast<std::int32_t>(name.size());
  };
  auto& text = add_text({45000, 45000}, "-", net_);
  set_name(text, "NETS");
  EXPECT_EQ(drawn(white).size(), 8U) << "not the name of the net";
  set_name(text, "net");
  EXPECT_EQ(drawn(white).size(), 0U) << "a named net may end";
  text.gene.status = gx_flag_deleted;
  EXPECT_EQ(drawn(white).size(), 8U);
  segment_->vertex2 = static_cast<gx_object_id_t>(pinpropfam_);
  EXPECT_EQ(drawn(white).size(), 0U) << "between two pins";
  segment_->vertex2 = static_cast<gx_object_id_t>(vertex_);
  add_segment();
  EXPECT_EQ(drawn(white).size(), 0U) << "two segments";
}

TEST_F(DrawnNet, AMarkedNetStandsOutWithItsName) {
  gx_highlight_net(1, net_, "AB");
  EXPECT_EQ(drawn(green), (lines_t{{560, 530, 700, 530}}));
  EXPECT_EQ(drawn(cyan), lines_t{});
  // A line to the box at the pin, where there is room, the box, and the name in it.
  const auto probe = drawn(white);
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
  gx_highlight_net(2, net_, "other sheet");
  gx_highlight_clear(1);
  EXPECT_EQ(drawn(cyan), (lines_t{{560, 530, 700, 530}}));
  gx_highlight_segment(1, segment_->gene.object_id);
  EXPECT_EQ(drawn(green), (lines_t{{560, 530, 700, 530}}));
  gx_highlight_clear_all();
  EXPECT_EQ(drawn(green), lines_t{});
}

// --- what lies on top

TEST_F(Drawing, WhatIsDrawnLaterLiesOnTop) {
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

TEST_F(Drawing, MarksKeptByACommandAreDrawnAgainUntilForgotten) {
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
