// The menu on the screen: each level is painted over the picture, whose pixels are kept in the
// level's pixmap and copied back when the level closes. One code path serves the four levels.
#include "gx/display/input/menu_draw.h"

#include <algorithm>
#include <array>

#include "gx/display/input/cursor.h"
#include "gx/display/input/menu_state.h"
#include "gx/display/input/menu_tree.h"
#include "gx/display/screen.h"
#include "gx/display/screen_state.h"
#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/display/window.h"
#include "gx/text/at.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {

constexpr int red = 1;
constexpr std::size_t max_shown_length = 199;

std::int16_t pixel(int v) { return static_cast<std::int16_t>(std::clamp(v, -32768, 32767)); }

int line_pitch() {
  const int h = gx_vext.cmd_height;
  return 2 * h + 2 * h / 4 + 1;
}

bool is_line(int line) { return line >= 1 && line <= gx_max_menu_lines; }

// --- what a level shows

using lines_t = std::array<gx_menu_rec_t, gx_max_menu_lines>;

// The lines of a level, below the lines chosen in the levels above it.
lines_t level_lines(int level) {
  std::array<int, gx_max_menu_levels> index = gx_vext.menuline_lev;
  const auto depth = static_cast<std::size_t>(level);
  lines_t lines;
  for (int line = 1; line <= gx_max_menu_lines; ++line) {
    index[depth - 1] = line;
    gx_at(lines, line - 1) = gx_get_menu_rec(std::span(index).first(depth));
  }
  return lines;
}

std::string_view shown_text(const gx_menu_rec_t& record) {
  const std::string_view text = gx_view(record.str);
  return text.size() <= max_shown_length ? text : std::string_view{};
}

// --- where it shows it

struct level_place_t {
  int x = 0, y = 0;                       // top left of the frame
  int width = 0, height = 0;              // of the frame
  int saved_width = 0, saved_height = 0;  // of the area kept, from (x - 1, y - 1)
};

level_place_t level_place(int x, int y, const lines_t& lines) {
  std::size_t longest = 0;
  for (const gx_menu_rec_t& line : lines) longest = std::max(longest, shown_text(line).size());
  const int width = (static_cast<int>(longest) + 2) * gx_vext.cmd_step;
  const int pitch = line_pitch();
  return {x, y, width, gx_max_menu_lines * pitch, width + gx_vext.cmd_step + 2, 13 * pitch + 2};
}

std::size_t entry(int level) { return static_cast<std::size_t>(level - 1); }

void make_current(int level) {
  gx_vext.menu_extbounds = gx_vext.menu_lev_extbounds[entry(level)];
  gx_vext.menu_boxbounds = gx_vext.menu_lev_boxbounds[entry(level)];
}

void record_bounds(int level, const level_place_t& at) {
  const gx_bounds16_t ext = {pixel(at.x - 1), pixel(at.y - 1), pixel(at.x + at.width + 1),
                             pixel(at.y + at.height + 1)};
  gx_vext.menu_lev_extbounds[entry(level)] = ext;
  gx_vext.menu_lev_boxbounds[entry(level)] = ext;
  gx_vext.menu_lev_boxbounds[entry(level)].xmin = pixel(at.x + 2 * at.width / 3);
  make_current(level);
  if (level == gx_max_menu_levels) return;
  gx_vext.menu_lev_extbounds[entry(level + 1)].xmin = ext.xmax;
  gx_vext.menu_lev_extbounds[entry(level + 1)].ymin = ext.ymin;
}

// --- the pixels under a level

void clip_to_window() { gx_pen_clip(0, 0, gx_vext.bitmap_size.x + 1, gx_vext.bitmap_size.y + 1); }

void save_picture(int level, const level_place_t& at) {
  gx_pen_keep_area(level, at.x - 1, at.y - 1, at.saved_width, at.saved_height);
}

void copy_picture_back(int level) {
  const gx_bounds16_t& ext = gx_vext.menu_lev_extbounds[entry(level)];
  const int width = ext.xmax - ext.xmin + gx_vext.cmd_step;
  const int height = 13 * line_pitch() + 2;
  clip_to_window();
  gx_pen_put_area_back(level, ext.xmin, ext.ymin, std::max(width, 1), std::max(height, 1));
}

