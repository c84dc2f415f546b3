#include "app/sheet/panes.h"

#include <algorithm>

#include "app/sheet/views.h"
#include "gx/display/list_viewport.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/text/messages/message_list.h"
#include "gx/vext.h"

namespace {
constexpr std::int32_t window = 100000;  // the unit of bounds
constexpr int least_columns = 100;
constexpr std::int32_t least_sheet = 45000;  // where the list may begin

kv_panes_t panes;

void place(gx_vpid_t vpid, const gx_boundsreal_t& bounds) {
  if (gx_viewport_ok(vpid)) gx_viewport_rec(vpid).bounds_vp = bounds;
}

bool is_plain() { return panes.lines == kv_least_lines && panes.has_context; }

// The letters and lines that fit into a list so wide; the height of the list, in pixels.
int fit_letters(int width) {
  auto& v = gx_vext;
  const int room = std::max(width - 2 * v.listb_x0, 1);
  v.list_height = static_cast<std::int16_t>(
      std::clamp<int>((room / least_columns * 5 + 3) / 6, 5, std::max<int>(v.cmd_height, 5)));
  gx_set_list_width(least_columns);  // no plain list, which has other letters
  gx_set_list_width(std::max(room / gx_list_step(), 61));
  v.list_step = static_cast<std::int16_t>(v.list_height * 3 / 2 + 3);
  v.listb_y0 = static_cast<std::int16_t>(v.list_height / 2 + 1);
  const int most = static_cast<int>((95000 - least_sheet) * std::int64_t{v.bitmap_size.y} / window);
  const int lines = std::clamp((most - 2 * v.listb_y0) / v.list_step, 1, panes.lines);
  v.nb_line_in_listviewp = static_cast<std::int16_t>(lines);
  return lines * v.list_step + 2 * v.listb_y0;
}
}  // namespace

const kv_panes_t& kv_panes() { return panes; }

void kv_set_panes(const kv_panes_t& wanted) {
  panes = wanted;
  panes.lines = std::clamp(panes.lines, kv_least_lines, kv_most_lines);
  kv_place_panes();
  gx_list_follow();
}

void kv_place_panes() {
  auto& v = gx_vext;
  const auto plain = set_viewports();
  gx_boundsreal_t line = plain[1].bounds, list = plain[2].bounds, context = plain[3].bounds;
  std::int32_t sheet_end = plain[0].bounds.ymax;
  if (is_plain()) {
    if (gx_list_is_plain()) return;
    gx_set_list_width(gx_max_text_length);
    v.list_height = v.cmd_height;
    v.list_step = static_cast<std::int16_t>(10 * (v.bitmap_size.y + 1) / 384);
    v.listb_y0 = static_cast<std::int16_t>(v.listb_yi * v.bitmap_size.y / 768);
    v.nb_line_in_listviewp = kv_least_lines;
  } else {
    if (!panes.has_context) {
      list.xmax = line.xmax = context.xmax;
      context.xmin += window;
      context.xmax += window;
    }
    const int width =
        static_cast<int>((list.xmax - list.xmin) * std::int64_t{v.bitmap_size.x} / window);
    const int height = fit_letters(width);
    list.ymin = list.ymax - static_cast<std::int32_t>(height * std::int64_t{window} /
                                                      std::max<int>(v.bitmap_size.y, 1));
    context.ymin = list.ymin;
    sheet_end -= plain[2].bounds.ymin - list.ymin;
  }
  // The sheet, and what is beside it.
  for (int vpid = 1; vpid <= v.viewport_id_max; ++vpid)
    if (vpid != v.viewport_cmd && vpid != v.viewport_list && vpid != v.viewport_context)
      gx_viewport_rec(vpid).bounds_vp.ymax = sheet_end;
  place(v.viewport_cmd, line);
  place(v.viewport_list, list);
  place(v.viewport_context, context);
  gx_viewports_update();
}
