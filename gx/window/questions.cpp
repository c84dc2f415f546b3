#include "gx/window/questions.h"

#include <X11/Xlib.h>

#include "gx/vext.h"

std::optional<gx_x_place_t> gx_x_place_of(unsigned long drawable) {
  Window root{};
  int x{}, y{};
  unsigned width{}, height{}, border{}, depth{};
  if (XGetGeometry(gx_vext.dpy, drawable, &root, &x, &y, &width, &height, &border, &depth) == 0)
    return std::nullopt;
  return gx_x_place_t{x, y, static_cast<int>(width), static_cast<int>(height)};
}

std::optional<gx_x_place_t> gx_x_pointer_in(unsigned long window) {
  Window root{}, child{};
  int root_x{}, root_y{}, x{}, y{};
  unsigned state{};
  if (XQueryPointer(gx_vext.dpy, window, &root, &child, &root_x, &root_y, &x, &y, &state) == False)
    return std::nullopt;
  return gx_x_place_t{x, y, 0, 0};
}

std::string gx_x_property(unsigned long window, unsigned long name, unsigned long type, int format,
                          long most_words) {
  Atom found{};
  int unit{};
  unsigned long count{}, rest{};
  unsigned char* data{};
  if (XGetWindowProperty(gx_vext.dpy, window, name, 0, most_words, False, type, &found, &unit,
                         &count, &rest, &data) != Success ||
      data == nullptr)
    return {};
  std::string values;
  if (unit == format)
    values.assign(reinterpret_cast<const char*>(data), count * (format == 32 ? sizeof(long) : 1));
  XFree(data);
  return values;
}