// --- painting

void draw_bounds(const gx_bounds16_t& box, int color) {
  const gx_line16_t sides[] = {{box.xmin, box.ymin, box.xmax, box.ymin},
                               {box.xmax, box.ymin, box.xmax, box.ymax},
                               {box.xmax, box.ymax, box.xmin, box.ymax},
                               {box.xmin, box.ymax, box.xmin, box.ymin}};
  for (const gx_line16_t& side : sides) gx_pen_line(color, 0, side);
}

void draw_highlight(int level, int line, int color) {
  const gx_bounds16_t& ext = gx_vext.menu_lev_extbounds[entry(level)];
  const int top = ext.ymin + 2 + (line - 1) * line_pitch();
  draw_bounds({pixel(ext.xmin + 2), pixel(top), pixel(ext.xmax - 2), pixel(top + line_pitch() - 4)},
              color);
}

void paint_level(gx_vpid_t vpid, int level, int x, int y) {
  const lines_t lines = level_lines(level);
  const level_place_t at = level_place(x, y, lines);
  gx_viewport_select(vpid);
  gx_vext.pixel_pos = {pixel(x + at.width / 2), pixel(y + at.height / 2)};
  save_picture(level, at);
  record_bounds(level, at);
  gx_pen_clear(x - 1, y - 1, at.saved_width, at.saved_height);
  clip_to_window();
  for (int line = 1; line <= gx_max_menu_lines; ++line) {
    const std::string_view text = shown_text(lines[entry(line)]);
    if (text.empty()) continue;
    gx_hortext(vpid, text, 1, x + 3 * gx_vext.cmd_step / 4, y + 7 + (line - 1) * line_pitch(),
               false, gx_white);
  }
  draw_bounds({pixel(x), pixel(y), pixel(x + at.width), pixel(y + at.height)}, gx_white);
  gx_pen_flush();
  gx_vext.menu_drawn = true;
  gx_vext.menu_level = level;
  std::fill(gx_vext.prelinsel_lev.begin() + (level - 1), gx_vext.prelinsel_lev.end(), 0);
}

// The level waits for the pointer, which is outside yet.
void await_pointer(int level, gx_point16_t outside) {
  gx_vext.menu_entered[entry(level)] = false;
  gx_vext.menu_outside = outside;
}

// Into the left two thirds of a level, where moving chooses a line.
void move_pointer_into(int level, int y) {
  const gx_bounds16_t& ext = gx_vext.menu_lev_extbounds[entry(level)];
  gx_cursor_set_position({pixel(ext.xmin + 1 + (ext.xmax - ext.xmin - 2) / 3), pixel(y)});
}

int middle_of_level(int level) {
  const gx_bounds16_t& ext = gx_vext.menu_lev_extbounds[entry(level)];
  return (ext.ymin + ext.ymax) / 2;
}

int middle_of_line(int level, int line) {
  return gx_vext.menu_lev_extbounds[entry(level)].ymin + (line - 1) * line_pitch() +
         line_pitch() / 2;
}

// --- checks

bool can_draw(gx_vpid_t vpid, int level) {
  if (!gx_vext.init_done) gx_set_status(gx_code::init_not_done);
  if (gx_vext.screen == nullptr) return false;
  if (!gx_viewport_ok(vpid)) gx_set_status(gx_code::viewport_id_invalid);
  if (gx_viewport_rec(vpid).vp_blocked) {
    gx_debug(" gx_draw_menu%d : view port blocked : %d\n", level, vpid);
    gx_set_status(gx_code::viewport_blocked);
  }
  if (!gx_vext.menu_drawn || gx_vext.menu_level != level) return true;
  gx_debug(" gx_draw_menu%d : menu already drawn \n", level);
  return false;
}

// Stops unless the level is the deepest one shown.
void check_shown(const char* operation, gx_vpid_t vpid, int level) {
  if (gx_vext.menu_drawn && gx_vext.menu_level == level && gx_viewport_ok(vpid)) return;
  gx_debug(" %s%d : menu%d invalid \n", operation, level, level);
  gx_set_status(gx_code::viewport_id_invalid);
}

}  // namespace

