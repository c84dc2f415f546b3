#include "app/values/waves.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "app/language/interpreter.h"
#include "app/sheet/views.h"
#include "app/state.h"
#include "app/values/asked.h"
#include "app/values/shown_values.h"
#include "app/values/waves_state.h"
#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/display/strokes/stroke_font.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/vext.h"
#include "results/engineering.h"

namespace {

constexpr std::size_t most_waves = 16;
constexpr int margin = 4, wave_text_height = 7;  // pixels
constexpr int wave_advance = wave_text_height * gx_glyph_advance / gx_glyph_height;
constexpr int wave_line_step = wave_text_height + 5;
constexpr int white = 7, gray_style = 1;
constexpr std::array<int, 5> classic_colors{2, 5, 4, 6, 1};
constexpr std::uint32_t shift = 1, control = 4;

// The scale across the viewport, as logarithms where it is a frequency.
struct axis_t {
  double from, to;
  int left, right;  // pixels
  bool is_log;

  double position(double x) const { return is_log ? std::log(x) : x; }
  double x_at(int pixel) const {
    const double part = static_cast<double>(pixel - left) / std::max(right - left, 1);
    const double at = position(from) + part * (position(to) - position(from));
    return std::clamp(is_log ? std::exp(at) : at, std::min(from, to), std::max(from, to));
  }
  int pixel_at(double x) const {
    const double part = (position(x) - position(from)) / (position(to) - position(from));
    return left + static_cast<int>(std::lround(std::clamp(part, -1.0, 2.0) * (right - left)));
  }
};

axis_t axis_of(const kv_waves_t& waves, const kv_results_t& results) {
  const gx_bounds16_t& box = gx_viewport_rec(gx_vext.viewport_context).pixel_bounds;
  return {waves.from, waves.to, box.xmin + margin, box.xmax - margin,
          rs_is_frequency(results.plot().header) && results.least_x() > 0};
}

// Reads the plot anew when the results are others than those that were read.
bool make_overview(kv_waves_t& waves, const kv_results_t& results) {
  if (waves.of_results == results.number) return !waves.names.empty();
  const auto design = kv_design_of(results);
  std::vector<std::uint32_t> variables;
  waves.names.clear();
  waves.of_results = 0;
  for (const auto& path : waves.paths) {
    const std::string key = kv_path_key(path);
    for (const auto object : design.paths.find({&key, 1}, SIZE_MAX)) {
      if (object.what != kv_named::net) continue;
      const kv_variable_t* const variable = results.matches.of_net(object.index);
      if (variable == nullptr || *variable == kv_ground || variables.size() == most_waves) continue;
      variables.push_back(*variable);
      waves.names.push_back(path);
    }
  }
  if (!waves.overview.make(results.file, results.plot(), variables, kv_stop_asked)) return false;
  waves.of_results = results.number;
  const bool is_inside =
      waves.from < waves.to && waves.from >= results.least_x() && waves.to <= results.greatest_x();
  if (!is_inside) {
    waves.from = results.least_x();
    waves.to = results.greatest_x();
  }
  return !waves.names.empty();
}

// Its own on the sheet where it is highlighted, else one after the other.
int wave_color(const std::string& path, std::size_t number) {
  const auto& marked = kv_pext.highlighted;
  const auto at = std::ranges::find(marked, path, &kv_highlighted_t::path);
  if (gx_theme().has_roles && at != marked.end()) return gx_highlight_color(at->color);
  const auto role =
      static_cast<int>(gx_role::highlight) + static_cast<int>(number) % gx_nb_of_highlights;
  return gx_color_of(static_cast<gx_role>(role), classic_colors[number % classic_colors.size()]);
}

struct lane_t {
  int top, bottom;  // pixels, of the curve
};

void draw_text(std::string_view text, int x, int y, int color) {
  gx_text(gx_vext.viewport_context, text, x, y + wave_text_height, wave_text_height, 0, color);
}

gx_point16_t point(int x, int y) {
  return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y)};
}

