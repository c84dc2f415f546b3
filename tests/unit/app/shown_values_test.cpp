// Values on the sheet and waveforms beside it: where each is drawn, in which colour, and what the
// mouse does with them.
#include <sys/stat.h>

#include <cmath>
#include <cstdio>
#include <tuple>

#include "app/sheet/pan.h"
#include "app/values/answers.h"
#include "app/values/results_now.h"
#include "app/values/waves.h"
#include "app/values/waves_state.h"
#include "expand/sim_request.h"
#include "gx/db/place/geometry.h"
#include "gx/display/viewport_coords.h"
#include "gx/display/viewports.h"
#include "tests/support/counting_screen.h"
#include "tests/support/design_session.h"
#include "tests/support/raw_results.h"

namespace {
constexpr int blue = 3, cyan = 4, green = 2, yellow = 5, red = 1, magenta = 6, white = 7;

constexpr char two_nets[] = R"(
symbol mos
  rect 0,0 2,4
  pin D 0,0 IN
  pin G 0,4 OUT
  prop CLASS=M
sheet top
  page 40,20
  part M1 mos 30,8
  net H
    wire 5,10 25,10
  net V
    wire 28,3 28,17
  net L
    wire 5,16 6,16 6,19 20,19
)";

// A window of 1100 by 880 pixels: letters on the sheet are 8 high and 9 wide.
class ShownValues : public ::testing::Test {
 protected:
  void SetUp() override {
    gx_vext.bitmap_size = {1100, 880};
    for (const auto& viewport : set_viewports())
      gx_viewport_create(viewport.bounds, viewport.border);
    kv_display_picture_all(gx_vext.viewport_edit, kv_pext.file_id_cur);
    s.run("primitive class");
  }
  ~ShownValues() override {
    s.run("show waves off");
    s.run("values off");
  }
  // Two points, 0 and 10n; the value of variable i goes from i to 2 * i.
  void open(const std::vector<std::string>& more = {}) {
    std::vector<std::string> variables{"time\ttime", "v(h)\tvoltage", "v(v)\tvoltage"};
    variables.insert(variables.end(), more.begin(), more.end());
    std::string bytes = raw_header("Transient Analysis", "real", "2", variables);
    for (const double row : {0.0, 1.0}) {
      bytes += double_bytes({row * 1e-8});
      for (std::size_t i = 1; i < variables.size(); ++i)
        bytes += double_bytes({static_cast<double>(i) * (1 + row)});
    }
    s.directory().write("a.raw", bytes);
    s.run("values file a.raw");
  }
  void draw(std::string_view command) {
    gx_pen_flush();
    counting_screen::forget();
    s.run(command);
    gx_pen_flush();
  }
  gx_point16_t pixel(gx_pointreal_t p) const {
    return gx_viewport_pt_real_to_pixel(gx_vext.viewport_edit, p);
  }
  // The middle of a net of one line, in pixels.
  gx_point16_t middle(const char* net) const {
    const auto box = gx_object_abs_origin_bounds(s.file(), s.net(net), 0).bounds;
    const auto p = pixel({box.xmin, box.ymin}), q = pixel({box.xmax, box.ymax});
    return {static_cast<std::int16_t>((p.x + q.x) / 2), static_cast<std::int16_t>((p.y + q.y) / 2)};
  }
  // A text with that left upper corner.
  static bool text(std::string_view text, int x, int y, int color) {
    return counting_screen::has_text(gx_vext.viewport_edit, text, x, y + 8, 8, color);
  }
  // Moves the picture so that the point comes there.
  void bring(gx_point16_t from, int x, int y) {
    kv_pan_by(gx_vext.viewport_edit, x - from.x, y - from.y);
  }
  design_session s{two_nets};
  counting_screen screen;
};

