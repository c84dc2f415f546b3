// What is asked of the X server: where a window, a pixmap or the pointer is, what a property holds.
#pragma once

#include <optional>
#include <string>

struct gx_x_place_t {
  int x{}, y{}, width{}, height{};  // pixels
};
// Of a window or pixmap; nothing when the server does not say.
std::optional<gx_x_place_t> gx_x_place_of(unsigned long drawable);

// The pointer in pixels of the window, without a size; nothing when it is on another screen.
std::optional<gx_x_place_t> gx_x_pointer_in(unsigned long window);

// The values of a window's property of that type in units of `format` bits, 8 or 32, as Xlib gives
// them: a byte or a long each. At most `most_words` times four bytes; empty when there is none.
std::string gx_x_property(unsigned long window, unsigned long name, unsigned long type, int format,
                          long most_words);
