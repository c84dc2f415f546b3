#include "gx/display/sheet/theme.h"

#include <algorithm>

#include "gx/display/screen.h"
#include "gx/display/strokes/pen.h"
#include "gx/text/at.h"
#include "gx/vext.h"

namespace {
constexpr gx_rgb_t rgb(std::uint32_t value) {
  return {static_cast<std::uint8_t>(value >> 16U), static_cast<std::uint8_t>(value >> 8U),
          static_cast<std::uint8_t>(value)};
}

template <typename... Value>
constexpr std::array<gx_rgb_t, sizeof...(Value)> rgbs(Value... value) {
  return {rgb(value)...};
}

// In the order of the colour numbers (black, red, green, blue, cyan, yellow, magenta, white) and of
// the roles.
constexpr gx_theme_t themes[] = {
    {.name = "CLAssic",
     .colors = rgbs(0x000000U, 0xff0000U, 0x00ff00U, 0x0000ffU, 0x00ffffU, 0xffff00U, 0xff00ffU,
                    0xffffffU)},
    {.name = "DARk",
     .has_roles = true,
     .colors = rgbs(0x12161cU, 0xff6f61U, 0x4fc46aU, 0x6f9bffU, 0x4cc9d9U, 0xe9d54aU, 0xdc8ae6U,
                    0xf4f3eeU),
     .roles = rgbs(0x4fb3f0U, 0xd8c27aU, 0x1f9e7aU, 0xf4f3eeU, 0x8c95a3U, 0x6a7482U, 0xff9a1fU,
                   0xf05fc4U, 0x33ff00U, 0xffffccU, 0xa64dffU, 0x339900U, 0xcc3366U, 0x39424eU,
                   0x9fc9e8U)},
    {.name = "LIGht",
     .has_roles = true,
     .colors = rgbs(0xfbfaf6U, 0xc0241aU, 0x1c7431U, 0x1f4fd1U, 0x006a7aU, 0x755a00U, 0x8c2a9cU,
                    0x16181cU),
     .roles = rgbs(0x0a63b0U, 0x5a4a2aU, 0x0f8a6aU, 0x16181cU, 0x70777fU, 0x868c94U, 0xc25a00U,
                   0xb3177fU, 0x0000ffU, 0x330000U, 0xff3333U, 0xcc33ccU, 0x000066U, 0xc9ccd1U,
                   0x2f6fb0U)},
};
}  // namespace

std::span<const gx_theme_t> gx_themes() { return themes; }

const gx_theme_t& gx_theme() { return gx_vext.theme != nullptr ? *gx_vext.theme : themes[0]; }

void gx_set_theme(const gx_theme_t& theme) {
  gx_pen_flush();
  gx_vext.theme = &theme;
  if (gx_vext.screen == nullptr) return;
  std::array<gx_rgb_t, gx_nb_of_colors> colors;
  std::ranges::copy(theme.roles, std::ranges::copy(theme.colors, colors.begin()).out);
  gx_vext.screen->set_colors(colors);
}

int gx_highlight_color(int number) {
  constexpr std::array<int, 5> classic = {5, 6, 7, 1, 3};  // yellow, magenta, white, red, blue
  const int first = static_cast<int>(gx_role::highlight);
  return gx_color_of(static_cast<gx_role>(first + number - 1),
                     number == 1 ? gx_vext.color_obj_selected : gx_at(classic, number - 2));
}

int gx_color_of(gx_role role, int classic) {
  return gx_theme().has_roles ? gx_nb_of_file_colors + static_cast<int>(role) : classic;
}
