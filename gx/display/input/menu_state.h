// The menu tree and what of it is on the screen.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "gx/text/records.h"

inline constexpr int gx_max_menu_lines = 12;

struct gx_menu_rec_t {
  bool cmd_on = false;     // the line carries a command
  gx_string_record_t str;  // at most 18 characters
  gx_string_record_t cmd;
};

template <std::size_t Entries>
using gx_menu_level_t = std::array<std::unique_ptr<gx_menu_rec_t>, Entries>;

struct gx_menu_state_t {
  std::array<std::int32_t, 4> menuline_lev{};   // line under the pointer, by level
  std::array<std::int32_t, 4> prelinsel_lev{};  // line highlighted, by level
  std::int32_t menu_level = 0;
  gx_menu_level_t<12> menu1_arofptr;
  gx_menu_level_t<12 * 12> menu2_arofptr;
  gx_menu_level_t<12 * 12 * 12> menu3_arofptr;
  gx_menu_level_t<12 * 12 * 12 * 12> menu4_arofptr;
  bool menu_drawn = false;
  std::array<bool, 4> menu_entered{};  // the user has moved the pointer in the level
  gx_point16_t menu_outside;           // where the pointer was last before it entered one
  bool menu_hidden = false;            // drawn, but off the screen while something draws under it
  gx_bounds16_t menu_extbounds, menu_boxbounds;
  std::array<gx_bounds16_t, 4> menu_lev_extbounds, menu_lev_boxbounds;
  std::array<unsigned long, 4> menu_pixid{};
};
