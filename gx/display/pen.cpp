#include "gx/display/pen.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <array>

#include "gx/text/at.h"
#include "gx/text/front.h"
#include "gx/text/status.h"
#include "gx/vext.h"

namespace {
// The dashes of a line on the sheet, then those of a border. An empty list is a solid line.
using dashes_t = std::array<char, 6>;
struct dash_list_t {
  int length;
  dashes_t dashes;
};
constexpr std::array<dash_list_t, gx_nb_of_dash_lists> dash_lists = {{
    {0, {}},
    {2, {6, 6}},
    {2, {3, 6}},
    {4, {12, 6, 3, 6}},
    {6, {12, 6, 3, 6, 3, 6}},
    {0, {}},
    {2, {6, 6}},
    {2, {3, 10}},
    {4, {12, 6, 2, 6}},
    {6, {12, 6, 2, 6, 2, 6}},
}};
int sound_color(int color) {
  return color >= 0 && color < gx_nb_of_colors ? color : gx_nb_of_colors - 1;
}

int dash_index(int style, bool border) {
  if (style < 0 || style >= gx_nb_of_styles) gx_set_status(gx_code::invalid_style);
  return border ? style + gx_nb_of_styles : style;
}

short to_short(int v) { return static_cast<short>(std::clamp(v, -32768, 32767)); }

unsigned short to_size(int v) { return static_cast<unsigned short>(std::clamp(v, 0, 65535)); }
}  // namespace

struct gx_pen_t {
  int depth = 0;  // of nested batches
  gx_stroke_layers_t strokes;

  // What the graphics context holds; -1: not known.
  int gc_color = -1;
  int gc_dashes = -1;
  bool gc_xor = false;
  bool clip_known = false;
  XRectangle clip{};
};

namespace {
gx_pen_t& pen() {
  if (!gx_vext.pen) gx_vext.pen = std::make_shared<gx_pen_t>();
  return *gx_vext.pen;
}

// Where the next stroke goes.
gx_stroke_layers_t& strokes() {
  auto& kept = pen().strokes;
  if (kept.is_deep()) gx_pen_flush();
  if (kept.empty()) kept.cover(gx_vext.bitmap_size.x + 1, gx_vext.bitmap_size.y + 1);
  return kept;
}

void use_color(gx_pen_t& p, int color) {
  if (p.gc_color == color) return;
  p.gc_color = color;
  XSetForeground(gx_vext.dpy, gx_vext.our_gc, gx_at(gx_vext.colorrec, color).pixel);
}

void use_dashes(gx_pen_t& p, int dashes) {
  if (p.gc_dashes == dashes) return;
  p.gc_dashes = dashes;
  const auto& list = gx_at(dash_lists, dashes);
  const int line_style = list.length == 0 ? LineSolid : LineOnOffDash;
  XSetLineAttributes(gx_vext.dpy, gx_vext.our_gc, 0, line_style, CapButt, JoinMiter);
  if (list.length > 0) XSetDashes(gx_vext.dpy, gx_vext.our_gc, 0, list.dashes.data(), list.length);
}

// The strokes of a group as the requests want them, in a buffer that is used again.
template <typename Request, typename Stroke, typename Convert>
std::vector<Request>& requests_of(const std::vector<Stroke>& strokes, Convert convert) {
  static std::vector<Request> buffer;
  buffer.resize(strokes.size());
  std::transform(strokes.begin(), strokes.end(), buffer.begin(), convert);
  return buffer;
}

void send(gx_pen_t& p, const gx_stroke_group_t& group) {
  auto* const dpy = gx_vext.dpy;
  const auto target = gx_vext.drawable != 0 ? gx_vext.drawable : gx_vext.win;
  use_color(p, group.color);
  if (!group.lines.empty() || !group.arcs.empty()) use_dashes(p, group.dashes);
  if (!group.lines.empty()) {
    auto& lines = requests_of<XSegment>(group.lines, [](const gx_line16_t& line) {
      return XSegment{line.x1, line.y1, line.x2, line.y2};
    });
    XDrawSegments(dpy, target, gx_vext.our_gc, lines.data(), static_cast<int>(lines.size()));
  }
  if (!group.arcs.empty()) {
    auto& arcs = requests_of<XArc>(group.arcs, [](const gx_arc16_t& arc) {
      return XArc{to_short(arc.x),   to_short(arc.y),     to_size(arc.size),
                  to_size(arc.size), to_short(arc.angle), to_short(arc.extent)};
    });
    XDrawArcs(dpy, target, gx_vext.our_gc, arcs.data(), static_cast<int>(arcs.size()));
  }
  if (!group.boxes.empty()) {
    auto& boxes = requests_of<XRectangle>(group.boxes, [](const gx_box16_t& box) {
      return XRectangle{box.x, box.y, box.width, box.height};
    });
    XFillRectangles(dpy, target, gx_vext.our_gc, boxes.data(), static_cast<int>(boxes.size()));
  }
}

void set_pixel_op(bool exclusive_or) {
  auto& p = pen();
  gx_pen_flush();
  if (p.gc_xor == exclusive_or) return;
  p.gc_xor = exclusive_or;
  if (gx_vext.dpy != nullptr)
    XSetFunction(gx_vext.dpy, gx_vext.our_gc, exclusive_or ? GXxor : GXcopy);
}
}  // namespace

