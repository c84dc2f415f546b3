// The colours of the themes: they stand out from the ground and from each other, and each part of a
// sheet has its own.
#include "gx/display/sheet/theme.h"

#include <cmath>

#include "gx/display/sheet/highlight.h"
#include "tests/support/design_session.h"
#include "tests/support/drawing_board.h"

namespace {
using color_t = std::array<double, 3>;

color_t linear(gx_rgb_t rgb) {
  const auto part = [](std::uint8_t value) {
    const double c = value / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  return {part(rgb.red), part(rgb.green), part(rgb.blue)};
}

double luminance(gx_rgb_t rgb) {
  const auto [r, g, b] = linear(rgb);
  return 0.2126 * r + 0.7152 * g + 0.0722 * b;
}

double contrast(gx_rgb_t a, gx_rgb_t b) {
  const auto [low, high] = std::minmax({luminance(a), luminance(b)});
  return (high + 0.05) / (low + 0.05);
}

// How eyes without red or without green receptors see it: both mixes make one.
struct eyes_t {
  double red, green, blue_of_red;
};
constexpr eyes_t without_green = {0.29275, 0.70725, -0.02234};
constexpr eyes_t without_red = {0.11238, 0.88762, 0.00401};

color_t seen(const color_t& c, const eyes_t& eyes) {
  const double mixed = eyes.red * c[0] + eyes.green * c[1];
  return {mixed, mixed, eyes.blue_of_red * (c[0] - c[1]) + c[2]};
}

// In a space where distances are those that people see; 2 is just noticed.
color_t lab(const color_t& c) {
  const auto f = [](double t) { return t > 0.008856 ? std::cbrt(t) : 7.787 * t + 16.0 / 116; };
  const double x = f((0.4124 * c[0] + 0.3576 * c[1] + 0.1805 * c[2]) / 0.9505);
  const double y = f(0.2126 * c[0] + 0.7152 * c[1] + 0.0722 * c[2]);
  const double z = f((0.0193 * c[0] + 0.1192 * c[1] + 0.9505 * c[2]) / 1.089);
  return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

double distance(const color_t& a, const color_t& b) {
  return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

TEST(Themes, StandOutFromTheGroundAndFromEachOther) {
  ASSERT_EQ(gx_themes().size(), 3U);
  for (const gx_theme_t& theme : gx_themes().subspan(1)) {
    SCOPED_TRACE(theme.name);
    const auto color = [&](gx_role role) { return gx_at(theme.roles, role); };
    const gx_rgb_t ground = theme.colors[0];
    for (const gx_rgb_t& text : std::span(theme.colors).subspan(1))
      EXPECT_GE(contrast(text, ground), 4.5);
    EXPECT_GE(contrast(color(gx_role::text), ground), 4.5);
    for (const gx_role role : {gx_role::wire, gx_role::symbol, gx_role::pin, gx_role::frame,
                               gx_role::page, gx_role::selection, gx_role::highlight})
      EXPECT_GE(contrast(color(role), ground), 3) << static_cast<int>(role);
    EXPECT_LT(contrast(color(gx_role::pane), ground), 2) << "quiet";
    EXPECT_GE(contrast(color(gx_role::active_pane), ground), 4.5);
    const gx_role told_apart[] = {gx_role::wire, gx_role::symbol,    gx_role::pin,
                                  gx_role::text, gx_role::selection, gx_role::highlight};
    const gx_role highlights[] = {gx_role::highlight,  gx_role::highlight2, gx_role::highlight3,
                                  gx_role::highlight4, gx_role::highlight5, gx_role::highlight6};
    for (const gx_role role : highlights) EXPECT_GE(contrast(color(role), ground), 3);
    for (const std::span<const gx_role> group : {std::span(told_apart), std::span(highlights)})
      for (const gx_role a : group)
        for (const gx_role b : group) {
          if (a >= b) continue;
          for (const eyes_t& eyes : {without_green, without_red})
            EXPECT_GE(
                distance(lab(seen(linear(color(a)), eyes)), lab(seen(linear(color(b)), eyes))), 15)
                << static_cast<int>(a) << " " << static_cast<int>(b);
        }
  }
}

// A symbol of a line and two pins, one of them on a wire.
constexpr char coloured[] = R"(
symbol s
  line 0.4,0.2 1,0.4 color white
  pin A 1.2,0.6
  pin B 2.2,0.6
sheet top
  page 20,20
  part U s 8,8
  net
    wire U.A 9.2,12 12,12
)";

TEST(Themes, GiveEachPartItsColour) {
  const drawing_board board(coloured);
  const auto count = [&](int color) {
    return lines_of(color, 0,
                    [] {
                      lb_display_all_inst(1, 1, gx_draw_mode::draw);
                      lb_display_all_net(1, 1, gx_draw_mode::draw);
                    })
        .size();
  };
  const auto role = [](gx_role r) { return gx_nb_of_file_colors + static_cast<int>(r); };
  constexpr int red = 1, cyan = 4, white = 7;
  const auto classic = std::array{count(white), count(red), count(cyan)};
  EXPECT_EQ(classic, (std::array<std::size_t, 3>{1, 8, 2})) << "a line, two pins, two segments";

  gx_set_theme(gx_themes()[1]);
  EXPECT_EQ(count(role(gx_role::symbol)), 1U);
  EXPECT_EQ(count(role(gx_role::wire)), 2U);
  EXPECT_EQ(count(role(gx_role::pin)), 4U) << "the loose one only";
  EXPECT_EQ(count(white) + count(red) + count(cyan), 0U);
  gx_set_object_selected(board.file(), board.id(gx_type::pinpropfam), true);
  EXPECT_EQ(
      lines_of(role(gx_role::selection), 3, [] { lb_display_all_inst(1, 1, gx_draw_mode::draw); })
          .size(),
      4U)
      << "a selected pin is seen though it is joined";
  gx_highlight_net(1, board.id(gx_type::net), "");
  EXPECT_EQ(count(role(gx_role::highlight)), 2U * 3) << "three pixels wide";
  gx_highlight_net(1, board.id(gx_type::net), "", 0, 6);
  EXPECT_EQ(count(role(gx_role::highlight6)), 2U * 3);

  gx_highlight_clear_all();
  gx_set_object_selected(board.file(), board.id(gx_type::pinpropfam), false);
  gx_set_theme(gx_themes()[0]);
  EXPECT_EQ((std::array{count(white), count(red), count(cyan)}), classic);
}

TEST(Themes, AreChosenByName) {
  design_session s("sheet top\n page 4,4\n");
  EXPECT_EQ(s.run("display theme lig"), lines_t{" DISplay THEme LIGht "});
  EXPECT_EQ(&gx_theme(), &gx_themes()[2]);
  EXPECT_EQ(s.run("disp the lights"),
            (lines_t{"# DISplay THEme lights ",
                     "# !! Error : No such theme (CLAssic, DARk or LIGht) ? "}));
  EXPECT_EQ(s.run("display theme da").size(), 2U) << "less than its least form";
  EXPECT_EQ(s.run("display theme classic"), lines_t{" DISplay THEme CLAssic "});
  EXPECT_EQ(s.run("display on"), lines_t{" DISplay ON "});
}
}  // namespace