void gx_draw_menu1(gx_vpid_t vpid, gx_point16_t position) {
  if (!can_draw(vpid, 1)) return;
  gx_close_menus(vpid);
  await_pointer(1, gx_vext.pixel_pos);
  const gx_point16_t corner = gx_viewport_inq_pixel_min(vpid);
  paint_level(vpid, 1, corner.x + position.x, corner.y + position.y);
  move_pointer_into(1, middle_of_level(1));
  gx_sync();
}

void gx_draw_menu(gx_vpid_t vpid, int level) {
  if (level < 2 || level > gx_max_menu_levels) gx_set_status(gx_code::invalid_level);
  if (!can_draw(vpid, level)) return;
  await_pointer(level, gx_vext.pixel_pos);
  const gx_bounds16_t& ext = gx_vext.menu_lev_extbounds[entry(level)];
  paint_level(vpid, level, ext.xmin, ext.ymin);
  move_pointer_into(level, middle_of_level(level));
  gx_sync();
}

void gx_select_line_menu(gx_vpid_t vpid, int level) {
  if (gx_vext.screen == nullptr) return;
  check_shown("gx_select_line_menu", vpid, level);
  const int line = gx_vext.menuline_lev[entry(level)];
  int& highlighted = gx_vext.prelinsel_lev[entry(level)];
  if (line == highlighted || !is_line(line)) return;
  clip_to_window();
  if (is_line(highlighted)) draw_highlight(level, highlighted, gx_vext.viewport_back_color);
  gx_pen_flush();
  draw_highlight(level, line, red);
  gx_pen_flush();
  highlighted = line;
  gx_cursor_set_position({gx_vext.pixel_pos.x, pixel(middle_of_line(level, line))});
}

void gx_restore_menu(gx_vpid_t vpid, int level) {
  if (gx_vext.screen == nullptr) return;
  check_shown("gx_restore_menu", vpid, level);
  if (!gx_vext.menu_hidden) copy_picture_back(level);
  const int parent = level - 1;
  gx_vext.menu_level = parent;
  gx_vext.menu_drawn = parent > 0;
  if (parent == 0) gx_vext.menu_hidden = false;
  if (parent == 0) {
    move_pointer_into(1, middle_of_level(1));
  } else {
    make_current(parent);
    const int line = gx_vext.menuline_lev[entry(parent)];
    move_pointer_into(parent,
                      is_line(line) ? middle_of_line(parent, line) : middle_of_level(parent));
  }
  gx_viewport_select(vpid);
}

void gx_close_menus(gx_vpid_t vpid) {
  while (gx_vext.menu_drawn) gx_restore_menu(vpid, gx_vext.menu_level);
}

void gx_hide_menus() {
  if (gx_vext.screen == nullptr || !gx_vext.menu_drawn || gx_vext.menu_hidden) return;
  for (int level = gx_vext.menu_level; level >= 1; --level) copy_picture_back(level);
  gx_vext.menu_hidden = true;
}

void gx_redraw_menus(gx_vpid_t vpid) {
  if (gx_vext.screen == nullptr || !gx_vext.menu_hidden || !gx_viewport_ok(vpid)) return;
  gx_vext.menu_hidden = false;
  const gx_point16_t pointer = gx_vext.pixel_pos;
  const int deepest = gx_vext.menu_level;
  int x = gx_vext.menu_lev_extbounds[0].xmin + 1;
  int y = gx_vext.menu_lev_extbounds[0].ymin + 1;
  for (int level = 1; level <= deepest; ++level) {
    paint_level(vpid, level, x, y);
    const int line = gx_vext.menuline_lev[entry(level)];
    if (is_line(line)) {
      draw_highlight(level, line, red);
      gx_vext.prelinsel_lev[entry(level)] = line;
    }
    x = gx_vext.menu_extbounds.xmax;
    y = gx_vext.menu_extbounds.ymin;
  }
  gx_pen_flush();
  gx_vext.pixel_pos = pointer;
  gx_viewport_select(vpid);
}

int gx_menu_line_at(int level, int y) {
  const int top = gx_vext.menu_lev_extbounds[entry(level)].ymin;
  return std::clamp((y - top) / line_pitch() + 1, 1, gx_max_menu_lines);
}
