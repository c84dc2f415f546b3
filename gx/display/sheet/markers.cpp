// The marks of places of the design: base point, origins, selected vertices, loose pins.
#include "gx/display/sheet/markers.h"

#include <algorithm>
#include <array>
#include <span>

#include "gx/display/screen_state.h"
#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/display/viewports.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {
// A marker is a closed polyline of offsets, in steps; a step is some pixels by viewport.
struct step_t {
  int x, y;
};
constexpr std::array<step_t, 6> half_cross{{{0, 0}, {-1, 2}, {1, 2}, {-1, -2}, {1, -2}, {0, 0}}};
constexpr std::array<step_t, 11> cross{{{0, 0},
                                        {-2, 1},
                                        {-1, 2},
                                        {1, -2},
                                        {2, -1},
                                        {0, 0},
                                        {-2, -1},
                                        {-1, -2},
                                        {1, 2},
                                        {2, 1},
                                        {0, 0}}};
constexpr std::array<step_t, 6> selected_vertex{
    {{0, 0}, {-2, -1}, {-2, 1}, {2, -1}, {2, 1}, {0, 0}}};
constexpr std::array<step_t, 5> diamond{{{-1, 0}, {0, 1}, {1, 0}, {0, -1}, {-1, 0}}};

constexpr int green = 2;

// Pixels of one step in the edit and in the context viewport, and the room kept to the edge.
struct steps_t {
  int edit, context;
  int of(gx_vpid_t vpid) const { return vpid == gx_vext.viewport_edit ? edit : context; }
};
constexpr steps_t mark_step{4, 2}, mark_margin{8, 4}, pin_step{6, 3};

// Where a marker may be drawn: its pixel; false when it lies outside or too near to the edge. Only
// the selected viewport is drawn in.
bool place_marker(gx_vpid_t vpid, gx_pointreal_t point, int margin, gx_point16_t& pixel) {
  if (!gx_viewport_ok(vpid) || vpid != gx_vext.viewport_current) {
    gx_debug(" marker : view port invalid : %d  file_index : %d   at : %d  %d\n", vpid,
             gx_viewport_ok(vpid) ? gx_viewport_rec(vpid).file_index : 0, point.x, point.y);
    gx_set_status(gx_code::viewport_id_invalid);
  }
  if (vpid != gx_vext.viewport_edit && vpid != gx_vext.viewport_context) return false;
  const auto& vp = gx_viewport_rec(vpid);
  if (vp.vp_blocked || vp.file_index < 1) return false;
  pixel = gx_viewport_pt_real_to_pixel(vpid, point);
  const gx_bounds16_t& v = vp.pixel_bounds;
  const int room = margin + 1;
  return pixel.x > v.xmin + room && pixel.x < v.xmax - room && pixel.y > v.ymin + room &&
         pixel.y < v.ymax - room;
}

void draw_marker(std::span<const step_t> steps, gx_point16_t at, int step, int color) {
  const auto point = [&](const step_t& s) -> gx_point16_t {
    return {static_cast<std::int16_t>(at.x + s.x * step),
            static_cast<std::int16_t>(at.y + s.y * step)};
  };
  for (std::size_t i = 1; i < steps.size(); ++i) {
    const gx_point16_t a = point(steps[i - 1]), b = point(steps[i]);
    gx_pen_line(color, 0, {a.x, a.y, b.x, b.y});
  }
}

void draw_marker(gx_vpid_t vpid, gx_pointreal_t p, std::span<const step_t> steps, int color) {
  if (!gx_drawing_possible()) return;
  gx_point16_t pixel;
  if (!place_marker(vpid, p, mark_margin.of(vpid), pixel)) return;
  const gx_batch_t batch;
  draw_marker(steps, pixel, mark_step.of(vpid), color);
}
}  // namespace

void gx_display_cross(gx_vpid_t vpid, gx_pointreal_t p) { draw_marker(vpid, p, cross, gx_white); }

void gx_display_half_cross(gx_vpid_t vpid, gx_pointreal_t p) {
  draw_marker(vpid, p, half_cross, gx_white);
}

void gx_display_selvertex(gx_vpid_t vpid, gx_pointreal_t p) {
  draw_marker(vpid, p, selected_vertex, gx_color_of(gx_role::selection, green));
}

void gx_display_pin_nocon(gx_vpid_t vpid, gx_pointreal_t p) {
  if (!gx_drawing_possible()) return;
  const int size = pin_step.of(vpid);
  gx_point16_t pixel;
  if (!place_marker(vpid, p, size, pixel)) return;
  const gx_batch_t batch;
  draw_marker(diamond, pixel, size, gx_white);
  draw_marker(diamond, pixel, size + 1, gx_white);
}

void gx_display_link(gx_vpid_t vpid, gx_pointreal_t from, gx_pointreal_t to) {
  if (!gx_drawing_possible() || !gx_is_picture_viewport(vpid)) return;
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  gx_draw_line(vpid, gx_white, 1, gx_viewport_pt_real_to_pixel(vpid, from),
               gx_viewport_pt_real_to_pixel(vpid, to));
}

namespace {
void display_mark(const gx_kept_mark_t& mark) {
  if (mark.is_link)
    gx_display_link(mark.vpid, mark.from, mark.to);
  else
    gx_display_cross(mark.vpid, mark.from);
}

void keep(const gx_kept_mark_t& mark) {
  if (!gx_drawing_possible() || !gx_viewport_ok(mark.vpid)) return;
  const auto& marks = gx_vext.kept_marks;
  if (std::find(marks.begin(), marks.end(), mark) == marks.end())
    gx_vext.kept_marks.push_back(mark);
  gx_viewport_select(mark.vpid);
  display_mark(mark);
}
}  // namespace

void gx_keep_cross(gx_vpid_t vpid, gx_pointreal_t p) { keep({vpid, false, p, p}); }

void gx_keep_link(gx_vpid_t vpid, gx_pointreal_t from, gx_pointreal_t to) {
  keep({vpid, true, from, to});
}

void gx_display_kept_marks(gx_vpid_t vpid) {
  for (const gx_kept_mark_t& mark : gx_vext.kept_marks)
    if (mark.vpid == vpid) display_mark(mark);
}

void gx_forget_marks(gx_vpid_t vpid) {
  std::erase_if(gx_vext.kept_marks, [&](const gx_kept_mark_t& mark) { return mark.vpid == vpid; });
}
