// The screen: what a window's system does for the package, as functions. gx/window has the ones of
// X; without a display there is none, and nothing is sent. All places are pixels of the window.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "gx/display/input/events.h"
#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/canvas.h"
#include "gx/display/strokes/stroke_layers.h"
#include "gx/text/records.h"

struct gx_screen_t {
  // --- strokes: of one colour and dash list, then copied or, `exclusive_or`, put over what is
  // there
  void (*draw)(const gx_stroke_group_t& group);
  void (*clip)(const gx_box16_t& box);
  void (*clear)(int x, int y, int width, int height);  // to the background; no empty box
  void (*set_exclusive_or)(bool on);
  void (*flush)();  // what was asked for is on its way
  void (*sync)();   // and done

  // --- pictures: strokes go to one that nobody sees until a part of it is shown
  bool (*begin_picture)();  // false: there is none, or one is begun already
  void (*end_picture)(const gx_bounds16_t& shown);
  // What a menu level covers, kept beside the picture and put back. At most as large as the window.
  void (*keep_area)(int level, int x, int y, int width, int height);
  void (*put_area_back)(int level, int x, int y, int width, int height);

  // --- smooth pictures: whether the screen has the colours for them, and a part of one
  bool (*takes_pixels)();
  void (*put_pixels)(const gx_canvas_t& canvas, const gx_pixel_box_t& box);

  // --- the pointer
  void (*show_pointer)(int pattern);  // 1..12
  void (*hide_pointer)();
  void (*put_pointer)(gx_point16_t to);
  void (*put_pointer_near)(gx_point16_t to, gx_point16_t from, int margin);  // if it is there yet

  // --- events
  gx_event_t (*wait_event)();
  void (*ask_for_text)(bool from_clipboard);
  bool (*find_key)(int kind, std::uint32_t keysym, std::uint32_t modifiers);

  // --- the window
  void (*set_colors)(std::span<const gx_rgb_t> colors);  // by number; 0 is the ground
  void (*set_title)(std::string_view title);
  int (*number_of_planes)();
  int (*height)();  // of the whole screen
  void (*close)();
};
