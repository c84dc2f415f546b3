// The tree of blocks under the mouse, and the box beside a pointer that rests.
#include <chrono>
#include <thread>

#include "tests/program/interactive.h"

namespace {
constexpr char three_levels[] = R"(
symbol part
  line 0,0 0,4
  pin A 0,0 IXO
  pin B 0,4 IXO
symbol low
  rect 0,0 4,4
  pin P 0,2 IN
symbol mid
  rect 0,0 8,6
  pin P 0,2 IN
symbol deep
  pin P 0,2 IN
sheet deep
  page 40,20
sheet low
  page 40,20
  part R1 part 8,4
  part D1 deep 20,4
sheet mid
  page 40,20
  part C1 low 8,4
  part C2 low 18,4
sheet top
  page 40,20
  part M1 mid 8,4
  part M2 mid 24,4
  part M3 low 36,14
  net NAME_OF_A_NET_NAME_OF_A_NET_NAME_OF_A_NET_NAME_OF_A_NET_
    wire 8,6 4,6
)";
constexpr std::uint32_t green = 0x00FF00;

class Tree : public Interactive {
 protected:
  Tree() { make_design(directory_, three_levels); }
  // On the name of a row, from 0; at 1240 x 924 pixels.
  static constexpr int pitch = 18;
  static constexpr spot row(int n) { return {60, 14 + n * pitch}; }
  using pixels_t = std::vector<std::uint32_t>;
  static pixels_t part(const test_picture& all, int x0, int y0, int x1, int y1) {
    pixels_t pixels;
    for (int y = y0; y <= y1; ++y)
      for (int x = x0; x <= x1; ++x) pixels.push_back(all.at(x, y));
    return pixels;
  }
  pixels_t tree() { return part(session().picture(), 10, 8, 300, 680); }
  int greens(int n) {
    return session().picture().count(green, 10, 5 + n * pitch, 300, 22 + n * pitch);
  }
  void bye_from_edit() {
    point_at(in_edit);
    bye();
  }
  void click(spot at, unsigned modifiers = test_session::none) {
    const auto before = session().picture();
    session().click(at.x, at.y, 1, modifiers);
    session().changed(before);
    std::this_thread::sleep_for(test_time(600));  // the next one is no double click
  }
};

TEST_F(Tree, AClickOpensADoubleClickGoesThereAndTypingSearches) {
  auto& s = open("pop");
  point_at({5, 5});
  const auto whole = part(s.picture(), 12, 12, 1223, 675);
  for (int i = 0; i < 2; ++i) {
    point_at(in_edit);
    s.command("view tree");
    s.wait_for_line(i == 0 ? " VIEw TREe ON " : " VIEw TREe OFF ");
  }
  point_at({5, 5});
  EXPECT_EQ(part(s.picture(), 12, 12, 1223, 675), whole);
  point_at(in_edit);
  s.command("view tree on");
  s.wait_for_line(" VIEw TREe ON ");
  point_at(row(1));
  EXPECT_GT(greens(0), 100) << "the sheet in view";
  click(row(2));
  const auto closed_again = [&] {
    click(row(2));
    const auto open = tree();
    click(row(2));
    return open;
  };
  const auto open = tree();
  EXPECT_EQ(closed_again(), closed_again());
  EXPECT_EQ(tree(), open);

  s.click(row(3).x, row(3).y);  // C1 of M2
  s.click(row(3).x, row(3).y);
  s.wait_for_line(" VIEw TREe /M2/C1 ");
  s.settle();
  EXPECT_EQ(s.title(), "kivo  top /M2/C1");
  EXPECT_GT(greens(3), 100);
  EXPECT_LT(greens(0), 20);
  point_at(in_edit);
  s.command("view up");
  s.wait_for_head(" VIEw UP ");
  s.settle();
  EXPECT_GT(greens(2), 100) << "the mark follows";

  point_at(row(5));
  s.type("C2");  // that of M2 comes first, then that of M1, which is closed
  s.key(XK_Tab);
  s.key(XK_Return);
  s.wait_for_line(" VIEw TREe /M1/C2 ");
  s.key(XK_Escape);
  EXPECT_EQ(count_lines("#  !!! Unknown"), 0);
  point_at(in_edit);
  s.command("view tree /");
  s.wait_for_line(" VIEw TREe / ");
  bye();
}