TEST_F(ShownValues, LieBesideNetsAndDevicesWhereThereIsRoom) {
  open({"@m1[cgs]\tcapacitance", "@m1[vds]\tvoltage", "@m1[id]\tcurrent", "v(l)\tvoltage"});
  draw("values on");
  const auto h = middle("H"), v = middle("V");
  EXPECT_TRUE(text("1V", h.x - 9, h.y - 12, yellow)) << "above a line";
  EXPECT_TRUE(text("2V", v.x + 4, v.y - 4, yellow)) << "to the right of an upright one";
  const auto bounds = gx_object_abs_origin_bounds(s.file(), s.inst("M1"), 0).bounds;
  const auto device = [&](bool right, int width, int line) {
    const auto p = pixel({bounds.xmin, bounds.ymin}), q = pixel({bounds.xmax, bounds.ymax});
    return gx_point16_t{
        static_cast<std::int16_t>(right ? std::max(p.x, q.x) + 4 : std::min(p.x, q.x) - 4 - width),
        static_cast<std::int16_t>((p.y + q.y) / 2 - 18 + 12 * line)};
  };
  const char* const lines[] = {"id=5A", "vds=4V", "cgs=3F"};  // what is looked for first
  for (int i = 0; i < 3; ++i) {
    const auto at = device(true, 0, i);
    EXPECT_TRUE(text(lines[i], at.x, at.y, magenta)) << lines[i];
  }
  draw("values at 10n");
  EXPECT_TRUE(text("2V", h.x - 9, h.y - 12, yellow));
  const auto p = pixel({6 * gxm_step, 19 * gxm_step}), q = pixel({20 * gxm_step, 19 * gxm_step});
  EXPECT_TRUE(text("12V", (p.x + q.x) / 2 - 13, q.y - 12, yellow)) << "at the longest line";
  // Only nets, only devices.
  s.run("values off");
  s.run("values file a.raw");
  draw("values on devices");
  EXPECT_FALSE(text("2V", h.x - 9, h.y - 12, yellow));
  s.run("values off");
  s.run("values file a.raw");
  draw("values on nets");
  EXPECT_FALSE(text(lines[0], device(true, 0, 0).x, device(true, 0, 0).y, magenta));
  // At the edges of the picture on the other side.
  s.run("values on");
  const auto& view = gx_viewport_rec(gx_vext.viewport_edit).clip_wind;
  bring(h, h.x, view.ymin + 8);
  draw("values at 10n");
  EXPECT_TRUE(text("2V", middle("H").x - 9, middle("H").y + 4, yellow));
  bring(middle("V"), view.xmax - 10, v.y);
  draw("values at 10n");
  EXPECT_TRUE(text("4V", middle("V").x - 4 - 18, middle("V").y - 4, yellow));
  bring(device(true, 0, 0), view.xmax - 20, v.y);
  draw("values at 10n");
  const auto at = device(false, 6 * 9, 0);
  EXPECT_TRUE(text("id=10A", at.x, at.y, magenta));
}

TEST_F(ShownValues, OfADeviceSixAreShownEachOnce) {
  open({"@m1[p1]\tvoltage", "@m1[p2]\tvoltage", "@m1[p3]\tvoltage", "@m1[p4]\tvoltage",
        "@m1[p5]\tvoltage", "@m1[P1]\tvoltage", "@m1[vth]\tvoltage", "@m1[p6]\tvoltage"});
  draw("values on devices");
  const auto bounds = gx_object_abs_origin_bounds(s.file(), s.inst("M1"), 0).bounds;
  const auto p = pixel({bounds.xmin, bounds.ymin}), q = pixel({bounds.xmax, bounds.ymax});
  const char* const lines[] = {"vth=9V", "p1=3V", "p2=4V", "p3=5V", "p4=6V", "p5=7V"};
  const int right = std::max(p.x, q.x) + 4, top = (p.y + q.y) / 2 - 36;
  for (int i = 0; i < 6; ++i) EXPECT_TRUE(text(lines[i], right, top + 12 * i, magenta)) << lines[i];
  EXPECT_FALSE(text("p6=10V", right, top + 72, magenta));
}

