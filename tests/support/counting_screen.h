// A screen that shows nothing, counts what is asked of it, notes what menus cover and brings the
// events that a test gives it.
#pragma once

#include <algorithm>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "gx/display/screen.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/display/viewport_coords.h"
#include "gx/display/viewports.h"
#include "gx/vext.h"

struct counting_screen {
  inline static int pictures = 0;  // begun off the screen
  inline static int closed = 0;
  inline static int flips = 0;  // boxes drawn by exclusive-or
  inline static bool flipping = false;
  inline static gx_box16_t clipped{};  // to this box last
  inline static gx_box16_t cleared{};
  inline static std::vector<gx_line16_t> lines;
  inline static std::vector<int> line_colors;                   // of each of them
  inline static std::vector<std::pair<int, gx_box16_t>> boxes;  // with their colours
  inline static std::string title;
  inline static std::deque<gx_event_t> events;  // after them the session ends
  inline static std::string pointers, put;      // its shapes "9 2 ", its places "100,200 "
  inline static std::string areas;              // "+1 149,119 135x340 " kept, "-1 ..." put back

  counting_screen() {
    pictures = flips = closed = 0;
    flipping = false;
    areas.clear();
    events.clear();
    pointers.clear();
    put.clear();
    forget();
    gx_vext.cursor_ind_cur = 1;
    static constexpr gx_screen_t nothing = {
        .draw =
            [](const gx_stroke_group_t& group) {
              if (flipping) flips += static_cast<int>(group.boxes.size());
              for (const auto& box : group.boxes) boxes.emplace_back(group.color, box);
              lines.insert(lines.end(), group.lines.begin(), group.lines.end());
              line_colors.resize(lines.size(), group.color);
            },
        .clip = [](const gx_box16_t& box) { clipped = box; },
        .clear = [](int x, int y, int w, int h) { cleared = box_of(x, y, w, h); },
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
        .show_pointer = [](int pattern) { pointers += std::to_string(pattern) + " "; },
        .hide_pointer = [] {},
        .put_pointer = [](gx_point16_t to) { note_put(to); },
        .put_pointer_near = [](gx_point16_t to, gx_point16_t, int) { note_put(to); },
        .wait_event = next_event,
        .ask_for_text = [](bool) {},
        .find_key = [](int, std::uint32_t, std::uint32_t) { return false; },
        .set_colors = [](std::span<const gx_rgb_t>) {},
        .set_title = [](std::string_view text) { title = text; },
        .number_of_planes = [] { return 1; },
        .height = [] { return 2160; },
        .close = [] { ++closed; },
    };
    gx_vext.screen = &nothing;
  }
  ~counting_screen() { gx_vext.screen = nullptr; }
  static gx_box16_t box_of(int x, int y, int width, int height) {
    return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
            static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)};
  }
  static void forget() {
    lines.clear();
    line_colors.clear();
    boxes.clear();
  }
  static bool has_line(const gx_line16_t& line) {
    return std::ranges::find(lines, line) != lines.end();
  }
  static bool has_line(int color, const gx_line16_t& line) {
    for (std::size_t i = 0; i < lines.size(); ++i)
      if (lines[i] == line && line_colors[i] == color) return true;
    return false;
  }
  static bool has_box(int color, int x, int y, int width, int height) {
    return std::ranges::find(boxes, std::pair{color, box_of(x, y, width, height)}) != boxes.end();
  }
  // Whether all strokes of a text are among the lines; x and y: its lower left corner.
  static bool has_text(gx_vpid_t vpid, std::string_view text, int x, int y, int height, int color) {
    gx_pen_flush();
    const auto drawn = lines;
    const auto colors = line_colors;
    const auto kept = boxes;
    forget();
    gx_text(vpid, text, x, y, height, 0, color);
    gx_pen_flush();
    const auto wanted = std::exchange(lines, drawn);
    line_colors = colors;
    boxes = kept;
    return !wanted.empty() && std::ranges::all_of(wanted, [&](const gx_line16_t& line) {
      return has_line(color, line);
    });
  }
  static void note_put(gx_point16_t to) {
    put += std::to_string(to.x) + "," + std::to_string(to.y) + " ";
  }
  // The viewport and the design position follow the pointer; where it rests its place is five
  // pixels to the right.
  static gx_event_t next_event() {
    gx_vext.end_flag = events.empty();
    if (gx_vext.end_flag) return {};
    const gx_event_t event = events.front();
    events.pop_front();
    gx_pointreal_t point;
    gx_vext.pixel_pos = event.pixel;
    gx_vext.viewport_id = gx_viewport_pixel_to_obj2d(event.pixel, point);
    if (gx_is_picture_viewport(gx_vext.viewport_id)) gx_vext.obj_pos = point;
    if (event.kind == gx_event_kind::pointer_at_rest) gx_vext.pixel_pos.x += 5;
    return event;
  }
  static void note(char what, int level, int x, int y, int width, int height) {
    areas += what + std::to_string(level) + " " + std::to_string(x) + "," + std::to_string(y) +
             " " + std::to_string(width) + "x" + std::to_string(height) + " ";
  }
  counting_screen(const counting_screen&) = delete;
  counting_screen& operator=(const counting_screen&) = delete;
};
