// The menu under the mouse: its four levels, what covers and uncovers it, its file, and the choice
// of another menu from the product directory.
#include <utility>

#include "tests/program/interactive.h"

namespace {

// Four levels; the labels of a level are as long as said, so that the next level's place is known:
// a level is (longest label + 2) * 14 pixels wide and the next one begins 1 pixel after it.
constexpr char deep_menu[] =
    "1 'FIRST' 'smash on'\n"
    "1 'SECOND'\n"
    "2   'AA' 'smash off'\n"
    "2   'BB'\n"
    "3     'CCCC'\n"
    "4       'DDD' 'search here'\n"
    "4       'EEE' 'search there'\n";
constexpr int left1 = 54, left2 = left1 + (6 + 2) * 14 + 1, left3 = left2 + (2 + 2) * 14 + 1,
              left4 = left3 + (4 + 2) * 14 + 1;

class Menus : public Interactive {
 protected:
  test_session& open_with_menu() {
    directory_.write("deep", deep_menu);
    auto& s = open("$rmenu deep");
    s.wait_for_line("# End of DO ");
    s.settle();
    return s;
  }
  // Onto the line, and then to the right into the zone that opens its own menu.
  void open_line(int left, int width, int line) {
    point_at(menu_line(left, line));
    session().move(left + width - 8, menu_line(left, line).y);
    session().settle();
  }
  void press_menu() {
    point_at(in_edit);
    session().button_down(2);
    session().settle();
  }
  // White or red pixels of a level's frame and highlight around a line.
  int red_at(int left, int line) {
    const int top = menu_top + (line - 1) * menu_pitch;
    return session().picture().count(red, left, top - 2, left + 30, top + menu_pitch);
  }
};

TEST_F(Menus, AFourthLevelLineIsReachedByTheMouse) {
  auto& s = open_with_menu();
  press_menu();
  const auto at_first_level = s.picture();
  open_line(left1, 8 * 14, 2);
  EXPECT_NE(s.picture().pixels, at_first_level.pixels);
  open_line(left2, 4 * 14, 2);
  open_line(left3, 6 * 14, 1);
  point_at(menu_line(left4, 2));
  EXPECT_GT(red_at(left4, 2), 20);
  EXPECT_EQ(s.picture().count(red, left4, menu_top + 3 * menu_pitch, left4 + 60, 400), 0);
  s.button_up(2);
  s.wait_for_line(" SEArch there ");
  bye();
}

TEST_F(Menus, AMenuStaysWhereThePointerIsNotPut) {
  auto& s = open_with_menu();
  press_menu();
  const int frame = s.picture().count(white, left1, menu_top, left1 + 112, menu_top + 300);
  const auto is_open = [&] {
    s.settle();
    return s.picture().count(white, left1, menu_top, left1 + 112, menu_top + 300) >= frame;
  };
  // The hand goes on from where it pressed, step by step, to the menu.
  for (const spot at : {spot{702, 501}, {560, 430}, {400, 350}, {250, 250}}) {
    s.move(at.x, at.y);
    EXPECT_TRUE(is_open()) << at.x;
  }
  point_at(menu_line(left1, 2));
  s.move(left1 + 104, menu_line(left1, 2).y);
  s.settle();
  // Its menu opens, the hand stays on the line, and turns to another line instead.
  const auto with_second = s.picture();
  s.move(left1 + 105, menu_line(left1, 2).y);
  s.settle();
  EXPECT_EQ(s.picture().pixels, with_second.pixels);
  s.move(left1 + 40, menu_line(left1, 1).y);
  s.settle();
  point_at(menu_line(left1, 1));
  EXPECT_GT(red_at(left1, 1), 20);
  s.button_up(2);
  s.wait_for_line(" SMAsh ON ");
  bye();
}

TEST_F(Menus, LeavingALevelClosesItAndLeavesThePictureAsItWas) {
  auto& s = open_with_menu();
  point_at(in_edit);
  const auto before = s.picture();
  press_menu();
  open_line(left1, 8 * 14, 2);
  // Out of the second level: back to the first one, where another line is taken.
  point_at(in_edit);
  point_at(menu_line(left1, 1));
  EXPECT_GT(red_at(left1, 1), 20);
  EXPECT_EQ(red_at(left1, 3), 0);
  // Out of the first level too.
  point_at(in_edit);
  point_at(in_edit);
  EXPECT_EQ(s.picture().pixels, before.pixels);
  s.button_up(2);
  // A release on a line that opens a menu runs nothing.
  press_menu();
  point_at(menu_line(left1, 2));
  s.button_up(2);
  s.settle();
  point_at(in_edit);
  EXPECT_EQ(s.picture().pixels, before.pixels);
  s.command("smash off");
  s.wait_for_line(" SMAsh OFF ");
  EXPECT_EQ(count_lines(" SMAsh ON "), 0);
  bye();
}

TEST_F(Menus, AnOpenMenuOutlivesCoverSizeAndCommands) {
  auto& s = open_with_menu();
  s.cover(0, 0, 60, 60);
  s.uncover();
  point_at(in_edit);
  const auto before = s.picture();
  press_menu();
  open_line(left1, 8 * 14, 2);
  point_at(menu_line(left2, 1));
  const auto with_menu = s.picture();
  s.cover(60, 60, 100, 300);
  s.settle();
  s.uncover();
  s.settle();
  point_at(menu_line(left2, 1));
  EXPECT_EQ(s.picture().count(white, left1, menu_top, left2 + 60, 450),
            with_menu.count(white, left1, menu_top, left2 + 60, 450));
  // A key draws the sheet below the menu.
  s.key(XK_F2);
  s.wait_for_line(" UNSelect ALL ");
  s.settle();
  point_at(menu_line(left2, 1));
  EXPECT_GT(red_at(left2, 1), 20);
  s.button_up(2);
  s.wait_for_line(" SMAsh OFF ");
  point_at(in_edit);
  const int x0 = menu_left - 2, y0 = menu_top - 2;
  const auto after = s.picture();
  for (const std::uint32_t color : {white, red, yellow}) {
    EXPECT_EQ(after.count(color, x0, y0, 400, 460), before.count(color, x0, y0, 400, 460)) << color;
  }
  // In a larger and in a smaller window the lines have another pitch; the menu still works.
  for (const auto& [width, height] : {std::pair{1230, 600}, {700, 500}}) {
    press_menu();
    s.resize(width, height);
    s.settle();
    s.button_up(2);
    s.settle();
    s.move(width / 2, height / 2);
    s.command("smash on");
    s.wait_for_line(" SMAsh ON ");
  }
  bye();
}

TEST_F(Menus, PageUpOffersTheMenusOfTheProductDirectory) {
  auto& s = open("", KIVO_PRODUCT_DIR);
  s.key(XK_Prior);
  s.wait_for_line("# kivoMenuDB ");
  s.wait_for_line("# \"Menu sets\" ");
  s.settle();
  s.type("view\n");
  s.wait_for_head(" READln $VAR1 menu:kivo/standard/view? view ");
  s.wait_for_line("# End of Exec ");
  s.command("status menu 2");
  s.wait_for_line("# text : \"UP \" ");
  s.wait_for_line("# cmd : \"view up \" ");
  s.key(XK_Next);
  s.wait_for_line("# kivoKeysDB ");
  s.wait_for_line("# \"Key sets\" ");
  s.settle();
  s.type("select\n");
  s.wait_for_line("# End of Exec ");
  s.command("status key b1u");
  s.wait_for_line("# KEY : b1u select area all  ");
  s.command("help VIEW");
  s.wait_for_line("# \"VIEw ALL [Edit or Context]\" ");
  s.wait_for_line(" HELp VIEW ");
  bye();
}

}  // namespace
