// The mouse and the keys of a new session with the product directory.
#include <X11/keysym.h>

#include "tests/program/interactive.h"

namespace {
class Today : public Interactive {
 protected:
  static constexpr spot in_block = {383, 260};  // U1, the page fitted to the window
  test_session& begin() {
    auto& s = open("assign $VAR1 x", KIVO_PRODUCT_DIR);
    s.wait_for_line("# End of DO ");
    s.settle();
    point_at(in_edit);
    return s;
  }
  // What the session file got since it had so many lines.
  std::vector<std::string> lines_after(std::size_t count) const {
    const auto all = session_->session_lines();
    return {all.begin() + static_cast<std::ptrdiff_t>(count), all.end()};
  }
  void drag(spot from, spot to, int button) {
    point_at(from);
    session().button_down(button);
    for (int i = 1; i <= 4; ++i)
      session().move(from.x + (to.x - from.x) * i / 4, from.y + (to.y - from.y) * i / 4);
    session().button_up(button);
    session().settle();
  }
  std::vector<std::uint32_t> sheet() const {  // without its frame, which follows the pointer
    const test_picture all = session_->picture();
    std::vector<std::uint32_t> pixels;
    for (int y = 10; y < 680; ++y)
      for (int x = 10; x < 1220; ++x) pixels.push_back(all.at(x, y));
    return pixels;
  }
  // The picture of the sheet becomes this one and stays so.
  bool becomes(const std::vector<std::uint32_t>& wanted) const {
    for (int tries = 0; tries < 100 && sheet() != wanted; ++tries) session_->settle();
    return sheet() == wanted;
  }
  // A turn of the wheel over the picture; away from the user with button 4.
  void turn(int button, unsigned modifiers = test_session::none) {
    const auto before = session().picture();
    session().click(in_edit.x, in_edit.y, button, modifiers);
    session().changed(before);
  }
};

TEST_F(Today, AClickEchoesItsSelectAndADragZoomsOrPans) {
  auto& s = begin();
  const auto whole = sheet();
  auto before = s.session_lines().size();
  s.click(in_block.x, in_block.y);
  s.wait_for_head(" SELect OBJect Edit I_");
  s.click(1000, 600);  // nothing there
  s.settle();
  EXPECT_EQ(lines_after(before).size(), 1U);
  s.command("unselect all");
  s.wait_for_line(" UNSelect ALL ");
  point_at(in_edit);
  EXPECT_TRUE(becomes(whole));

  before = s.session_lines().size();
  drag({300, 150}, {700, 450}, 1);
  const auto told = lines_after(before);
  ASSERT_EQ(told.size(), 2U);
  EXPECT_TRUE(told[0].starts_with(" MARK RECtangle Edit ")) << told[0];
  EXPECT_TRUE(told[1].starts_with(" VIEw AREa ")) << told[1];
  const auto part = sheet();
  EXPECT_NE(part, whole);

  drag(in_edit, {in_edit.x + 90, in_edit.y - 50}, 2);
  EXPECT_NE(sheet(), part);
  drag({in_edit.x + 90, in_edit.y - 50}, in_edit, 2);
  EXPECT_TRUE(becomes(part));

  // The wheel: each turn is a step, all of them one view to go back from.
  for (int i = 0; i < 3; ++i) turn(4);
  for (int i = 0; i < 2; ++i) turn(5, s.shift);
  const auto turned = sheet();
  turn(4, s.shift);
  turn(5, s.shift);
  EXPECT_TRUE(becomes(turned)) << "Shift and the wheel move sideways";
  s.command("view last");
  s.wait_for_line(" VIEw LASt ");
  point_at(in_edit);
  EXPECT_TRUE(becomes(part));
  s.type("find path r");  // "f" is typed like any other letter
  s.key('f', s.control);
  s.wait_for_line(" VIEw ALL ");
  s.type("1\n");
  s.wait_for_head(" FINd PATh /R1  ");
  bye();
}

TEST_F(Today, AClickShowsTheMenuAndTheNextOnesTakeALine) {
  auto& s = begin();
  const auto before = sheet();
  for (const int button : {2, 3}) {
    s.click(in_edit.x, in_edit.y, button);
    s.settle();
    EXPECT_NE(sheet(), before);
    point_at(menu_line(menu_left, 2));
    s.click(menu_line(menu_left, 2).x, menu_line(menu_left, 2).y);  // VIEW has lines of its own
    s.settle();
    const int left = menu_left + (12 + 2) * 14 + 1;  // INTRODUCTION
    s.click(menu_line(left, 4).x, menu_line(left, 4).y, button);
    s.wait_for_head("# VIEw UP ");
    point_at(in_edit);
    EXPECT_TRUE(becomes(before));
  }
  bye();
}

TEST_F(Today, EscapeEndsWhatIsHalfDone) {
  auto& s = begin();
  const auto before = s.picture();
  const auto lines = s.session_lines().size();
  const auto ends = [&](const char* what) {
    s.settle();
    EXPECT_NE(s.picture().pixels, before.pixels) << what;
    s.key(XK_Escape);
    point_at({900, 100});  // out of a menu, within the picture
    point_at(in_edit);
    EXPECT_EQ(s.picture().pixels, before.pixels) << what;
  };
  s.type("view all");
  ends("a typed line");
  s.click(in_edit.x, in_edit.y, 3);
  ends("a menu");
  EXPECT_EQ(s.session_lines().size(), lines);
  s.button_down(2);
  s.move(in_edit.x + 40, in_edit.y);
  s.settle();
  s.key(XK_Escape);
  s.move(in_edit.x, in_edit.y);
  s.button_up(2);
  s.settle();
  EXPECT_NE(s.picture().pixels, before.pixels) << "what was panned stays so";
  s.command("view last");
  s.wait_for_line(" VIEw LASt ");
  point_at({300, 150});
  s.button_down(1);
  s.move(500, 300);
  s.wait_for_head(" MARK RECtangle ");
  const auto marked = s.session_lines().size();
  s.key(XK_Escape);
  s.button_up(1);
  point_at({900, 100});
  s.settle();
  EXPECT_EQ(s.session_lines().size(), marked) << "no area is shown";
  // A question that nobody answers.
  directory_.write("asks", "READln $VAR1 name?\nsmash on\n");
  s.command("do asks");
  s.settle();
  s.key(XK_Escape);
  s.wait_for_line(" SMAsh ON ");
  bye();
}
}  // namespace
