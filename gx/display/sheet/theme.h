// Themes: which colour has what on the screen. The classic one draws every object in that of the
// eight colours which its file names; the others give each part of a sheet one colour, whatever the
// file says, chosen so that it stands out from the ground and from the other parts, also for those
// who do not see red and green alike.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "gx/display/strokes/stroke_layers.h"

inline constexpr int gx_white = 7;  // the number in files

struct gx_rgb_t {
  std::uint8_t red = 0, green = 0, blue = 0;
  friend bool operator==(const gx_rgb_t&, const gx_rgb_t&) = default;
};

enum class gx_role : std::uint8_t {
  wire,
  symbol,
  pin,
  text,
  frame,
  page,
  selection,
  highlight,  // the first of the six colours of highlighted nets, which follow each other
  highlight2,
  highlight3,
  highlight4,
  highlight5,
  highlight6,
  pane,         // the frame of a viewport
  active_pane,  // of the one where the pointer is
};

struct gx_theme_t {
  std::string_view name;  // capitals are the least form
  bool has_roles = false;
  std::array<gx_rgb_t, gx_nb_of_file_colors> colors;  // of the numbers in files; 0 is the ground
  std::array<gx_rgb_t, gx_nb_of_roles> roles = {};
};

std::span<const gx_theme_t> gx_themes();  // the first is the classic one
const gx_theme_t& gx_theme();             // the present one

// From now on strokes have its colours; what is drawn already keeps the ones it has.
void gx_set_theme(const gx_theme_t& theme);

// The number of the colour that a role has, for the pen; `classic` where the theme has no roles.
int gx_color_of(gx_role role, int classic);
// The same of colour 1..6 of a highlighted net; the first is classically that of what is selected.
int gx_highlight_color(int number);
// A colour number of a file as the pen takes it: the unknown ones are white.
inline int gx_file_color(int color) {
  return color >= 0 && color < gx_nb_of_file_colors ? color : gx_nb_of_file_colors - 1;
}