// Its name, the greatest and the least value, and the curve between them.
void draw_wave(const std::string& name, const rs_range_t& whole,
               const std::vector<rs_range_t>& columns, const axis_t& axis, lane_t lane, int color) {
  const std::string values = rs_engineering(whole.low, 4) + " .. " + rs_engineering(whole.high, 4);
  const auto room = static_cast<std::size_t>(std::max((axis.right - axis.left) / wave_advance, 1));
  draw_text((name + "  " + values).substr(0, room), axis.left, lane.top - wave_line_step, color);
  const double size = whole.high > whole.low ? whole.high - whole.low : 1;
  const auto y_of = [&](double value) {
    const double part = std::clamp((value - whole.low) / size, 0.0, 1.0);
    return lane.bottom - static_cast<int>(std::lround(part * (lane.bottom - lane.top)));
  };
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].is_empty()) continue;
    const int x = axis.left + static_cast<int>(i);
    const int high = y_of(columns[i].high), low = y_of(columns[i].low);
    // A flat part is a line to the next column: a point alone is not drawn.
    gx_draw_line(gx_vext.viewport_context, color, 0, point(x, high),
                 high == low ? point(x + 1, low) : point(x, low));
  }
}

void draw_waves(gx_vpid_t vpid) {
  std::string fault;
  const kv_results_t* const results = kv_results_now(fault);
  if (!kv_pext.waves || results == nullptr || !gx_is_seen()) return;
  kv_waves_t& waves = *kv_pext.waves;
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  const gx_bounds16_t& box = gx_viewport_rec(vpid).pixel_bounds;
  if (!make_overview(waves, *results)) {
    return draw_text("no values", box.xmin + margin, box.ymin + margin, white);
  }
  const axis_t axis = axis_of(waves, *results);
  std::vector<double> edges;
  for (int pixel = axis.left; pixel <= axis.right; ++pixel) edges.push_back(axis.x_at(pixel));
  const auto columns = waves.overview.columns(edges);
  const int bottom = box.ymax - margin - wave_line_step;  // above the scale
  const int height =
      std::max((bottom - box.ymin - margin) / static_cast<int>(waves.names.size()), 1);
  for (std::size_t i = 0; i < waves.names.size(); ++i) {
    const int top = box.ymin + margin + static_cast<int>(i) * height;
    draw_wave(waves.names[i], waves.overview.whole(i), columns[i], axis,
              {top + wave_line_step, top + height - 3}, wave_color(waves.names[i], i));
  }
  const auto unit = results->scale_unit();
  draw_text(rs_engineering(waves.from, 4, unit), axis.left, bottom + 2, white);
  const std::string end = rs_engineering(waves.to, 4, unit);
  draw_text(end, axis.right - static_cast<int>(end.size()) * wave_advance, bottom + 2, white);
  if (results->x < waves.from || results->x > waves.to) return;
  const int x = axis.pixel_at(results->x);
  gx_draw_line(vpid, white, gray_style, point(x, box.ymin + margin), point(x, bottom));
  const std::string here = rs_engineering(results->x, 4, unit);
  const int width = static_cast<int>(here.size()) * wave_advance;
  draw_text(here, (axis.left + axis.right - width) / 2, bottom + 2,
            gx_color_of(gx_role::selection, classic_colors[1]));
}

// --- gestures

// Shows another part of the scale.
void show_part(kv_waves_t& waves, const kv_results_t& results, double from, double to) {
  from = std::max(from, results.least_x());
  to = std::min(to, results.greatest_x());
  if (!(from < to)) return;
  waves.from = from;
  waves.to = to;
  kv_update_viewport_context();
}

