// A user finds a part by its path, sees a net highlighted on two levels, and goes back: with real
// keys and buttons, read from the picture.
#include <algorithm>

#include "tests/program/interactive.h"

namespace {

constexpr std::uint32_t marked = 0x00FF00;  // of what is selected or highlighted

constexpr char two_level_net[] = R"(
symbol part
  rect -2,1 2,3
  pin A 0,0 IXO
  pin B 0,4 IXO
  prop CLASS=R
symbol in
  rect -2,-1 0,1
  pin P 0,0 IXO
  prop CLASS=PORTIN
symbol sub
  rect 0,0 8,6
  pin P 0,2 IN
sheet sub
  page 80,40
  port P in 10,20
  part X1 part 60,20
  net P
    wire P 60,20
  net B
    wire X1.B 60,30
sheet top
  page 80,40
  part U1 sub 20,4
  net A
    wire U1.P 4,6
)";

class FindProgram : public Interactive {
 protected:
  FindProgram() {
    make_design(directory_, two_level_net);
    open(
        "display theme classic;display lines 7;primitive class;prop inst s class;prop pin s pin;"
        "prop net s net;run",
        KIVO_PRODUCT_DIR);
    session().wait_for_line("# End of DO ");
    // Without the cross that marks the start.
    session().command("view area edit 0.1 0.1 3.9 1.9");
    session().wait_for_head(" VIEw AREa ");
    point_at(in_edit);
  }
  // The edit viewport without its border.
  std::vector<std::uint32_t> edit() {
    point_at(in_edit);
    const auto picture = session().picture();
    std::vector<std::uint32_t> pixels;
    for (int y = 12; y < 676; ++y)
      for (int x = 12; x < 1224; ++x) pixels.push_back(picture.at(x, y));
    return pixels;
  }
  static long greens(const std::vector<std::uint32_t>& pixels) {
    return std::count(pixels.begin(), pixels.end(), marked);
  }
  void go_back() {
    session().key(XK_F8, test_session::shift);
    session().wait_for_line(" VIEw LASt ");
  }
};

TEST_F(FindProgram, AJumpShowsThePartInTheMiddleAndShiftF8GoesBack) {
  auto& s = session();
  const auto whole = edit();
  EXPECT_EQ(greens(whole), 0);
  s.command("find path u1.x1");
  s.wait_for_head(" FINd PATh /U1/X1  instance ");
  point_at(in_edit);
  EXPECT_EQ(s.title(), "kivo  top /U1");
  const auto jumped = s.picture();
  constexpr int x = 618, y = 346;  // the middle of the viewport
  EXPECT_GT(jumped.count(marked, x - 120, y - 120, x + 120, y + 120), 100);
  EXPECT_EQ(jumped.count(marked), jumped.count(marked, x - 120, y - 120, x + 120, y + 120));

  // A drag with Shift and button 2, and a notch of the wheel; each is taken back.
  const auto before = edit();
  s.key_down(XK_Shift_L);
  s.button_down(2);
  for (int i = 1; i <= 4; ++i) s.move(in_edit.x + 30 * i, in_edit.y - 20 * i);
  s.button_up(2);
  s.key_up(XK_Shift_L);
  const auto panned = edit();
  EXPECT_NE(panned, before);
  s.click(in_edit.x, in_edit.y, 4);
  EXPECT_NE(edit(), panned);
  go_back();
  EXPECT_EQ(edit(), panned);
  go_back();
  EXPECT_EQ(edit(), before);
  go_back();
  EXPECT_EQ(edit(), whole);
  EXPECT_EQ(s.title(), "kivo  top");
  go_back();  // before the area of the start
  s.command("view last");
  s.wait_for_line("# !! Error : NO view to go back to ? ");
  bye();
}

// The lines of the list stand 24 pixels apart from pixel 706 on, the newest one last.
TEST_F(FindProgram, AClickOnALineGoesToWhatItNames) {
  auto& s = session();
  s.command("list hierarchy");
  s.wait_for_line(" LIST HIErarchy ");
  s.settle();
  const auto list = [&] {
    s.settle();
    const auto picture = s.picture();
    std::vector<std::uint32_t> pixels;
    for (int y = 706; y < 870; ++y)
      for (int x = 12; x < 900; ++x) pixels.push_back(picture.at(x, y));
    return pixels;
  };
  s.move(300, 800);
  const auto before = list();
  // The tree of two blocks is shown in the last lines but one: "/", "/U1".
  constexpr int last_line = 706 + 6 * 24 + 6, u1 = last_line - 24;
  s.click(300, u1);
  s.wait_for_head(" FINd PATh /U1  block ");
  EXPECT_EQ(list(), before) << "it stays where it is";
  s.click(300, last_line);  // it names nothing
  s.command("grid on");
  s.wait_for_head(" GRI");
  EXPECT_NE(list(), before) << "a new command shows the end";
  bye();
}

TEST_F(FindProgram, AHighlightIsSeenOnBothLevelsUntilItIsOff) {
  auto& s = session();
  const auto plain = edit();
  s.command("highlight net u1.p");
  s.wait_for_line(" HIGhlight NET /A ");
  const auto top = edit();
  EXPECT_GT(greens(top), 200);  // the wire
  s.command("view down U1");
  s.wait_for_head(" VIEw DOWn ");
  const auto below = edit();
  EXPECT_GT(greens(below), 500);
  // The name of the net stands beside it in white.
  const auto whites = [](const auto& pixels) {
    return std::count(pixels.begin(), pixels.end(), white);
  };
  EXPECT_GT(whites(top), whites(plain) + 50);
  // A run anew keeps it; the sheet beside the net does not have it.
  s.command("run");
  s.wait_for_line("# Processing : \"/U1\"");
  EXPECT_EQ(edit(), below);
  go_back();
  EXPECT_EQ(edit(), top);
  s.command("highlight off");
  s.wait_for_line(" HIGhlight OFF ");
  EXPECT_EQ(edit(), plain);

  // A theme gives each net its colour, three pixels wide.
  s.command("display theme dark");
  s.command("view down U1");
  s.command("highlight net u1.p");
  s.command("highlight net u1.b");
  s.wait_for_line("#   colour 2 : /U1/B ");
  const auto both = edit();
  const auto count = [&](std::uint32_t color) {
    return std::count(both.begin(), both.end(), color);
  };
  EXPECT_GT(count(0xf05fc4), 500) << "the first";
  EXPECT_GT(count(0x33ff00), 50) << "the second";
  EXPECT_EQ(count(marked), 0);
  bye();
}

}  // namespace
