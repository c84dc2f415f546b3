// The command line under the pointer and away from it: the caret, what is typed and cut, where its
// characters lie; and the menu levels over it.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "gx/display/input/cursor.h"
#include "gx/display/input/line_edit.h"
#include "gx/display/input/menu_draw.h"
#include "gx/display/input/menu_state.h"
#include "gx/display/input/menu_tree.h"
#include "gx/display/list_viewport.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "tests/support/counting_screen.h"
#include "tests/support/drawing_board.h"
#include "tests/support/fatal_stop.h"
#include "tests/support/session_case.h"

namespace {

// Letters are 12 pixels wide; the line begins at pixel 100 + 8.
class command_line {
 public:
  command_line() {
    auto& v = gx_vext;
    v.viewport_cmd = v.viewport_list = drawing_board::edit;
    v.cmd_color = v.list_color = 7;
    v.cmd_height = 10;
    v.cmd_step = 12;
    v.cmd_x0 = 8;
    v.cmd_y0 = 3;
    v.istart_cmd = v.istart_list = 1;
    v.list_step = 20;
    v.listb_x0 = 8;
    v.nb_line_in_listviewp = 7;
    v.nb_list_line_max = 500;
    gx_setarray_hortext();
    leave();
  }
  static void leave() { gx_vext.viewport_id = 0; }
  static void enter(int column) {
    gx_vext.viewport_id = gx_vext.viewport_cmd;
    gx_vext.pixel_pos = gx_cmd_column_pixel(column);
  }
  // The line with a "|" at its caret.
  static std::string line() {
    std::string text(gx_view(gx_vext.str_cmd));
    return text.insert(static_cast<std::size_t>(gx_caret() - 1), "|");
  }
  static std::string set(std::string_view with_caret) {
    std::string text(with_caret);
    const auto caret = text.find('|');
    gx_set_command_line(text.erase(caret, 1), static_cast<int>(caret) + 1);
    return line();
  }

  drawing_board board_;
};

class CommandLine : public testing::Test, protected command_line {};

// "WHAT REST": the line after it, with "|" at its caret.
class line_session : public command_line {
 public:
  explicit line_session(std::string_view) {
    gx_display_list("first line");
    gx_display_list("second");
  }
  static lines_t answer(const std::string& said) {
    const auto blank = std::min(said.find(' '), said.size());
    const std::string what = said.substr(0, blank),
                      rest = blank < said.size() ? said.substr(blank + 1) : "";
    const auto number = [&] { return std::stoi(rest); };
    if (what == "set") return {set(rest)};
    if (what == "put") gx_set_command_line(rest);
    if (what == "caret") gx_set_command_line("abc", number());
    if (what == "insert") gx_insert_text(rest);
    if (what == "cut")
      gx_cut_line(rest == "after"    ? gx_cut::behind
                  : rest == "before" ? gx_cut::before
                                     : gx_cut::word);
    // The pointer's column, or none; what its buttons and keys take there, in another viewport too.
    if (what == "enter") enter(number());
    if (what == "leave") leave();
    if (what == "delete") gx_chardel_action(vpid(rest), gx_vext.pixel_pos);
    if (what == "back") gx_backsp_action(vpid(rest), gx_vext.pixel_pos);
    if (what == "again") {  // "COLUMN LINE" of the list
      std::istringstream words(rest);
      int column = 1, row = 1, viewport = gx_vext.viewport_list;
      words >> column >> row >> viewport;
      const gx_point16_t at{static_cast<std::int16_t>(100 + 8 - 6 + (column - 1) * gx_list_step()),
                            static_cast<std::int16_t>(100 + (row - 1) * 20 + 10)};
      gx_again_action(static_cast<gx_vpid_t>(viewport), at);
    }
    return {line()};
  }

