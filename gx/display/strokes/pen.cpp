#include "gx/display/strokes/pen.h"

#include <algorithm>
#include <utility>

#include "gx/display/screen.h"
#include "gx/display/strokes/dashes.h"
#include "gx/display/strokes/pen_state.h"
#include "gx/display/strokes/smooth.h"
#include "gx/text/messages/front.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {
int sound_color(int color) {
  return color >= 0 && color < gx_nb_of_colors ? color : gx_nb_of_file_colors - 1;
}

int dash_index(int style, bool border) {
  if (style < 0 || style >= gx_nb_of_styles) gx_set_status(gx_code::invalid_style);
  return border ? style + gx_nb_of_styles : style;
}

short to_short(int v) { return static_cast<short>(std::clamp(v, -32768, 32767)); }

unsigned short to_size(int v) { return static_cast<unsigned short>(std::clamp(v, 0, 65535)); }
}  // namespace

gx_pen_t& gx_pen() {
  if (!gx_vext.pen) gx_vext.pen = std::make_shared<gx_pen_t>();
  return *gx_vext.pen;
}

namespace {
// Sends what has changed of a smooth picture.
void send(gx_canvas_t& canvas) {
  if (gx_pen().held > 0) return;
  canvas.show_changes([&](const gx_pixel_box_t& box) { gx_vext.screen->put_pixels(canvas, box); });
}

// Where the next stroke goes.
gx_stroke_layers_t& strokes() {
  auto& kept = gx_pen().strokes;
  if (kept.is_deep()) gx_pen_flush();
  if (kept.empty()) kept.cover(gx_vext.bitmap_size.x + 1, gx_vext.bitmap_size.y + 1);
  return kept;
}

void set_pixel_op(bool exclusive_or) {
  auto& p = gx_pen();
  gx_pen_flush();
  if (std::exchange(p.is_exclusive_or, exclusive_or) == exclusive_or) return;
  if (gx_canvas_t* const canvas = gx_canvas()) canvas->set_exclusive_or(exclusive_or);
  if (gx_vext.screen != nullptr) gx_vext.screen->set_exclusive_or(exclusive_or);
}
}  // namespace

gx_batch_t::gx_batch_t() { ++gx_pen().depth; }

gx_batch_t::~gx_batch_t() {
  if (--gx_pen().depth > 0) return;
  gx_pen_flush();
  if (gx_vext.screen != nullptr) gx_vext.screen->flush();
}

void gx_pen_line(int color, int style, gx_line16_t line, bool border) {
  if (!gx_front().shows_pictures) return;
  const int dashes = dash_index(style, border);
  if (gx_canvas_t* const canvas = gx_canvas())
    return canvas->line(gx_pixel_of(sound_color(color)), gx_dash_list(dashes), line,
                        border ? 1 : gx_line_width());
  strokes().add(sound_color(color), dashes, line);
}

void gx_pen_arc(int color, int style, const gx_arc16_t& arc) {
  if (!gx_front().shows_pictures) return;
  const int dashes = dash_index(style, false);
  if (gx_canvas_t* const canvas = gx_canvas())
    return canvas->arc(gx_pixel_of(sound_color(color)), gx_dash_list(dashes), arc, gx_line_width());
  strokes().add(sound_color(color), dashes, arc);
}

void gx_pen_box(int color, int x, int y, int width, int height) {
  if (!gx_front().shows_pictures || width < 1 || height < 1) return;
  if (gx_canvas_t* const canvas = gx_canvas())
    return canvas->box(gx_pixel_of(sound_color(color)), {x, y, width, height});
  strokes().add(sound_color(color), {to_short(x), to_short(y), to_size(width), to_size(height)});
}

void gx_pen_flush() {
  auto& p = gx_pen();
  if (gx_canvas_t* const canvas = gx_canvas()) {
    if (p.depth == 0) send(*canvas);
    return;
  }
  if (p.strokes.empty()) return;
  if (gx_vext.screen != nullptr)
    p.strokes.visit([](const gx_stroke_group_t& group) { gx_vext.screen->draw(group); });
  p.strokes.forget();
}

const gx_stroke_layers_t& gx_pen_kept() { return gx_pen().strokes; }

void gx_pen_clip(int x, int y, int width, int height) {
  auto& p = gx_pen();
  const gx_box16_t clip{to_short(x), to_short(y), to_size(width), to_size(height)};
  if (gx_canvas_t* const canvas = gx_canvas()) {
    p.clip_known = false;
    return canvas->clip(clip);
  }
  if (p.clip_known && p.clip == clip) return;
  gx_pen_flush();
  p.clip_known = true;
  p.clip = clip;
  if (gx_vext.screen != nullptr) gx_vext.screen->clip(clip);
}

void gx_pen_clear(int x, int y, int width, int height) {
  if (gx_canvas_t* const canvas = gx_canvas()) return canvas->clear({x, y, width, height});
  gx_pen_flush();
  if (gx_vext.screen == nullptr || width < 1 || height < 1) return;
  gx_vext.screen->clear(x, y, width, height);
}

bool gx_pen_hold() {
  if (gx_canvas() == nullptr) return false;
  ++gx_pen().held;
  return true;
}

void gx_pen_release() {
  auto& p = gx_pen();
  if (--p.held > 0 || p.depth > 0) return;
  gx_pen_flush();
  if (gx_vext.screen != nullptr) gx_vext.screen->flush();
}

void gx_pen_keep_area(int level, int x, int y, int width, int height) {
  if (const gx_canvas_t* const canvas = gx_canvas()) {
    const gx_pixel_box_t box{x, y, width, height};
    gx_pen().kept_areas[level] = {box, canvas->copy(box)};
    return;
  }
  gx_pen_flush();
  gx_vext.screen->keep_area(level, x, y, width, height);
}

void gx_pen_put_area_back(int level, int x, int y, int width, int height) {
  if (gx_canvas_t* const canvas = gx_canvas()) {
    const auto kept = gx_pen().kept_areas.find(level);
    if (kept == gx_pen().kept_areas.end()) return;
    canvas->put(kept->second.box, kept->second.pixels);
    return gx_pen_flush();
  }
  gx_pen_flush();
  gx_vext.screen->put_area_back(level, x, y, width, height);
}

void gx_pixel_op_replace() { set_pixel_op(false); }

void gx_pixel_op_xor() { set_pixel_op(true); }