TEST_F(ShownValues, WiresHaveTheColourOfTheirPartOfTheRange) {
  open();
  const auto color_of = [&](const char* range, const char* net) {
    draw("values colour " + std::string(range));
    const auto box = gx_object_abs_origin_bounds(s.file(), s.net(net), 0).bounds;
    const auto p = pixel({box.xmin, box.ymin}), q = pixel({box.xmax, box.ymax});
    int color = 0;
    for (std::size_t i = 0; i < counting_screen::lines.size(); ++i) {
      const auto& line = counting_screen::lines[i];
      if (line == gx_line16_t{p.x, p.y, q.x, q.y} || line == gx_line16_t{q.x, q.y, p.x, p.y})
        color = counting_screen::line_colors[i];  // the last drawn is on top
    }
    return color;
  };
  const struct {
    const char* range;
    int color;
  } cases[] = {{"1 2", blue},    {"2 3", blue},    {"0.76 2", blue},
               {"0.74 2", cyan}, {"0 2.4", green}, {"-1 2", yellow},
               {"-1 1.4", red},  {"0 1", red},     {"-1 0.5", red}};
  for (const auto& [range, color] : cases) EXPECT_EQ(color_of(range, "H"), color) << range;
  s.run("select object edit N_" + std::to_string(s.net("H")));
  EXPECT_EQ(color_of("1 2", "H"), int{gx_vext.color_obj_selected});
  draw("values colour off");
  EXPECT_FALSE(kv_pext.values_shown.any());
}

TEST(ShownBus, HasItsBitsItsNumberOrItsRange) {
  design_session s("sheet top\n page 40,20\n bus B 0:1\n  wire 5,10 25,10\n");
  gx_vext.bitmap_size = {1100, 880};
  for (const auto& viewport : set_viewports()) gx_viewport_create(viewport.bounds, viewport.border);
  kv_display_picture_all(gx_vext.viewport_edit, kv_pext.file_id_cur);
  const counting_screen screen;
  s.directory().write("a.raw", raw_header("Transient Analysis", "real", "1",
                                          {"time\ttime", "v(b_1)\tvoltage", "v(b_0)\tvoltage"}) +
                                   double_bytes({0, 2, 0}));
  s.run("values file a.raw");
  EXPECT_EQ(s.run("values net /b").size(), 3U);
  const auto shows = [&](std::string_view command, std::string_view text) {
    gx_pen_flush();
    counting_screen::forget();
    s.run(command);
    gx_pen_flush();
    const auto box = gx_object_abs_origin_bounds(s.file(), s.net("B"), 0).bounds;
    const auto p = gx_viewport_pt_real_to_pixel(gx_vext.viewport_edit, {box.xmin, box.ymin}),
               q = gx_viewport_pt_real_to_pixel(gx_vext.viewport_edit, {box.xmax, box.ymax});
    return counting_screen::has_text(gx_vext.viewport_edit, text,
                                     (p.x + q.x) / 2 - static_cast<int>(text.size()) * 9 / 2,
                                     (p.y + q.y) / 2 - 12 + 8, 8, yellow);
  };
  EXPECT_TRUE(shows("values on", "0V 2V"));
  EXPECT_TRUE(shows("values colour 0 2", "0x2"));
  EXPECT_TRUE(shows("values colour 0 4", "0V 2V")) << "one is neither high nor low";
  s.run("values off");
}

TEST_F(ShownValues, OfComplexResultsTheMagnitudeIsShown) {
  std::string bytes =
      raw_header("AC Analysis", "complex", "2", {"frequency\tfrequency", "v(h)\tvoltage"});
  bytes += double_bytes({1, 0, 3, -4, 100, 0, 6, 8});
  s.directory().write("a.raw", bytes);
  s.run("values file a.raw");
  draw("values on");
  EXPECT_TRUE(text("5V", middle("H").x - 9, middle("H").y - 12, yellow));
}

// --- waveforms

