#include "gx/plot/plot_pen.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "gx/vext.h"
#include "platform/files.h"

namespace {
x_file gx_fplo;  // the open plot file

// Width and height of the printable page in plotter units, and the tenths of a scale step that
// fit the page's width and height.
struct paper_t {
  const char* header;
  int width, height;
};
constexpr paper_t portrait{"IP0,0,7920,10920;\nSC0,1980,0,2730;\n", 198, 273};
constexpr paper_t landscape_paper{"RO90;\nIP0,0,10920,7920;\nSC0,2730,0,1980;\n", 273, 198};
constexpr const paper_t& paper(bool landscape) { return landscape ? landscape_paper : portrait; }

constexpr double least_text = 0.013;  // smaller text is drawn at this size
constexpr double large_text = 13;
}  // namespace

std::int32_t gx_plot_scale(gx_pointreal_t page, bool landscape) {
  const auto& sheet = paper(landscape);
  const std::int64_t s =
      std::max(std::int64_t{page.x} * 10 / sheet.width, std::int64_t{page.y} * 10 / sheet.height);
  return static_cast<std::int32_t>(std::max<std::int64_t>(s + s / 20, 1));
}

bool gx_plot_open(std::string_view path, gx_pointreal_t page, bool landscape) {
  gx_fplo = x_create_file(std::string(path), true);
  if (!gx_fplo) return false;
  gx_vext.lpplot_scale = gx_plot_scale(page, landscape);
  std::fprintf(gx_fplo.get(), "%2s\n%4s\nIN;\n%sSP1;\n", "\033E", "\033%0B",
               paper(landscape).header);
  gx_plot_width(0.4);
  return true;
}

bool gx_plot_is_open() { return gx_fplo != nullptr; }

bool gx_plot_close() {
  std::fprintf(gx_fplo.get(), "%4s\n", "\033%0A");
  const bool written = std::ferror(gx_fplo.get()) == 0;
  return x_close(std::move(gx_fplo)) && written;
}

std::int64_t gx_plot_length(std::int64_t length) { return length * 100 / gx_vext.lpplot_scale; }

gx_plot_point_t gx_plot_at(gx_pointreal_t p, std::int32_t page_height) {
  return {gx_plot_length(p.x), gx_plot_length(std::int64_t{page_height} - p.y)};
}

void gx_plot_up(gx_plot_point_t p) {
  std::fprintf(gx_fplo.get(), "PU%lld,%lld;\n", static_cast<long long>(p.x),
               static_cast<long long>(p.y));
}

void gx_plot_down(gx_plot_point_t p) {
  std::fprintf(gx_fplo.get(), "PD%lld,%lld;\n", static_cast<long long>(p.x),
               static_cast<long long>(p.y));
}

void gx_plot_circle(std::int64_t radius) {
  std::fprintf(gx_fplo.get(), "CI%lld;\n", static_cast<long long>(radius));
}

void gx_plot_arc(gx_plot_point_t center, int sweep_degrees) {
  std::fprintf(gx_fplo.get(), "AA%lld,%lld,%d,10;\n", static_cast<long long>(center.x),
               static_cast<long long>(center.y), sweep_degrees);
}

void gx_plot_fill_to(gx_plot_point_t corner) {
  std::fprintf(gx_fplo.get(), "RA%lld,%lld;\n", static_cast<long long>(corner.x),
               static_cast<long long>(corner.y));
}

void gx_plot_width(double width) { std::fprintf(gx_fplo.get(), "PW%4.1f;\n", width); }

void gx_plot_text_direction(int quarter_turns) {
  constexpr const char* direction[4] = {"DI1,0;\n", "DI0, 1;\n", "DI1,0;\n", "DI0,-1;\n"};
  std::fputs(direction[quarter_turns & 3], gx_fplo.get());
}

void gx_plot_text_size(double height) {
  std::fputs(height > large_text ? "SI13,10;\n" : "SI0.013,0.010;\n", gx_fplo.get());
  if (height > least_text) std::fprintf(gx_fplo.get(), "SI%6.3f,%6.3f;\n", height / 1.3, height);
}

void gx_plot_label(std::string_view text) {
  std::fprintf(gx_fplo.get(), "LB%.*s\003;\n", static_cast<int>(text.size()), text.data());
}
