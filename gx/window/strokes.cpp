#include "gx/window/strokes.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <string>
#include <vector>

#include "gx/display/strokes/dashes.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/strokes/smooth.h"
#include "gx/text/at.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {
// What the graphics context holds; -1: not known.
struct context_t {
  int color = -1, dashes = -1, width = -1;
  bool is_exclusive_or = false;
};
context_t state;

// Larger arcs than those of 16 bits come as lines.
XArc request_of(const gx_arc16_t& arc) {
  const auto size = static_cast<unsigned short>(arc.size);
  return {static_cast<short>(arc.x),     static_cast<short>(arc.y),     size, size,
          static_cast<short>(arc.angle), static_cast<short>(arc.extent)};
}

void use_color(int color) {
  if (state.color == color) return;
  state.color = color;
  // Put over the ground by exclusive-or it is the colour itself.
  const unsigned long under = state.is_exclusive_or ? gx_vext.backgrpixel : 0;
  XSetForeground(gx_vext.dpy, gx_vext.our_gc, gx_at(gx_vext.colorrec, color).pixel ^ under);
}

void use_dashes(int dashes) {
  const bool is_border = dashes >= gx_nb_of_styles;
  // The server draws a line of width 0, which is one pixel wide, as fast as it can.
  const int width = is_border || gx_line_width() == 1 ? 0 : gx_line_width();
  if (state.dashes == dashes && state.width == width) return;
  state.dashes = dashes;
  state.width = width;
  std::string lengths;
  const auto list = gx_dash_list(dashes);
  for (const char length : list) lengths += static_cast<char>(length * std::max(width, 1));
  const int line_style = list.empty() ? LineSolid : LineOnOffDash;
  XSetLineAttributes(gx_vext.dpy, gx_vext.our_gc, static_cast<unsigned>(width), line_style,
                     width == 0 ? CapButt : CapProjecting, JoinMiter);
  if (!list.empty())
    XSetDashes(gx_vext.dpy, gx_vext.our_gc, 0, lengths.data(), static_cast<int>(list.size()));
}

// The strokes of a group as the requests want them, in a buffer that is used again.
template <typename Request, typename Stroke, typename Convert>
std::vector<Request>& requests_of(const std::vector<Stroke>& strokes, Convert convert) {
  static std::vector<Request> buffer;
  buffer.resize(strokes.size());
  std::transform(strokes.begin(), strokes.end(), buffer.begin(), convert);
  return buffer;
}

}  // namespace

void gx_begin_strokes() { state = {}; }

void gx_forget_context() { state.color = -1; }

void gx_draw_strokes(const gx_stroke_group_t& group) {
  auto* const dpy = gx_vext.dpy;
  const auto target = gx_vext.drawable != 0 ? gx_vext.drawable : gx_vext.win;
  use_color(group.color);
  if (!group.lines.empty() || !group.arcs.empty()) use_dashes(group.dashes);
  if (!group.lines.empty()) {
    auto& lines = requests_of<XSegment>(group.lines, [](const gx_line16_t& line) {
      return XSegment{line.x1, line.y1, line.x2, line.y2};
    });
    XDrawSegments(dpy, target, gx_vext.our_gc, lines.data(), static_cast<int>(lines.size()));
  }
  if (!group.arcs.empty()) {
    auto& arcs = requests_of<XArc>(group.arcs, request_of);
    XDrawArcs(dpy, target, gx_vext.our_gc, arcs.data(), static_cast<int>(arcs.size()));
  }
  if (!group.boxes.empty()) {
    auto& boxes = requests_of<XRectangle>(group.boxes, [](const gx_box16_t& box) {
      return XRectangle{box.x, box.y, box.width, box.height};
    });
    XFillRectangles(dpy, target, gx_vext.our_gc, boxes.data(), static_cast<int>(boxes.size()));
  }
}

void gx_clip_strokes(const gx_box16_t& box) {
  XRectangle clip{box.x, box.y, box.width, box.height};
  XSetClipRectangles(gx_vext.dpy, gx_vext.our_gc, 0, 0, &clip, 1, YXBanded);
}

// A width or height of 0 would clear up to the window's edge.
void gx_clear_area(int x, int y, int width, int height) {
  if (gx_vext.drawable == 0)
    XClearArea(gx_vext.dpy, gx_vext.win, x, y, static_cast<unsigned>(width),
               static_cast<unsigned>(height), False);
  else
    XFillRectangle(gx_vext.dpy, gx_vext.drawable, gx_vext.copy_gc, x, y,
                   static_cast<unsigned>(width), static_cast<unsigned>(height));
}

void gx_set_exclusive_or(bool on) {
  state.is_exclusive_or = on;
  state.color = -1;
  XSetFunction(gx_vext.dpy, gx_vext.our_gc, on ? GXxor : GXcopy);
}

void gx_set_line_dashed(int style, int color) {
  if (!gx_vext.init_done && gx_vext.num_file_open < 1)
    gx_set_status(gx_code::init_or_open_file_not_done);
  if (style < 0 || style >= gx_nb_of_styles) gx_set_status(gx_code::invalid_style);
  gx_pen_flush();
  if (gx_vext.dpy == nullptr) return;
  use_color(color >= 0 && color < gx_nb_of_colors ? color : gx_nb_of_file_colors - 1);
  use_dashes(style);
}
