// What stands in the window: colours at computed places, on screens of every kind, after an expose
// and after a resize.
#include <X11/Xlib.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "tests/program/program_fixture.h"
#include "tests/support/make_design.h"

namespace {
constexpr double grid_step = 5000;
constexpr int page_width = 40, page_height = 20;  // grid steps

// A line of each colour, a placed symbol, and a wide bus.
constexpr char sheet[] = R"(
symbol bar
  line 0,0 0,4 color red
  rect 2,1 4,3 color yellow filled
  pin 1 0,0 IXO
  pin 2 0,4 IXO
sheet top
  page 40,20
  part R1 bar 8,10
  part R2 bar 20,14 rotate 1
  bus B 0:3
    wire 30,2 30,18
  line 2,2 26,2 color red
  line 2,3 26,3 color green
  line 2,4 26,4 color blue
  line 2,5 26,5 color cyan
  line 2,6 26,6 color yellow
  line 2,7 26,7 color magenta
  line 2,8 26,8 color white
)";

struct rgb_t {
  int red, green, blue;
};
// Full or absent, whatever the depth keeps of them.
constexpr int bright = 0xf0, dark = 0x10;

bool shows(std::uint32_t pixel, rgb_t wanted) {
  const auto agrees = [](std::uint32_t channel, int full) {
    return full != 0 ? channel >= bright : channel <= dark;
  };
  return agrees(pixel >> 16 & 255, wanted.red) && agrees(pixel >> 8 & 255, wanted.green) &&
         agrees(pixel & 255, wanted.blue);
}

// The window of a session that shows the page fitted to the edit viewport.
class page_view {
 public:
  explicit page_view(test_session& session) : picture_(session.picture()) {
    const int width = picture_.width - 1, height = picture_.height - 1;
    xmin_ = 400 * width / 100000;
    xmax_ = 99600 * width / 100000;
    ymin_ = 500 * height / 100000;
    ymax_ = 74900 * height / 100000;
    const double across = page_width * grid_step / (xmax_ - xmin_);
    const double down = page_height * grid_step / (ymax_ - ymin_);
    scale_ = static_cast<int>(std::max(across, down));
    scale_ += scale_ / 20;
  }

  const test_picture& picture() const { return picture_; }
  int xmin() const { return xmin_; }
  int ymin() const { return ymin_; }
  int xmax() const { return xmax_; }
  int ymax() const { return ymax_; }
  int x(double steps) const {
    return static_cast<int>((xmin_ + xmax_) / 2 + (steps - page_width / 2.0) * grid_step / scale_);
  }
  int y(double steps) const {
    return static_cast<int>((ymin_ + ymax_) / 2 + (steps - page_height / 2.0) * grid_step / scale_);
  }
  // Pixels of the colour around a place of the sheet, given in grid steps.
  int count(rgb_t wanted, double sx, double sy, int room = 2) const {
    int found = 0;
    for (int py = y(sy) - room; py <= y(sy) + room; ++py)
      for (int px = x(sx) - room; px <= x(sx) + room; ++px)
        if (px >= 0 && py >= 0 && px < picture_.width && py < picture_.height &&
            shows(picture_.at(px, py), wanted))
          ++found;
    return found;
  }

 private:
  test_picture picture_;
  int xmin_ = 0, ymin_ = 0, xmax_ = 0, ymax_ = 0, scale_ = 1;
};

constexpr std::array<rgb_t, 7> line_colors = {
    {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 1, 1}, {1, 1, 0}, {1, 0, 1}, {1, 1, 1}}};
constexpr rgb_t is_red{1, 0, 0}, is_green{0, 1, 0}, is_yellow{1, 1, 0}, is_cyan{0, 1, 1};

// Everything of the sheet is where it should be.
void expect_sheet(const page_view& view) {
  for (std::size_t i = 0; i < line_colors.size(); ++i) {
    const double y = 2.0 + static_cast<double>(i);
    EXPECT_GE(view.count(line_colors[i], 14.5, y), 5) << "line " << i;
    EXPECT_EQ(view.count(line_colors[i], 27.5, y), 0) << "behind line " << i;
  }
  EXPECT_GE(view.count(is_red, 8, 12.5), 5) << "the symbol's line, upright";
  EXPECT_EQ(view.count(is_yellow, 11, 12), 25) << "filled";
  EXPECT_GE(view.count(is_red, 22.5, 14), 5) << "turned: the line lies";
  EXPECT_EQ(view.count(is_yellow, 22, 11), 25);
  EXPECT_GE(view.count(is_cyan, 30, 10.5, 3), 3 * 7) << "a bus is three lines wide";
}

class Picture : public testing::Test {
 protected:
  Picture() { make_design(directory_, sheet); }
  program_start start() const {
    return {.directory = directory_.path(), .words = {"top"}, .environment = {}, .program = {}};
  }
  scratch_directory directory_;
};

class PictureOfDepth : public Picture, public testing::WithParamInterface<int> {};

