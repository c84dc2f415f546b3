#include "gx/display/pen.h"

#include <algorithm>
#include <utility>

#include "gx/display/screen.h"
#include "gx/text/front.h"
#include "gx/text/status.h"
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

struct gx_pen_t {
  int depth = 0;  // of nested batches
  gx_stroke_layers_t strokes;

  // What the screen was told last.
  bool is_exclusive_or = false;
  bool clip_known = false;
  gx_box16_t clip;
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

void set_pixel_op(bool exclusive_or) {
  auto& p = pen();
  gx_pen_flush();
  if (std::exchange(p.is_exclusive_or, exclusive_or) == exclusive_or) return;
  if (gx_vext.screen != nullptr) gx_vext.screen->set_exclusive_or(exclusive_or);
}
}  // namespace

gx_batch_t::gx_batch_t() { ++pen().depth; }

gx_batch_t::~gx_batch_t() {
  if (--pen().depth > 0) return;
  gx_pen_flush();
  if (gx_vext.screen != nullptr) gx_vext.screen->flush();
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
  if (gx_vext.screen != nullptr)
    p.strokes.visit([](const gx_stroke_group_t& group) { gx_vext.screen->draw(group); });
  p.strokes.forget();
}

const gx_stroke_layers_t& gx_pen_kept() { return pen().strokes; }

void gx_pen_clip(int x, int y, int width, int height) {
  auto& p = pen();
  const gx_box16_t clip{to_short(x), to_short(y), to_size(width), to_size(height)};
  if (p.clip_known && p.clip == clip) return;
  gx_pen_flush();
  p.clip_known = true;
  p.clip = clip;
  if (gx_vext.screen != nullptr) gx_vext.screen->clip(clip);
}

void gx_pen_clear(int x, int y, int width, int height) {
  gx_pen_flush();
  if (gx_vext.screen == nullptr || width < 1 || height < 1) return;
  gx_vext.screen->clear(x, y, width, height);
}

void gx_pixel_op_replace() { set_pixel_op(false); }

void gx_pixel_op_xor() { set_pixel_op(true); }