class Waves : public ShownValues {
 protected:
  const gx_bounds16_t& box() const {
    return gx_viewport_rec(gx_vext.viewport_context).pixel_bounds;
  }
  int left() const { return box().xmin + 4; }
  int right() const { return box().xmax - 4; }
  // Letters are 7 high and 8 wide; the corner is the left upper one.
  static bool wave_text(std::string_view text, int x, int y, int color) {
    return counting_screen::has_text(gx_vext.viewport_context, text, x, y + 7, 7, color);
  }
  // The highest and the lowest pixel of a curve in a column, below its text.
  static std::pair<int, int> column(int color, int x, int top) {
    int high = 32000, low = -1;
    for (std::size_t i = 0; i < counting_screen::lines.size(); ++i) {
      const auto& line = counting_screen::lines[i];
      if (counting_screen::line_colors[i] != color || line.x1 != x) continue;
      if (std::min(line.y1, line.y2) < top || line.x2 > x + 1) continue;
      high = std::min<int>(high, std::min(line.y1, line.y2));
      low = std::max<int>(low, std::max(line.y1, line.y2));
    }
    return {high, low};
  }
  bool gesture(gx_event_kind kind, int x, int clicks, int wheel = 0, std::uint32_t modifiers = 0) {
    gx_event_t event;
    event.kind = kind;
    event.pixel = {static_cast<std::int16_t>(x), static_cast<std::int16_t>(box().ymin + 10)};
    event.clicks = clicks;
    event.wheel = wheel;
    event.modifiers = modifiers;
    return kv_wave_gesture(event, [&](std::string_view line) { command = line; });
  }
  bool turn(int wheel, int x, std::uint32_t modifiers = 0) {
    return gesture(gx_event_kind::pointer_moved, x, 0, wheel, modifiers);
  }
  // The part of the scale that is shown, in hundredths of a nanosecond.
  std::pair<long, long> part() const {
    return {std::lround(kv_pext.waves->from * 1e11), std::lround(kv_pext.waves->to * 1e11)};
  }
  std::string command;
};

TEST_F(Waves, EachHasItsLaneWithNameRangeAndCurve) {
  open();
  draw("show waves /h /v /h");
  const int bottom = box().ymax - 16, height = (bottom - box().ymin - 4) / 2;
  for (const auto& [i, text, color] :
       {std::tuple{0, "/H  1 .. 2", green}, {1, "/V  2 .. 4", yellow}}) {
    const int top = box().ymin + 4 + i * height;
    EXPECT_TRUE(wave_text(text, left(), top, color)) << text;
    const int high = top + 12, low = top + height - 3;
    EXPECT_EQ(column(color, left(), high).second, low);
    EXPECT_EQ(column(color, right() - 1, high).first, high);
    const auto middle = column(color, (left() + right()) / 2, high);
    EXPECT_NEAR(middle.first, (high + low) / 2, 2);
    EXPECT_NEAR(middle.second, (high + low) / 2, 2);
    EXPECT_EQ(column(color, right() + 1, high).second, -1);
  }
  EXPECT_TRUE(wave_text("0 s", left(), bottom + 2, white));
  EXPECT_TRUE(wave_text("10 ns", right() - 40, bottom + 2, white));
  const auto has_cursor = [&](int x) {
    return counting_screen::has_line(
        white, {static_cast<std::int16_t>(x), static_cast<std::int16_t>(box().ymin + 4),
                static_cast<std::int16_t>(x), static_cast<std::int16_t>(bottom)});
  };
  EXPECT_TRUE(has_cursor(left()));
  EXPECT_TRUE(wave_text("0 s", (left() + right() - 24) / 2, bottom + 2, yellow));
  draw("values at 5n");
  EXPECT_TRUE(has_cursor(left() + (right() - left() + 1) / 2));
  EXPECT_TRUE(wave_text("5 ns", (left() + right() - 32) / 2, bottom + 2, yellow));
}

TEST_F(Waves, AFlatOneIsALineAtTheBottomOfItsLane) {
  s.directory().write(
      "a.raw", raw_header("Transient Analysis", "real", "2", {"time\ttime", "v(h)\tvoltage"}) +
                   double_bytes({0, 3, 1e-8, 3}));
  s.run("values file a.raw");
  draw("show waves /h");
  const int low = box().ymax - 16 - 3;
  EXPECT_EQ(column(green, left() + 20, box().ymin + 16), (std::pair{low, low}));
}

