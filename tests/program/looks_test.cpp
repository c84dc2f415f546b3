// How the window looks by the user's wish: smooth strokes, wide lines, a longer list; and what it
// costs over a slow connection.
#include <algorithm>
#include <map>

#include "tests/program/interactive.h"
#include "tests/program/slow_connection.h"

namespace {
constexpr char slanted[] = R"(
symbol zig
  line 0,0 9,7
  line 9,7 20,0 color green
  rect 2,8 18,9 color yellow filled
  text 'VXA' at 4,6
  pin A 0,0 IXO
sheet top
  page 40,20
  part Z1 zig 8,4
  text 'WAXY %' at 20,16
)";

class Looks : public Interactive {
 protected:
  Looks() { make_design(directory_, slanted); }
  void run(const std::string& command, const std::string& answer) {
    session().command(command);
    session().wait_for_head(answer);
    session().settle();
  }
  // The pixels of the sheet, without its frame.
  static std::map<std::uint32_t, int> colors_of(const test_picture& picture) {
    std::map<std::uint32_t, int> colors;
    for (int y = 10; y < picture.height * 70 / 100; ++y)
      for (int x = 10; x < picture.width - 10; ++x) ++colors[picture.at(x, y)];
    return colors;
  }
  static std::vector<std::uint32_t> sheet_of(const test_picture& picture) {
    std::vector<std::uint32_t> pixels;
    for (int y = 10; y < picture.height * 70 / 100; ++y)
      for (int x = 10; x < picture.width - 10; ++x) pixels.push_back(picture.at(x, y));
    return pixels;
  }
};

TEST_F(Looks, SmoothStrokesMixColoursAtTheirEdgesAndGoAway) {
  open();
  point_at(in_edit);
  const auto before = session().picture();
  run("display smooth on", " DISPlay SMOoth ON ");
  const auto smooth = session().picture();
  const auto plain_colors = colors_of(before), colors = colors_of(smooth);
  EXPECT_LT(plain_colors.size(), 9U);
  EXPECT_GT(colors.size(), 40U);
  EXPECT_NEAR(colors.at(yellow), plain_colors.at(yellow), plain_colors.at(yellow) / 50);  // filled
  // A smooth line covers as much as a plain one has pixels.
  double plain_green = 0, smooth_green = 0;
  for (const auto& [color, count] : plain_colors)
    if ((color & 0xFF00FFU) == 0) plain_green += count * double(color >> 8U & 0xFFU) / 255;
  for (const auto& [color, count] : colors)
    if ((color & 0xFF00FFU) == 0) smooth_green += count * double(color >> 8U & 0xFFU) / 255;
  EXPECT_GT(plain_green, 100);
  EXPECT_GT(smooth_green, plain_green * 0.95);
  EXPECT_LT(smooth_green, plain_green * 1.3);
  run("display smooth off", " DISPlay SMOoth OFF ");
  EXPECT_EQ(sheet_of(session().picture()), sheet_of(before));
  bye();
}

TEST_F(Looks, WhatCoversASmoothPictureLeavesItAsItWas) {
  open("display smooth on");
  point_at(in_edit);
  const auto before = session().picture();
  session().move(300, 200);
  session().button_down(2);  // the menu
  session().settle();
  EXPECT_NE(sheet_of(session().picture()), sheet_of(before));
  session().move(1200, 900);
  session().button_up(2);
  point_at(in_edit);
  EXPECT_EQ(sheet_of(session().picture()), sheet_of(before));
  session().cover(100, 100, 600, 400);
  session().uncover();
  session().settle();
  EXPECT_EQ(sheet_of(session().picture()), sheet_of(before));
  // A rubber rectangle that is drawn and given up.
  run("mark rectangle", " MARK RECtangle");
  session().move(400, 300);
  session().settle();
  const auto marked = session().picture();
  session().move(in_edit.x, in_edit.y);
  session().settle();
  run("view all", " VIEw ALL");
  EXPECT_NE(sheet_of(marked), sheet_of(before));
  bye();
}

TEST_F(Looks, AWidthIsThatOfLines) {
  open();
  point_at(in_edit);
  const auto inked = [&] {
    int pixels = 0;
    for (const auto& [color, count] : colors_of(session().picture()))
      if (color == 0x00FF00U) pixels += count;
    return pixels;
  };
  const int thin = inked();
  run("display width 3", " DISPlay WIDth 3 ");
  EXPECT_GT(inked(), thin * 5 / 2);
  run("display width auto", " DISPlay WIDth AUTo ");  // 1024 lines: 1
  EXPECT_EQ(inked(), thin);
  session().command("display width 9");
  session().wait_for_line("# !! Error : A width is 1 to 8, or AUTo ? ");
  bye();
}

class LooksOfDepth : public Looks, public testing::WithParamInterface<int> {};

TEST_P(LooksOfDepth, SmoothStrokesHaveTheColoursOfTheScreen) {
  test_display display(GetParam());
  directory_.write("do", "display smooth on\n");
  test_session shown(display, start_of({"top", "do"}, {"VELMORAN=/nowhere"}));
  shown.wait_for_line(" DISPlay SMOoth ON ");
  shown.settle();
  const auto colors = colors_of(shown.picture());
  const auto filled = std::count_if(colors.begin(), colors.end(), [](const auto& c) {
    return (c.first & 0xF00000U) == 0xF00000U && (c.first & 0xF000U) == 0xF000U &&
           (c.first & 0xF0U) == 0 && c.second > 500;
  });
  EXPECT_EQ(filled, 1) << "the yellow rectangle";
  if (GetParam() == 8)
    shown.wait_for_line("# !! Warning : The screen has too few colours for it ");
  else
    EXPECT_GT(colors.size(), 20U);
  shown.command("bye");
  EXPECT_EQ(shown.process().wait().status, 0);
}
INSTANTIATE_TEST_SUITE_P(Depths, LooksOfDepth, testing::Values(16, 8));