 private:
  static gx_vpid_t vpid(const std::string& rest) {
    return static_cast<gx_vpid_t>(rest == "elsewhere" ? 2 : gx_vext.viewport_cmd);
  }
};

TEST(CommandLineText, IsTypedIntoAndCutAtTheCaret) {
  expect_sessions<line_session>("session/command_line.txt");
}

TEST_F(CommandLine, ScrollsSoThatTheCaretIsSeen) {
  const std::string x52(52, 'x');
  set(x52 + "|");
  EXPECT_EQ(gx_vext.istart_cmd, 1);
  set(x52 + "x|");
  EXPECT_EQ(gx_vext.istart_cmd, 1);
  set(x52 + "xx|");
  EXPECT_EQ(gx_vext.istart_cmd, 2);
  set(x52 + "|xxx");
  EXPECT_EQ(gx_vext.istart_cmd, 1);
  gx_set_command_line(x52 + "x");
  EXPECT_EQ(gx_vext.istart_cmd, 1);
  gx_set_command_line(x52 + "xxx");
  EXPECT_EQ(gx_vext.istart_cmd, 3);
  // Its characters have moved with it.
  EXPECT_EQ(gx_cmd_column({100 + 8 + 5 + 6 * 12, 0}), 4);
}

TEST_F(CommandLine, HasItsCharactersUnderThePointer) {
  for (int column = 1; column <= 50; ++column)
    EXPECT_EQ(gx_cmd_column(gx_cmd_column_pixel(column)), column);
  // From the first pixel of a character to its last.
  EXPECT_EQ(gx_cmd_column({100 + 8 + 5 + 5 * 12, 0}), 1);
  EXPECT_EQ(gx_cmd_column({100 + 8 + 5 + 6 * 12 - 1, 0}), 1);
  EXPECT_EQ(gx_cmd_column({100 + 8 + 5 + 6 * 12, 0}), 2);
  EXPECT_EQ(gx_cmd_column_pixel(1).x, 100 + 8 + 5 + 5 * 12 + 6);
  EXPECT_EQ(gx_cmd_column_pixel(1).y, 500);
  EXPECT_EQ(gx_cmd_column_pixel(-100).x, 101);
  EXPECT_EQ(gx_cmd_column_pixel(1000).x, 899);
}

TEST_F(CommandLine, DrawsItsCaretWhereItIsSeen) {
  const auto caret_at = [](int first_shown, int caret) {
    gx_vext.istart_cmd = static_cast<std::int16_t>(first_shown);
    gx_vext.caret_at = caret;
    int found = 0;
    for (const auto& line : lines_of(7, 0, [] { gx_display_cmd(gx_view(gx_vext.str_cmd)); }))
      if (line.y1 == 102 && line.y2 == 114 && line.x1 == line.x2) found = line.x1;
    return found;
  };
  gx_vext.str_cmd = gx_string(std::string(70, ' '));
  EXPECT_EQ(caret_at(1, 1), 100 + 8 + 6 * 12 - 3);
  EXPECT_EQ(caret_at(1, 3), 100 + 8 + 8 * 12 - 3);
  EXPECT_EQ(caret_at(7, 1), 100 + 8 - 3);
  EXPECT_EQ(caret_at(8, 1), 0);  // scrolled out
  EXPECT_EQ(caret_at(1, 55), 100 + 8 + 60 * 12 - 3);
  EXPECT_EQ(caret_at(1, 56), 0);
}

TEST_F(CommandLine, ShowsATypedPartAfterWhatIsThere) {
  const auto box_of = [](std::string_view part) {
    gx_bounds16_t box{32767, 32767, 0, 0};
    for (const auto& line : lines_of(7, 0, [&] { gx_display_cmd_part(part); })) {
      box.xmin = std::min({box.xmin, line.x1, line.x2});
      box.xmax = std::max({box.xmax, line.x1, line.x2});
      box.ymin = std::min({box.ymin, line.y1, line.y2});
      box.ymax = std::max({box.ymax, line.y1, line.y2});
    }
    return box;
  };
  gx_vext.str_cmd = gx_string("ab");
  const auto box = box_of("HH");
  const int x = 100 + 8 + 8 * 12;  // after the prompt and two letters
  EXPECT_TRUE(box.xmin >= x && box.xmin < x + 12 && box.xmax > x + 12 && box.xmax < x + 24);
  EXPECT_TRUE(box.ymin >= 103 && box.ymax <= 103 + 12) << box.ymin << " " << box.ymax;
  gx_vext.str_cmd = gx_string(std::string(53, 'a'));
  EXPECT_GT(box_of("H").xmax, 0);
  EXPECT_EQ(box_of("HH").xmax, 0);  // no room
}

// --- menus: a line is 26 pixels high, a level as wide as its longest text and two letters
class MenuLevels : public CommandLine {
 protected:
  MenuLevels() {
    gx_vext.menu_drawn = false;
    gx_def_menu_rec(std::array{1}, "FOUR", false, "");
    gx_def_menu_rec(std::array{2}, "EIGHT888", false, "");
    gx_def_menu_rec(std::array{2, 3}, "BELOW", true, "c");
  }
  static gx_bounds16_t bounds(int level) { return gx_at(gx_vext.menu_lev_extbounds, level - 1); }
  static std::string place(int level) {
    const auto b = bounds(level);
    return std::to_string(b.xmin) + "," + std::to_string(b.ymin) + " " + std::to_string(b.xmax) +
           "," + std::to_string(b.ymax);
  }
  counting_screen screen_;
};

TEST_F(MenuLevels, LieWhereTheyAreAskedForAndBesideEachOther) {
  gx_draw_menu1(drawing_board::edit, {50, 20});
  EXPECT_TRUE(gx_vext.menu_drawn);
  EXPECT_EQ(gx_vext.menu_level, 1);
  EXPECT_EQ(place(1), "149,119 271,433");  // ten letters wide, twelve lines high, and a frame
  EXPECT_EQ(gx_vext.menu_boxbounds.xmin, 150 + 80);
  EXPECT_EQ(gx_vext.pointer_put, (gx_point16_t{190, 276}));
  for (const gx_line16_t& side : {gx_line16_t{150, 120, 270, 120},
                                  {270, 120, 270, 432},
                                  {270, 432, 150, 432},
                                  {150, 432, 150, 120}})
    EXPECT_TRUE(counting_screen::has_line(side)) << side.x1 << " " << side.y1;
  EXPECT_EQ(gx_menu_line_at(1, 119), 1);
  EXPECT_EQ(gx_menu_line_at(1, 119 + 26), 2);
  EXPECT_EQ(gx_menu_line_at(1, 119 + 25), 1);
  EXPECT_EQ(gx_menu_line_at(1, 0), 1);
  EXPECT_EQ(gx_menu_line_at(1, 900), 12);
  gx_vext.menuline_lev[0] = 2;
  gx_select_line_menu(drawing_board::edit, 1);
  EXPECT_EQ(gx_vext.prelinsel_lev[0], 2);
  EXPECT_TRUE(counting_screen::has_line({151, 147, 269, 147}));  // around the chosen line
  EXPECT_TRUE(counting_screen::has_line({269, 169, 151, 169}));
  EXPECT_EQ(gx_vext.pointer_put.y, 119 + 26 + 13);
  gx_draw_menu(drawing_board::edit, 2);
  EXPECT_EQ(place(2), "270,118 356,432");
  EXPECT_EQ(gx_vext.menu_extbounds.xmin, 270);
  expect_stop([] { gx_draw_menu(drawing_board::edit, 5); }, gx_code::invalid_level);
  expect_stop([] { gx_select_line_menu(drawing_board::edit, 1); }, gx_code::viewport_id_invalid);

  gx_hide_menus();
  EXPECT_TRUE(gx_vext.menu_hidden);
  const auto pointer = gx_vext.pixel_pos;
  gx_redraw_menus(drawing_board::edit);
  EXPECT_FALSE(gx_vext.menu_hidden);
  EXPECT_EQ(place(1), "149,119 271,433");
  EXPECT_EQ(gx_vext.pixel_pos, pointer);
  EXPECT_EQ(gx_vext.prelinsel_lev[0], 2);

  gx_restore_menu(drawing_board::edit, 2);
  EXPECT_EQ(gx_vext.menu_level, 1);
  EXPECT_TRUE(gx_vext.menu_drawn);
  EXPECT_EQ(gx_vext.menu_extbounds.xmin, 149);
  EXPECT_EQ(gx_vext.pointer_put, (gx_point16_t{190, 119 + 26 + 13}));  // on the chosen line
  gx_close_menus(drawing_board::edit);
  EXPECT_FALSE(gx_vext.menu_drawn);
  const std::string kept = "+1 149,119 134x340 +2 270,118 98x340 ",
                    put_back = "-2 270,118 98x340 -1 149,119 134x340 ";
  EXPECT_EQ(counting_screen::areas, kept + put_back + kept + put_back);
  gx_pen_line(7, 0, {300, 700, 320, 700});
  gx_cursor_set_position({0, 2000});
  EXPECT_TRUE(counting_screen::has_line({300, 700, 320, 700})) << "drawn before the pointer goes";
  EXPECT_EQ(gx_vext.pointer_put, (gx_point16_t{18, 982}));
}

TEST_F(MenuLevels, APointerWithoutShapeOrWindowStops) {
  const auto patterns = static_cast<int>(gx_vext.cursor_array.size());
  gx_cursor_set_pattern(patterns);
  EXPECT_EQ(gx_vext.cursor_ind_cur, patterns);
  for (const int outside : {0, patterns + 1}) {
    expect_stop([&] { gx_cursor_set_pattern(outside); }, gx_code::draw_cursor_invalid);
    gx_vext.cursor_ind_cur = static_cast<std::int16_t>(outside);
    expect_stop([] { gx_cursor_active(); }, gx_code::draw_cursor_invalid);
  }
  gx_terminate();
  EXPECT_EQ(counting_screen::closed, 1);
  gx_vext.init_done = false;
  gx_vext.num_file_open = 0;
  for (auto* const call : {&gx_cursor_active, &gx_cursor_erase, &gx_terminate})
    expect_stop(*call, gx_code::init_or_open_file_not_done);
  expect_stop([] { gx_cursor_set_pattern(1); }, gx_code::init_or_open_file_not_done);
  expect_stop([] { gx_cursor_set_position({1, 1}); }, gx_code::init_or_open_file_not_done);
}

TEST_F(MenuLevels, TheMarkedRectangleFollowsThePointerInItsViewport) {
  auto& v = gx_vext;
  v.viewport_id = v.viewport_id_start = drawing_board::edit;
  v.pixel_ptr1 = v.pixel_ptr2 = {200, 200};
  const auto corner_after = [&](gx_point16_t pointer) {
    v.pixel_pos = pointer;
    gx_rectangle_action();
    return v.pixel_ptr2;
  };
  EXPECT_EQ(corner_after({201, 201}), (gx_point16_t{200, 200}));  // too near
  EXPECT_FALSE(v.display_rectangle_todo);
  EXPECT_EQ(corner_after({240, 230}), (gx_point16_t{240, 230}));
  EXPECT_TRUE(v.display_rectangle_todo);
  EXPECT_EQ(corner_after({242, 232}), (gx_point16_t{240, 230}));
  // Four dots and three each way: drawn, and drawn away before they are drawn elsewhere.
  gx_pen_flush();
  EXPECT_EQ(counting_screen::flips, 14);
  EXPECT_EQ(corner_after({243, 230}), (gx_point16_t{243, 230}));
  const auto clip = v.viewport[1].clip_wind;
  const auto x = static_cast<std::int16_t>(clip.xmax - 2);
  EXPECT_EQ(corner_after({x, 300}), (gx_point16_t{x, 300}));
  EXPECT_EQ(corner_after({static_cast<std::int16_t>(x + 1), 400}), (gx_point16_t{x, 300}));
  v.viewport_id = 2;
  EXPECT_EQ(corner_after({500, 500}), (gx_point16_t{x, 300}));
  EXPECT_TRUE(v.display_rectangle_todo);
  gx_rectangle_erase();
  EXPECT_FALSE(v.display_rectangle_todo);
  gx_pen_flush();
  EXPECT_EQ(counting_screen::flips % 2, 0);
  const int shown = counting_screen::flips;
  gx_rectangle_erase();
  EXPECT_EQ(counting_screen::flips, shown);
}

}  // namespace
