// How the colours of other editors look here: one table a format. Of the eight colours a drawing
// has those that are read on black and say nothing else: green is that of what is selected, blue is
// too dark for lines and texts.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "gxmake/description.h"

// xschem, by layer, the nearest to what it draws on black.
inline constexpr auto gxi_xschem_colors = std::to_array<std::uint8_t>(
    {gxm_white,  gxm_cyan,  gxm_white,   gxm_white,  gxm_yellow, gxm_red,    gxm_cyan,  gxm_red,
     gxm_yellow, gxm_white, gxm_magenta, gxm_yellow, gxm_cyan,   gxm_yellow, gxm_white, gxm_red,
     gxm_yellow, gxm_cyan,  gxm_magenta, gxm_yellow, gxm_red,    gxm_yellow});

// Lepton EDA, by index. Its wires are blue there.
inline constexpr auto gxi_lepton_colors = std::to_array<std::uint8_t>(
    {gxm_white, gxm_white,  gxm_red,    gxm_yellow,  gxm_cyan,   gxm_yellow, gxm_cyan,  gxm_white,
     gxm_red,   gxm_yellow, gxm_yellow, gxm_yellow,  gxm_yellow, gxm_cyan,   gxm_white, gxm_white,
     gxm_white, gxm_cyan,   gxm_red,    gxm_magenta, gxm_white,  gxm_yellow, gxm_white, gxm_white});

// KiCad, by what it draws.
struct gxi_kicad_colors_t {
  std::uint8_t body = gxm_yellow, pin = gxm_white, block = gxm_magenta, note = gxm_white,
               label = gxm_white, bus = gxm_cyan, mark = gxm_cyan, frame = gxm_white,
               left_out = gxm_red;
};
inline constexpr gxi_kicad_colors_t gxi_kicad_colors{};

constexpr bool gxi_is_readable(std::uint8_t color) {
  return color != gxm_black && color != gxm_green && color != gxm_blue;
}
static_assert(std::ranges::all_of(gxi_xschem_colors, gxi_is_readable) &&
              std::ranges::all_of(gxi_lepton_colors, gxi_is_readable));