TEST_F(Waves, AreClickedDraggedZoomedAndMoved) {
  open();
  EXPECT_EQ(s.run("show waves").back(), "# !! Error : No NET selected ? ");
  s.run("select object edit N_" + std::to_string(s.net("H")));
  s.run("show waves");
  ASSERT_TRUE(kv_waves_are_shown());
  EXPECT_EQ(kv_pext.waves->names, lines_t{"/H"});
  using enum gx_event_kind;
  gx_vext.viewport_id = gx_vext.viewport_context;
  const int width = right() - left();
  const auto click = [&](int x) {
    EXPECT_TRUE(gesture(button1_down, x, 1) && gesture(button1_up, x, 1));
    return command;
  };
  EXPECT_EQ(click(left()), "VALUES AT 0 ");
  EXPECT_EQ(click(right()), "VALUES AT 10n ");
  EXPECT_EQ(click(right() + 3), "VALUES AT 10n ");
  EXPECT_EQ(part(), (std::pair{0L, 1000L}));
  const long at = std::lround(1000.0 * (width / 2) / width);  // as the pixel in the middle
  const int middle = left() + width / 2;
  // To the left and to the right; also when it ends elsewhere.
  command.clear();
  EXPECT_TRUE(gesture(button1_down, right(), 0) && gesture(button1_up, middle, 0));
  EXPECT_EQ(part(), (std::pair{at, 1000L}));
  EXPECT_EQ(command, "");
  draw("values at 1n");
  EXPECT_TRUE(wave_text("10 ns", right() - 40, box().ymax - 14, white));
  EXPECT_FALSE(wave_text("1 ns", (left() + right() - 32) / 2, box().ymax - 14, yellow))
      << "not in what is shown";
  EXPECT_TRUE(turn(-1, right()) && turn(-1, right()) && turn(-1, right()) && turn(-1, right()));
  EXPECT_EQ(part(), (std::pair{0L, 1000L})) << "not beyond the ends";
  EXPECT_TRUE(turn(1, right()));
  EXPECT_EQ(part(), (std::pair{200L, 1000L}));
  EXPECT_TRUE(turn(1, left()));
  EXPECT_EQ(part(), (std::pair{200L, 840L}));
  EXPECT_TRUE(turn(1, left(), 1));
  EXPECT_EQ(part(), (std::pair{264L, 904L})) << "shift moves by a tenth";
  EXPECT_TRUE(turn(-1, left(), 1));
  EXPECT_EQ(part(), (std::pair{200L, 840L}));
  for (int i = 0; i < 9; ++i) EXPECT_TRUE(turn(-1, left(), 1));
  EXPECT_EQ(part(), (std::pair{0L, 640L}));
  for (int i = 0; i < 9; ++i) EXPECT_TRUE(turn(1, left(), 1));
  EXPECT_EQ(part(), (std::pair{360L, 1000L}));
  EXPECT_TRUE(gesture(button1_down, left(), 0));
  gx_vext.viewport_id = gx_vext.viewport_edit;
  EXPECT_TRUE(gesture(button1_up, middle, 0));
  EXPECT_EQ(part().first, 360L);
  EXPECT_LT(part().second, 700L);
  EXPECT_FALSE(gesture(button1_down, left(), 1) || gesture(button1_up, left(), 1));
  // With control over the sheet the place moves by a hundredth.
  const auto place = [&] { return std::lround(kv_pext.results->x * 1e11); };
  EXPECT_FALSE(turn(1, 300));
  EXPECT_TRUE(turn(1, 300, 4));
  EXPECT_EQ(place(), 110);
  EXPECT_TRUE(turn(-1, 300, 4) && turn(-1, 300, 4));
  EXPECT_EQ(place(), 90);
  for (int i = 0; i < 12; ++i) EXPECT_TRUE(turn(-1, 300, 4));
  EXPECT_EQ(place(), 0);
  gx_vext.menu_drawn = true;
  EXPECT_FALSE(turn(1, 300, 4));
  gx_vext.menu_drawn = false;
  s.run("show waves off");
  EXPECT_FALSE(kv_waves_are_shown());
  EXPECT_FALSE(turn(1, 300, 4)) << "nothing is shown";
  s.run("values on");
  EXPECT_TRUE(turn(1, 300, 4));
}