TEST_F(Tree, AClosedBlockCountsTheFindingsBelowIt) {
  auto& s = open("view tree on;primitive class;check design");
  s.wait_for_line("# End of DO ");
  s.settle();
  for (int i = 0; i < 2; ++i) click(row(1));  // chosen, and closed again
  const auto count = [&] { return part(s.picture(), 240, 6 + pitch, 300, 20 + pitch); };
  const auto closed = count();
  click(row(1));
  EXPECT_NE(count(), closed);
  click(row(1));
  EXPECT_EQ(count(), closed);
  bye_from_edit();
}

TEST_F(Tree, FindingsAreMarkedAndTheWheelScrolls) {
  std::string many = "symbol low\n pin P 0,2 IN\nsheet low\n page 40,20\nsheet top\n page 400,20\n";
  for (int i = 1; i <= 90; ++i)
    many += " part X" + std::to_string(i) + " low " + std::to_string(4 * i) + ",4\n";
  make_design(directory_, many);
  auto& s = open("view tree on;primitive class");
  s.wait_for_line("# End of DO ");
  s.settle();
  const auto marks = [&] {
    const auto p = s.picture();
    return p.count(red, 10, 8, 300, 680) + p.count(yellow, 10, 8, 300, 680);
  };
  EXPECT_EQ(marks(), 0);
  point_at(in_edit);
  s.command("check design");
  s.wait_for_head(" CHEck  ");
  s.settle();
  EXPECT_GT(marks(), 10);
  point_at(row(4));
  const auto top = tree();
  const auto before = s.picture();
  for (int i = 0; i < 4; ++i) s.click(row(4).x, row(4).y, 5);
  s.changed(before);
  const auto scrolled = tree();
  for (int i = 0; i < 40; ++i) s.click(row(4).x, row(4).y, 5);
  s.settle();
  EXPECT_NE(tree(), scrolled);
  for (int i = 0; i < 50; ++i) s.click(row(4).x, row(4).y, 4);
  s.settle();
  EXPECT_EQ(tree(), top);
  s.resize(700, 400);
  s.settle();
  point_at({500, 100});
  bye();
}

TEST_F(Tree, APointerThatRestsHasAHintBesideItUntilItMoves) {
  auto& s = open("display hints on\nview tree off");
  s.wait_for_line("# End of DO ");
  s.settle();
  const spot block = {330, 250}, ground = {700, 600};
  point_at(ground);
  std::this_thread::sleep_for(test_time(800));
  const auto before = s.picture();
  s.move(block.x, block.y);
  std::this_thread::sleep_for(test_time(300));
  EXPECT_EQ(s.picture().pixels, before.pixels) << "not before half a second";
  const auto with_hint = s.changed(before);
  EXPECT_EQ(part(with_hint, block.x - 8, block.y - 8, block.x + 8, block.y + 8),
            part(before, block.x - 8, block.y - 8, block.x + 8, block.y + 8));
  s.move(ground.x, ground.y);
  std::this_thread::sleep_for(test_time(900));
  EXPECT_EQ(s.picture().pixels, before.pixels);
  // Near the right edge it is at the left of the pointer; the net has a name wider than a menu.
  for (const spot at : {spot{1140, 522}, {200, 229}}) {
    s.move(at.x, at.y);
    s.changed(before);
    s.key(XK_Escape);  // any event will do
    s.settle();
    EXPECT_EQ(s.picture().pixels, before.pixels) << at.x;
  }
  s.move(ground.x, ground.y);
  s.command("display hints off");
  s.wait_for_line(" DISplay HINts OFF ");
  s.settle();
  const auto off = s.picture();
  s.move(block.x, block.y);
  std::this_thread::sleep_for(test_time(900));
  EXPECT_EQ(s.picture().pixels, off.pixels);
  bye();
}
}  // namespace
