// A screen that shows nothing, counts what is asked of it and notes what menus cover.
#pragma once

#include <string>

#include "gx/display/screen.h"
#include "gx/vext.h"

struct counting_screen {
  inline static int pictures = 0;  // begun off the screen
  inline static int flips = 0;     // boxes drawn by exclusive-or
  inline static bool flipping = false;
  inline static gx_box16_t clipped{};  // to this box last
  inline static std::string areas;     // "+1 149,119 135x340 " kept, "-1 ..." put back

  counting_screen() {
    pictures = flips = 0;
    flipping = false;
    areas.clear();
    gx_vext.cursor_ind_cur = 1;
    static constexpr gx_screen_t nothing = {
        .draw =
            [](const gx_stroke_group_t& group) {
              if (flipping) flips += static_cast<int>(group.boxes.size());
            },
        .clip = [](const gx_box16_t& box) { clipped = box; },
        .clear = [](int, int, int, int) {},
        .set_exclusive_or = [](bool on) { flipping = on; },
        .flush = [] {},
        .sync = [] {},
        .begin_picture = [] { return ++pictures > 0; },
        .end_picture = [](const gx_bounds16_t&) {},
        .keep_area = [](int level, int x, int y, int w, int h) { note('+', level, x, y, w, h); },
        .put_area_back = [](int level, int x, int y, int w,
                            int h) { note('-', level, x, y, w, h); },
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
  static void note(char what, int level, int x, int y, int width, int height) {
    areas += what + std::to_string(level) + " " + std::to_string(x) + "," + std::to_string(y) +
             " " + std::to_string(width) + "x" + std::to_string(height) + " ";
  }
  counting_screen(const counting_screen&) = delete;
  counting_screen& operator=(const counting_screen&) = delete;
};