gx_batch_t::gx_batch_t() { ++pen().depth; }

gx_batch_t::~gx_batch_t() {
  if (--pen().depth > 0) return;
  gx_pen_flush();
  if (gx_vext.dpy != nullptr) XFlush(gx_vext.dpy);
}

void gx_pen_line(int color, int style, gx_line16_t line, bool border) {
  if (!gx_front().shows_pictures) return;
  const int dashes = dash_index(style, border);
  strokes().add(sound_color(color), dashes, line);
}

void gx_pen_arc(int color, int style, const gx_arc16_t& arc) {
  if (!gx_front().shows_pictures) return;
  const int dashes = dash_index(style, false);
  strokes().add(sound_color(color), dashes, arc);
}

void gx_pen_box(int color, int x, int y, int width, int height) {
  if (!gx_front().shows_pictures || width < 1 || height < 1) return;
  strokes().add(sound_color(color), {to_short(x), to_short(y), to_size(width), to_size(height)});
}

void gx_pen_flush() {
  auto& p = pen();
  if (p.strokes.empty()) return;
  if (gx_vext.dpy != nullptr)
    p.strokes.visit([&](const gx_stroke_group_t& group) { send(p, group); });
  p.strokes.forget();
}

const gx_stroke_layers_t& gx_pen_kept() { return pen().strokes; }

void gx_pen_clip(int x, int y, int width, int height) {
  auto& p = pen();
  const XRectangle clip{to_short(x), to_short(y), to_size(width), to_size(height)};
  if (p.clip_known && p.clip.x == clip.x && p.clip.y == clip.y && p.clip.width == clip.width &&
      p.clip.height == clip.height)
    return;
  gx_pen_flush();
  p.clip_known = true;
  p.clip = clip;
  if (gx_vext.dpy != nullptr)
    XSetClipRectangles(gx_vext.dpy, gx_vext.our_gc, 0, 0, &p.clip, 1, YXBanded);
}

void gx_pen_clear(int x, int y, int width, int height) {
  gx_pen_flush();
  // A width or height of 0 would clear up to the window's edge.
  if (gx_vext.dpy == nullptr || width < 1 || height < 1) return;
  if (gx_vext.drawable == 0)
    XClearArea(gx_vext.dpy, gx_vext.win, x, y, static_cast<unsigned>(width),
               static_cast<unsigned>(height), False);
  else
    XFillRectangle(gx_vext.dpy, gx_vext.drawable, gx_vext.copy_gc, x, y,
                   static_cast<unsigned>(width), static_cast<unsigned>(height));
}

void gx_set_line_dashed(int style, int color) {
  if (!gx_vext.init_done && gx_vext.num_file_open < 1)
    gx_set_status(gx_code::init_or_open_file_not_done);
  const int dashes = dash_index(style, false);
  gx_pen_flush();
  if (gx_vext.dpy == nullptr) return;
  use_color(pen(), sound_color(color));
  use_dashes(pen(), dashes);
}

void gx_pixel_op_replace() { set_pixel_op(false); }

void gx_pixel_op_xor() { set_pixel_op(true); }
