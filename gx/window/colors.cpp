#include "gx/window/colors.h"

#include <X11/Xlib.h>

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include "gx/text/messages/debug.h"
#include "gx/vext.h"
#include "gx/window/strokes.h"

namespace {
// A colour's name, and its components for a server that does not know the name.
struct named_color_t {
  const char* name;
  std::uint16_t red, green, blue;
};
constexpr std::uint16_t full = 65535;
constexpr std::array<named_color_t, 8> color_names = {{{"black", 0, 0, 0},
                                                       {"red", full, 0, 0},
                                                       {"green", 0, full, 0},
                                                       {"blue", 0, 0, full},
                                                       {"cyan", 0, full, full},
                                                       {"yellow", full, full, 0},
                                                       {"magenta", full, 0, full},
                                                       {"white", full, full, full}}};
// Larger colour maps are never full of other programs' cells.
constexpr int max_searched_cells = 4096;

std::int64_t distance(const XColor& a, const XColor& b) {
  const std::int64_t red = a.red - b.red, green = a.green - b.green, blue = a.blue - b.blue;
  return red * red + green * green + blue * blue;
}

// The nearest cell of a full colour map that can be shared.
bool take_nearest(Colormap map, XColor& color) {
  const int cells = DisplayCells(gx_vext.dpy, gx_vext.scrid);
  if (cells < 1 || cells > max_searched_cells) return false;
  std::vector<XColor> present(static_cast<std::size_t>(cells));
  for (std::size_t i = 0; i < present.size(); ++i) present[i].pixel = i;
  XQueryColors(gx_vext.dpy, map, present.data(), cells);
  // Cells of other programs that may change cannot be allocated: try the next nearest then.
  std::vector<bool> refused(present.size());
  for (int tries = 0; tries < cells; ++tries) {
    std::size_t best = present.size();
    auto best_distance = std::numeric_limits<std::int64_t>::max();
    for (std::size_t i = 0; i < present.size(); ++i) {
      if (refused[i] || distance(present[i], color) >= best_distance) continue;
      best = i;
      best_distance = distance(present[i], color);
    }
    if (best == present.size()) return false;
    XColor taken = present[best];
    if (XAllocColor(gx_vext.dpy, map, &taken) != 0) {
      color = taken;
      return true;
    }
    refused[best] = true;
  }
  return false;
}

XColor allocate(Colormap map, const named_color_t& wanted) {
  XColor color{}, exact{};
  if (XAllocNamedColor(gx_vext.dpy, map, wanted.name, &color, &exact) != 0) return color;
  color = {};
  color.red = wanted.red;
  color.green = wanted.green;
  color.blue = wanted.blue;
  color.flags = DoRed | DoGreen | DoBlue;
  if (XAllocColor(gx_vext.dpy, map, &color) != 0) return color;
  gx_debug(" !! xerror :  cannot allocate x color  ? \n !! color :  '%s'\n", wanted.name);
  if (take_nearest(map, color)) return color;
  color.pixel = &wanted == &color_names[0] ? BlackPixel(gx_vext.dpy, gx_vext.scrid)
                                           : WhitePixel(gx_vext.dpy, gx_vext.scrid);
  return color;
}

// By its components. On a screen of true colours the server need not be asked.
XColor allocate_rgb(Colormap map, gx_rgb_t wanted) {
  constexpr int to_16_bits = 257;
  XColor color{};
  color.red = static_cast<std::uint16_t>(wanted.red * to_16_bits);
  color.green = static_cast<std::uint16_t>(wanted.green * to_16_bits);
  color.blue = static_cast<std::uint16_t>(wanted.blue * to_16_bits);
  color.flags = DoRed | DoGreen | DoBlue;
  const Visual* const visual = DefaultVisual(gx_vext.dpy, gx_vext.scrid);
  if (visual->c_class == TrueColor) {
    const auto part = [](unsigned long mask, std::uint16_t value) {
      const unsigned long unit = mask & (~mask + 1);
      return unit == 0 ? 0 : (mask / unit * value / full) * unit;
    };
    color.pixel = part(visual->red_mask, color.red) | part(visual->green_mask, color.green) |
                  part(visual->blue_mask, color.blue);
    return color;
  }
  if (XAllocColor(gx_vext.dpy, map, &color) != 0 || take_nearest(map, color)) return color;
  const bool is_dark = wanted.red + wanted.green + wanted.blue < 3 * 128;
  color.pixel =
      is_dark ? BlackPixel(gx_vext.dpy, gx_vext.scrid) : WhitePixel(gx_vext.dpy, gx_vext.scrid);
  return color;
}

void keep(std::size_t number, const XColor& color) {
  gx_vext.colorrec[number] = {color.pixel, color.red, color.green, color.blue};
}
}  // namespace

void gx_init_colors() {
  const Colormap map = DefaultColormap(gx_vext.dpy, gx_vext.scrid);
  for (std::size_t i = 0; i < color_names.size(); ++i) {
    const XColor color = allocate(map, color_names[i]);
    keep(i, color);
    auto& record = gx_vext.colorrec[i];
    // On a screen of few colours nothing may vanish on the black ground.
    if (i > 0 && record.pixel == gx_vext.colorrec[0].pixel)
      record.pixel = WhitePixel(gx_vext.dpy, gx_vext.scrid);
  }
}

void gx_set_colors(std::span<const gx_rgb_t> colors) {
  auto& v = gx_vext;
  const Colormap map = DefaultColormap(v.dpy, v.scrid);
  for (std::size_t i = 0; i < colors.size() && i < v.colorrec.size(); ++i)
    keep(i, allocate_rgb(map, colors[i]));
  v.backgrpixel = v.colorrec[0].pixel;
  XSetForeground(v.dpy, v.copy_gc, v.backgrpixel);
  XSetWindowBackground(v.dpy, v.win, v.backgrpixel);
  gx_forget_context();
}
