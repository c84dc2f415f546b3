// The plotter's pen: the open plot file, its coordinates and its commands.
#pragma once

#include <cstdint>
#include <string_view>

#include "gx/text/records.h"

// Opens the file (truncated), writes the header and fixes the scale for a page of `page` design
// units. False when it cannot be opened.
bool gx_plot_open(std::string_view path, gx_pointreal_t page, bool landscape);
bool gx_plot_is_open();
bool gx_plot_close();  // trailer; false when something could not be written

// Design units per 100 plotter units for a page.
std::int32_t gx_plot_scale(gx_pointreal_t page, bool landscape);

// Plotter coordinates of a design point on a page of that height; y points up.
struct gx_plot_point_t {
  std::int64_t x = 0, y = 0;
};
gx_plot_point_t gx_plot_at(gx_pointreal_t p, std::int32_t page_height);
std::int64_t gx_plot_length(std::int64_t length);

void gx_plot_up(gx_plot_point_t p);
void gx_plot_down(gx_plot_point_t p);
void gx_plot_circle(std::int64_t radius);
void gx_plot_arc(gx_plot_point_t center, int sweep_degrees);
void gx_plot_fill_to(gx_plot_point_t corner);
void gx_plot_width(double width);
void gx_plot_text_direction(int quarter_turns);  // 0..3
void gx_plot_text_size(double height);           // of a character, in the plotter's centimetres
void gx_plot_label(std::string_view text);