TEST_F(Waves, OfFrequenciesTheScaleIsLogarithmic) {
  s.directory().write("a.raw", raw_header("AC Analysis", "complex", "2",
                                          {"frequency\tfrequency", "v(h)\tvoltage"}) +
                                   double_bytes({1, 0, 3, 4, 100, 0, 6, 8}));
  s.run("values file a.raw");
  s.run("values at 10");
  draw("show waves /h");
  EXPECT_TRUE(wave_text("/H  5 .. 10", left(), box().ymin + 4, green));
  const int x = left() + (right() - left() + 1) / 2;
  EXPECT_TRUE(counting_screen::has_line(
      white, {static_cast<std::int16_t>(x), static_cast<std::int16_t>(box().ymin + 4),
              static_cast<std::int16_t>(x), static_cast<std::int16_t>(box().ymax - 16)}));
  gx_vext.viewport_id = gx_vext.viewport_context;
  EXPECT_TRUE(turn(1, right()));
  EXPECT_NEAR(kv_pext.waves->from, std::pow(100, 0.2), 1e-6);
  EXPECT_NEAR(kv_pext.waves->to, 100, 1e-6);
}

TEST_F(Waves, OfAPartOfTheScaleTheCursorLiesInIt) {
  open();
  s.run("show waves /h");
  kv_pext.waves->from = 2e-9;
  kv_pext.waves->to = 6e-9;
  draw("values at 5n");
  const auto x = static_cast<std::int16_t>(left() + std::lround(0.75 * (right() - left())));
  EXPECT_TRUE(counting_screen::has_line(white, {x, static_cast<std::int16_t>(box().ymin + 4), x,
                                                static_cast<std::int16_t>(box().ymax - 16)}));
  EXPECT_TRUE(wave_text("2 ns", left(), box().ymax - 14, white));
  for (const char* at : {"1.9n", "6.1n"}) {
    draw("values at " + std::string(at));
    EXPECT_FALSE(counting_screen::has_line(
        white, {static_cast<std::int16_t>(left()), static_cast<std::int16_t>(box().ymin + 4),
                static_cast<std::int16_t>(left()), static_cast<std::int16_t>(box().ymax - 16)}));
  }
}

// --- what the simulator answers

TEST_F(ShownValues, LinesOfTheSimulatorAreListedWhole) {
  EXPECT_EQ(kv_answer_descriptor(), -1) << "there is none";
  const auto path = s.directory().path() / "top" / std::string(kv_answer_fifo_name);
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  gx_vext.menu_drawn = true;
  EXPECT_EQ(kv_answer_descriptor(), -1) << "a menu is shown";
  gx_vext.menu_drawn = false;
  ASSERT_GE(kv_answer_descriptor(), 0);
  std::FILE* fifo = std::fopen(path.c_str(), "w");
  ASSERT_NE(fifo, nullptr);
  const auto lines = [&](const std::string& text) {
    std::fputs(text.c_str(), fifo);
    std::fflush(fifo);
    kv_read_answers();
    auto told = s.run("values off");
    told.pop_back();
    return told;
  };
  EXPECT_EQ(lines("one\ntwo, but no"), lines_t{"# one"});
  EXPECT_EQ(lines("t all\n"), lines_t{"# two, but not all"});
  EXPECT_EQ(lines("a\tb\xe9~\n\n" + std::string(kv_answer_end) + "\n"), (lines_t{"# a b ~", "# "}));
  std::string all;
  for (const auto& line : lines(std::string(400, 'x') + "\n"))
    all += line.substr(line.find_first_not_of("# "));
  EXPECT_EQ(all, std::string(190, 'x'));
  EXPECT_EQ(lines("lost"), lines_t{});
  std::fclose(fifo);
  kv_read_answers();
  fifo = std::fopen(path.c_str(), "r+");  // another simulator
  ASSERT_GE(kv_answer_descriptor(), 0);
  EXPECT_EQ(lines("new\n"), lines_t{"# new"});
  std::fclose(fifo);
  kv_read_answers();
}
}  // namespace
