#include "gx/display/pen.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <array>
#include <span>

#include "gx/text/status.h"
#include "gx/vext.h"

namespace {
// The dashes of a line on the sheet, then those of a border. An empty list is a solid line.
using dashes_t = std::array<char, 6>;
struct dash_list_t {
  int length;
  dashes_t dashes;
};
constexpr int nb_of_dash_lists = 2 * gx_nb_of_styles;
constexpr std::array<dash_list_t, nb_of_dash_lists> dash_lists = {{
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
constexpr int nb_of_groups = gx_nb_of_colors * nb_of_dash_lists;

// Lines and arcs of one colour and one dash list.
struct group_t {
  std::vector<XSegment> lines;
  std::vector<XArc> arcs;
};

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
  std::array<group_t, nb_of_groups> groups;
  std::vector<int> groups_used;  // in the order of first use
  std::array<std::vector<XRectangle>, gx_nb_of_colors> boxes;
  std::vector<int> boxes_used;  // colours, in the order of first use

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

group_t& group_of(int color, int dashes) {
  auto& p = pen();
  const int index = sound_color(color) * nb_of_dash_lists + dashes;
  auto& group = p.groups[static_cast<std::size_t>(index)];
  if (group.lines.empty() && group.arcs.empty()) p.groups_used.push_back(index);
  return group;
}

void use_color(gx_pen_t& p, int color) {
  if (p.gc_color == color) return;
  p.gc_color = color;
  XSetForeground(gx_vext.dpy, gx_vext.our_gc,
                 gx_vext.colorrec[static_cast<std::size_t>(color)].pixel);
}

void use_dashes(gx_pen_t& p, int dashes) {
  if (p.gc_dashes == dashes) return;
  p.gc_dashes = dashes;
  const auto& list = dash_lists[static_cast<std::size_t>(dashes)];
  const int line_style = list.length == 0 ? LineSolid : LineOnOffDash;
  XSetLineAttributes(gx_vext.dpy, gx_vext.our_gc, 0, line_style, CapButt, JoinMiter);
  if (list.length > 0) XSetDashes(gx_vext.dpy, gx_vext.our_gc, 0, list.dashes.data(), list.length);
}

void forget(gx_pen_t& p) {
  for (const int index : p.groups_used) {
    auto& group = p.groups[static_cast<std::size_t>(index)];
    group.lines.clear();
    group.arcs.clear();
  }
  p.groups_used.clear();
  for (const int color : p.boxes_used) p.boxes[static_cast<std::size_t>(color)].clear();
  p.boxes_used.clear();
}

void send(gx_pen_t& p) {
  for (const int color : p.boxes_used) {
    auto& boxes = p.boxes[static_cast<std::size_t>(color)];
    use_color(p, color);
    XFillRectangles(gx_vext.dpy, gx_vext.win, gx_vext.our_gc, boxes.data(),
                    static_cast<int>(boxes.size()));
  }
  for (const int index : p.groups_used) {
    auto& group = p.groups[static_cast<std::size_t>(index)];
    use_color(p, index / nb_of_dash_lists);
    use_dashes(p, index % nb_of_dash_lists);
    if (!group.lines.empty())
      XDrawSegments(gx_vext.dpy, gx_vext.win, gx_vext.our_gc, group.lines.data(),
                    static_cast<int>(group.lines.size()));
    if (!group.arcs.empty())
      XDrawArcs(gx_vext.dpy, gx_vext.win, gx_vext.our_gc, group.arcs.data(),
                static_cast<int>(group.arcs.size()));
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
  auto& lines = group_of(color, dash_index(style, border)).lines;
  const XSegment segment{line.x1, line.y1, line.x2, line.y2};
  // Tiny text gives many times the same point.
  if (!lines.empty() && segment.x1 == segment.x2 && segment.y1 == segment.y2 &&
      lines.back().x2 == segment.x2 && lines.back().y2 == segment.y2)
    return;
  lines.push_back(segment);
}

void gx_pen_arc(int color, int style, const gx_arc16_t& arc) {
  group_of(color, dash_index(style, false))
      .arcs.push_back({to_short(arc.x), to_short(arc.y), to_size(arc.size), to_size(arc.size),
                       to_short(arc.angle), to_short(arc.extent)});
}

void gx_pen_box(int color, int x, int y, int width, int height) {
  if (width < 1 || height < 1) return;
  auto& p = pen();
  color = sound_color(color);
  auto& boxes = p.boxes[static_cast<std::size_t>(color)];
  if (boxes.empty()) p.boxes_used.push_back(color);
  boxes.push_back({to_short(x), to_short(y), to_size(width), to_size(height)});
}

void gx_pen_flush() {
  auto& p = pen();
  if (gx_vext.dpy != nullptr) send(p);
  forget(p);
}

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
  XClearArea(gx_vext.dpy, gx_vext.win, x, y, static_cast<unsigned>(width),
             static_cast<unsigned>(height), False);
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

std::vector<gx_line16_t> gx_pen_kept_lines(int color, int style) {
  std::vector<gx_line16_t> kept;
  const auto index = static_cast<std::size_t>(sound_color(color) * nb_of_dash_lists + style);
  for (const XSegment& s : pen().groups[index].lines) kept.push_back({s.x1, s.y1, s.x2, s.y2});
  return kept;
}

std::vector<gx_bounds16_t> gx_pen_kept_boxes(int color) {
  std::vector<gx_bounds16_t> kept;
  for (const XRectangle& r : pen().boxes[static_cast<std::size_t>(sound_color(color))])
    kept.push_back({r.x, r.y, static_cast<std::int16_t>(r.x + r.width),
                    static_cast<std::int16_t>(r.y + r.height)});
  return kept;
}

std::vector<gx_arc16_t> gx_pen_kept_arcs(int color, int style) {
  std::vector<gx_arc16_t> kept;
  const auto index = static_cast<std::size_t>(sound_color(color) * nb_of_dash_lists + style);
  for (const XArc& a : pen().groups[index].arcs)
    kept.push_back({a.x, a.y, a.width, a.angle1, a.angle2});
  return kept;
}
