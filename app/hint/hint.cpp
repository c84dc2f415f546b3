#include "app/hint/hint.h"

#include <algorithm>
#include <string>
#include <vector>

#include "app/hint/hint_text.h"
#include "app/sheet/command_viewport.h"
#include "app/state.h"
#include "app/values/waves.h"
#include "gx/db/object_access.h"
#include "gx/display/screen.h"
#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/strokes/stroke_font.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/vext.h"

namespace {
constexpr int near_pixels = 4;      // from a pin or a wire that is meant
constexpr int away = 14, room = 5;  // pixels: from the pointer, around the text
constexpr int kept_as = 1;          // no menu is shown meanwhile
constexpr int white = 7;

gx_bounds16_t box_at(int x, int y, int width, int height) {
  return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
          static_cast<std::int16_t>(x + width), static_cast<std::int16_t>(y + height)};
}

// Beside the pointer, to the right and below where there is room, in the viewport.
gx_bounds16_t place_of(gx_point16_t pointer, int width, int height, const gx_bounds16_t& within) {
  const bool is_right = pointer.x + away + width < within.xmax;
  const bool is_below = pointer.y + away + height < within.ymax;
  const int x = is_right ? pointer.x + away : pointer.x - away - width;
  const int y = is_below ? pointer.y + away : pointer.y - away - height;
  return box_at(std::max<int>(x, within.xmin + 1), std::max<int>(y, within.ymin + 1), width,
                height);
}

bool is_under(const gx_bounds16_t& box, gx_point16_t p) {
  return p.x >= box.xmin && p.x <= box.xmax && p.y >= box.ymin && p.y <= box.ymax;
}

void draw(gx_vpid_t vpid, const gx_bounds16_t& box, const std::vector<std::string>& lines,
          int text) {
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  const int width = box.xmax - box.xmin, height = box.ymax - box.ymin;
  gx_pen_clear(box.xmin, box.ymin, width + 1, height + 1);
  gx_display_rectangle({box.xmin, box.ymin}, {box.xmax, box.ymax}, 0,
                       gx_color_of(gx_role::active_pane, white), 1);
  int y = box.ymin + room + text;
  for (const std::string& line : lines) {
    gx_text(vpid, line, box.xmin + room, y, text, 0, gx_color_of(gx_role::text, white));
    y += 2 * text;
  }
}

// The sheet under the pixel, as long as it is the one in view and nothing is under way there.
std::optional<kv_view_t> sheet_under(gx_point16_t pixel, gx_pointreal_t& point) {
  if (!gx_vext.display_on || gx_vext.menu_drawn || kv_pext.mark_rect_done) return std::nullopt;
  const auto& hands = kv_pext.hands;
  if (hands.panned != 0 || hands.button != 0) return std::nullopt;
  const gx_vpid_t vpid = gx_viewport_pixel_to_obj2d(pixel, point);
  const auto view = vpid == gx_vext.viewport_edit                               ? kv_edit_view()
                    : vpid == gx_vext.viewport_context && !kv_waves_are_shown() ? kv_context_view()
                                                                                : kv_view_t{};
  if (!view.has_sheet() || view.file_index != kv_pext.file_id_cur ||
      gx_viewport_rec(vpid).file_index != view.file_index)
    return std::nullopt;
  return view;
}
}  // namespace

void kv_show_hints(bool on) {
  kv_hide_hint();
  kv_pext.hints_on = on;
}

void kv_show_hint(gx_point16_t pixel) {
  kv_hide_hint();
  if (!kv_pext.hints_on || gx_vext.screen == nullptr) return;
  gx_pointreal_t point;
  const auto view = sheet_under(pixel, point);
  if (!view) return;
  const std::int32_t reach = near_pixels * gx_viewport_rec(view->vpid).object_scale;
  std::vector<std::string> lines = kv_hint_lines(view->file(), point, reach);
  if (lines.empty()) return;
  const int text = std::clamp(gx_vext.bitmap_size.y / 110, 7, 24);
  const int advance = text * gx_glyph_advance / gx_glyph_height;
  const gx_bounds16_t& within = gx_viewport_rec(view->vpid).clip_wind;
  const auto most = std::clamp<std::size_t>(
      static_cast<std::size_t>(std::max((within.xmax - within.xmin) / 2 / advance - 4, 0)), 8, 58);
  std::size_t columns = 0;
  for (std::string& line : lines) {
    // Of a long path the end is what matters.
    if (line.size() > most) line = "..." + line.substr(line.size() - most + 3);
    columns = std::max(columns, line.size());
  }
  const int width = static_cast<int>(columns) * advance + 2 * room;
  const int height = (2 * static_cast<int>(lines.size()) - 1) * text + 2 * room;
  const gx_bounds16_t box = place_of(pixel, width, height, within);
  const bool fits = box.xmax < within.xmax && box.ymax < within.ymax && !is_under(box, pixel);
  if (!fits) return;
  gx_pen_flush();
  gx_pen_keep_area(kept_as, box.xmin, box.ymin, width + 1, height + 1);
  draw(view->vpid, box, lines, text);
  gx_pen_flush();
  kv_pext.hint_box = box;
  kv_pext.is_hint_shown = true;
}

void kv_hide_hint() {
  if (!kv_pext.is_hint_shown) return;
  kv_pext.is_hint_shown = false;
  const gx_bounds16_t& box = kv_pext.hint_box;
  gx_pen_flush();
  gx_pen_put_area_back(kept_as, box.xmin, box.ymin, box.xmax - box.xmin + 1,
                       box.ymax - box.ymin + 1);
}

void kv_forget_hint() { kv_pext.is_hint_shown = false; }