// Zooms around a pixel, or moves along.
void turn_wheel(kv_waves_t& waves, const kv_results_t& results, const gx_event_t& event) {
  axis_t axis = axis_of(waves, results);
  const double from = axis.position(waves.from), to = axis.position(waves.to);
  const double at = axis.position(axis.x_at(event.pixel.x));
  double new_from = 0, new_to = 0;
  if ((event.modifiers & shift) != 0) {
    const double way = (to - from) / (event.wheel > 0 ? 10 : -10);
    const double least = axis.position(results.least_x());
    const double greatest = axis.position(results.greatest_x());
    const double moved = std::clamp(way, least - from, greatest - to);
    new_from = from + moved;
    new_to = to + moved;
  } else {
    const double factor = event.wheel > 0 ? 0.8 : 1.25;
    new_from = at - (at - from) * factor;
    new_to = at + (to - at) * factor;
  }
  if (axis.is_log) {
    new_from = std::exp(new_from);
    new_to = std::exp(new_to);
  }
  show_part(waves, results, new_from, new_to);
}

// By a hundredth of the range.
void move_x(kv_results_t& results, int way) {
  const double range = results.greatest_x() - results.least_x();
  const double x = results.x + way * range / 100;
  if (!kv_set_x(results, std::clamp(x, results.least_x(), results.greatest_x()))) return;
  kv_redraw_values();
}

bool over_waves(const gx_event_t& event, kv_waves_t& waves, const kv_results_t& results,
                const std::function<void(std::string_view)>& run) {
  const axis_t axis = axis_of(waves, results);
  if (event.kind == gx_event_kind::button1_down) {
    waves.is_dragged = true;
    waves.dragged_from = axis.x_at(event.pixel.x);
    return true;
  }
  if (event.kind == gx_event_kind::button1_up) {
    waves.is_dragged = false;
    const double to = axis.x_at(event.pixel.x);
    if (event.clicks > 0) {
      run("VALUES AT " + rs_engineering(to, 6) + " ");
    } else {
      show_part(waves, results, std::min(waves.dragged_from, to), std::max(waves.dragged_from, to));
    }
    return true;
  }
  if (event.wheel == 0) return false;
  turn_wheel(waves, results, event);
  return true;
}

}  // namespace

bool kv_show_waves(const std::vector<std::string>& paths) {
  std::string fault;
  const kv_results_t* const results = kv_results_now(fault);
  if (results == nullptr) return false;
  auto waves = std::make_shared<kv_waves_t>();
  waves->paths = paths;
  if (!make_overview(*waves, *results)) return false;
  kv_pext.waves = std::move(waves);
  kv_set_context_picture(draw_waves);
  kv_update_viewport_context();
  return true;
}

void kv_hide_waves() {
  kv_pext.waves = nullptr;
  kv_set_context_picture(nullptr);
  kv_update_viewport_context();
}

bool kv_waves_are_shown() { return kv_pext.waves != nullptr; }

void kv_redraw_waves() {
  if (kv_waves_are_shown()) kv_update_viewport_context();
}

bool kv_wave_gesture(const gx_event_t& event, const std::function<void(std::string_view)>& run) {
  const bool is_dragged = kv_pext.waves && kv_pext.waves->is_dragged;
  const bool is_button =
      event.kind == gx_event_kind::button1_down || event.kind == gx_event_kind::button1_up;
  if ((!is_button && event.wheel == 0) || gx_vext.menu_drawn) return false;
  const gx_vpid_t vpid = gx_vext.viewport_id;
  const bool over_sheet = vpid == gx_vext.viewport_edit && event.wheel != 0 &&
                          (event.modifiers & control) != 0 &&
                          (kv_pext.values_shown.any() || kv_waves_are_shown());
  const bool ends_drag = is_dragged && event.kind == gx_event_kind::button1_up;
  const bool is_over_waves = kv_waves_are_shown() && vpid == gx_vext.viewport_context;
  if (!over_sheet && !is_over_waves && !ends_drag) return false;
  std::string fault;
  kv_results_t* const results = kv_results_now(fault);
  if (results == nullptr || !results->plot().has_scale) return false;
  if (over_sheet) {
    move_x(*results, event.wheel);
    return true;
  }
  const auto waves = kv_pext.waves;  // a command may end it
  return over_waves(event, *waves, *results, run);
}