TEST_P(PictureOfDepth, ColoursAreAtTheirPlaces) {
  test_display display(GetParam());
  test_session session(display, start());
  session.settle();
  expect_sheet(page_view(session));
  const page_view view(session);
  EXPECT_GT(view.picture().count(view.picture().at(view.x(14.5), view.y(8)), 0, view.ymax() + 4,
                                 view.picture().width - 1, view.picture().height - 1),
            100)
      << "white text of list and command line";
  session.command("display smooth on");
  session.wait_for_line(" DISPlay SMOoth ON ");
  session.settle();
  const page_view smooth(session);
  EXPECT_EQ(smooth.count(is_yellow, 11, 12), 25);
  EXPECT_GE(smooth.count(is_cyan, 30, 10.5, 3), 7);
}
INSTANTIATE_TEST_SUITE_P(Depths, PictureOfDepth, testing::Values(24, 16, 8));

TEST_F(Picture, AFullColourMapLeavesEverythingVisible) {
  test_display display(8);
  Display* const x = display.connection();
  const Colormap map = DefaultColormap(x, DefaultScreen(x));
  std::array<unsigned long, 256> cells{};
  int taken = 0;
  while (XAllocColorCells(x, map, False, nullptr, 0, &cells[static_cast<std::size_t>(taken)], 1))
    ++taken;
  XSync(x, False);
  ASSERT_GT(taken, 100);
  test_session session(display, start());
  session.settle();
  const page_view view(session);
  for (int i = 0; i < 7; ++i)
    EXPECT_EQ(view.count({0, 0, 0}, 14.5, 2.0 + i), 20) << "a line of five pixels, line " << i;
}

TEST_F(Picture, SelectedObjectsStandOut) {
  const auto files = build_design(sheet);
  int instance = 0;
  for (const auto& file : files)
    if (file.base == "sheet")
      for (const auto* object : file.file->ptr_to_ar_objindex)
        if (object->object_type == gx_type::instance && instance == 0) instance = object->object_id;
  ASSERT_GT(instance, 0);
  test_session session(shared_display(), start());
  session.settle();
  session.command("sel obj edit I_" + std::to_string(instance));
  session.wait_for_head(" SELect OBJect");
  session.settle();
  const page_view view(session);
  EXPECT_EQ(view.count(is_red, 8, 12), 0);
  EXPECT_GE(view.count(is_green, 8, 12, 12), 12) << "dashes";
  EXPECT_EQ(view.count(is_green, 11, 12), 25);
  EXPECT_GE(view.count(is_red, 22.5, 14), 5) << "the other one is as it was";
}

// Of the edit viewport without its frame.
std::vector<std::uint32_t> pixels_of(const page_view& view) {
  std::vector<std::uint32_t> pixels;
  for (int y = view.ymin() + 4; y < view.ymax() - 4; ++y)
    for (int x = view.xmin() + 4; x < view.xmax() - 4; ++x)
      pixels.push_back(view.picture().at(x, y));
  return pixels;
}

TEST_P(PictureOfDepth, AThemeTakesTheWindowAndLeavesIt) {
  test_display display(GetParam());
  test_session session(display, start());
  session.settle();
  session.move(600, 300);
  session.settle();
  const auto before = pixels_of(page_view(session));
  for (const char* const theme : {"DARk", "LIGht"}) {
    session.command("display theme " + std::string(theme));
    session.wait_for_line(" DISplay THEme " + std::string(theme) + " ");
    session.settle();
    const page_view view(session);
    const std::uint32_t ground = view.picture().at(view.x(14.5), view.y(9.5));
    // What is drawn at a place, two pixels around it.
    const auto drawn = [&](double sx, double sy) {
      for (int y = view.y(sy) - 2; y <= view.y(sy) + 2; ++y)
        for (int x = view.x(sx) - 2; x <= view.x(sx) + 2; ++x)
          if (view.picture().at(x, y) != ground) return view.picture().at(x, y);
      return ground;
    };
    const std::uint32_t line = drawn(14.5, 2);
    EXPECT_NE(ground, line) << theme;
    EXPECT_EQ(drawn(14.5, 5), line) << "all lines have one colour";
    EXPECT_EQ(view.picture().at(2, view.picture().height - 4), ground) << "between the viewports";
    const auto wire = drawn(30, 10.5);
    EXPECT_NE(wire, line);
    EXPECT_NE(wire, ground);
    if (GetParam() == 24) {
      const bool is_dark = *theme == 'D';
      EXPECT_EQ(ground & 0xffffffU, is_dark ? 0x12161cU : 0xfbfaf6U);
      EXPECT_EQ(line & 0xffffffU, is_dark ? 0x8c95a3U : 0x70777fU);
      EXPECT_EQ(wire & 0xffffffU, is_dark ? 0x4fb3f0U : 0x0a63b0U);
      EXPECT_EQ(view.count(is_red, 8, 10), 0) << "a pin that is joined or not, never in pure red";
    }
  }
  session.command("display theme classic");
  session.wait_for_line(" DISplay THEme CLAssic ");
  session.settle();
  EXPECT_EQ(pixels_of(page_view(session)), before);
}
}  // namespace