// Columns of a band of the list that hold ink, as the last of them.
int last_ink(const test_picture& picture, int top, int bottom, int right) {
  const std::uint32_t ground = picture.at(3, top + 1);
  for (int x = right; x > 3; --x)
    for (int y = top; y < bottom; ++y)
      if (picture.at(x, y) != ground) return x;
  return 0;
}

TEST_F(Looks, ALongerListHasRoomFor100LettersAndPages) {
  directory_.write("long", std::string(100, 'M') + "\n");
  std::string many;
  for (int i = 1; i <= 60; ++i) many += "line " + std::to_string(i) + "\n";
  directory_.write("many", many);
  open();
  const auto before = session().picture();
  run("display lines 20", " DISPlay LINes 20 ");
  run("show file many", " SHOw FILe many ");
  run("show file long", " SHOw FILe long ");
  const auto wide = session().picture();
  const int list_right = wide.width * 73 / 100;
  const int end = last_ink(wide, wide.height * 85 / 100, wide.height * 94 / 100, list_right);
  EXPECT_GT(end, list_right * 80 / 100);
  EXPECT_LT(end, list_right - 4);
  // The Page keys over the list, and the wheel.
  session().move(300, session().height() * 80 / 100);
  session().settle();
  const auto at_end = session().picture();
  session().key(XK_Prior);
  const auto page_before = session().changed(at_end);
  session().key(XK_Next);
  EXPECT_EQ(session().changed(page_before).pixels, at_end.pixels);
  session().click(300, session().height() * 80 / 100, 4);
  EXPECT_NE(session().changed(at_end).pixels, page_before.pixels);
  // The place of the context viewport, and back to what was.
  run("display context off", " DISPlay CONtext OFF ");
  run("show file long", " SHOw FILe long ");
  const auto whole = session().picture();
  EXPECT_GT(last_ink(whole, whole.height * 85 / 100, whole.height * 94 / 100, whole.width - 12),
            whole.width * 80 / 100);
  run("display context on", " DISPlay CONtext ON ");
  run("display lines 7", " DISPlay LINes 7 ");
  point_at(in_edit);
  EXPECT_EQ(sheet_of(session().picture()), sheet_of(before));
  session().command("display lines 41");
  session().wait_for_line("# !! Error : The list has 7 to 40 lines ? ");
  bye();
}

// A window that changes its size looks as one that had it before it got its list.
TEST_F(Looks, ALongerListFollowsTheWindow) {
  const auto picture_at = [&](const std::string& first, const std::string& then) {
    open(first);
    session().resize(900, 700);
    session().settle();
    session().resize(1000, 800);
    session().settle();
    if (!then.empty()) run(then, " DISPlay LINes 15");
    run("view all", " VIEw ALL");
    point_at({500, 300});
    auto picture = sheet_of(session().picture());
    picture.resize(picture.size() / 2);  // the pointer is below
    bye();
    return picture;
  };
  EXPECT_EQ(picture_at("display smooth on; display lines 15", ""),
            picture_at("display smooth on", "display lines 15"));
}

TEST_F(Looks, ATreeHasItsPlaceBesideALongerList) {
  open("display smooth on; display lines 20");
  run("view all", " VIEw ALL");
  point_at(in_edit);
  const auto upper = [&] {
    auto pixels = sheet_of(session().picture());
    pixels.resize(pixels.size() / 2);  // the pointer and the list are below
    return pixels;
  };
  const auto before = upper();
  run("view tree on", " VIEw TREe ON");
  point_at(in_edit);
  EXPECT_NE(upper(), before);
  run("view tree off", " VIEw TREe OFF");
  run("view all", " VIEw ALL");
  point_at(in_edit);
  EXPECT_EQ(upper(), before);
  bye();
}

// Each way takes 25 ms: what is drawn must not wait for the server once a stroke.
TEST_F(Looks, ASlowConnectionIsStillUsable) {
  constexpr test_time round_trip{50};
  slow_connection slow(shared_display().name(), round_trip / 2);
  directory_.write("do", "display smooth on\ndisplay theme dark\n");
  session_ = std::make_unique<test_session>(
      shared_display(), start_of({"top", "do"}, {"VELMORAN=/nowhere", "DISPLAY=" + slow.name()}));
  session().wait_for_line(" DISplay THEme DARk ");
  session().settle();
  session().move(in_edit.x, in_edit.y);
  session().settle();
  for (const int button : {4, 4, 5}) {  // the wheel zooms
    const auto before = session().picture();
    const auto start = std::chrono::steady_clock::now();
    session().click(in_edit.x, in_edit.y, button);
    while (session().picture().pixels == before.pixels) {
      ASSERT_LT(std::chrono::steady_clock::now() - start, test_limit);
    }
    const auto took =
        std::chrono::duration_cast<test_time>(std::chrono::steady_clock::now() - start);
    EXPECT_GE(took, round_trip);
    EXPECT_LT(took, round_trip * 12);
    RecordProperty("ms", static_cast<int>(took.count()));
    session().settle();
  }
  bye();
}
}  // namespace
