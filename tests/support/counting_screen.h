// A screen that shows nothing and counts what is asked of it.
#pragma once

#include "gx/display/screen.h"
#include "gx/vext.h"

struct counting_screen {
  inline static int pictures = 0;  // begun off the screen

  counting_screen() {
    pictures = 0;
    gx_vext.cursor_ind_cur = 1;
    static constexpr gx_screen_t nothing = {
        .draw = [](const gx_stroke_group_t&) {},
        .clip = [](const gx_box16_t&) {},
        .clear = [](int, int, int, int) {},
        .set_exclusive_or = [](bool) {},
        .flush = [] {},
        .sync = [] {},
        .begin_picture = [] { return ++pictures > 0; },
        .end_picture = [](const gx_bounds16_t&) {},
        .keep_area = [](int, int, int, int, int) {},
        .put_area_back = [](int, int, int, int, int) {},
        .takes_pixels = [] { return true; },
        .put_pixels = [](const gx_canvas_t&, const gx_pixel_box_t&) {},
        .show_pointer = [](int) {},
        .hide_pointer = [] {},
        .put_pointer = [](gx_point16_t) {},
        .put_pointer_near = [](gx_point16_t, gx_point16_t, int) {},
        .wait_event = [] { return gx_event_t{}; },
        .ask_for_text = [](bool) {},
        .find_key = [](int, std::uint32_t, std::uint32_t) { return false; },
        .set_colors = [](std::span<const gx_rgb_t>) {},
        .set_title = [](std::string_view) {},
        .number_of_planes = [] { return 1; },
        .height = [] { return 2160; },
        .close = [] {},
    };
    gx_vext.screen = &nothing;
  }
  ~counting_screen() { gx_vext.screen = nullptr; }
  counting_screen(const counting_screen&) = delete;
  counting_screen& operator=(const counting_screen&) = delete;
};
