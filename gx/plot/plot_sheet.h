// A sheet on paper: the plot writer, HP-GL/2 inside PCL.
//
// The same objects that the display draws become pen moves, circles, arcs and labels in a text
// file, in page coordinates with y pointing up. Colours, line styles, selection and viewports play
// no part; no display is needed. Places are design units. One plot is open at a time: the first
// object written opens the file and fixes the scale, gx_plotfile_end closes it. A file that cannot
// be opened is counted as an error, once, and nothing is written. A slot without a file, and ids
// that name nothing, stop the program as the accessors of gx/db/object_access.h say.
#pragma once

#include <string_view>

#include "gx/db/ids.h"

// One plot from its first object to gx_plotfile_end.
struct gx_plot_t {
  std::string_view path;  // of the file to write; the caller's, until the plot ends
  bool landscape = false;
  bool scaling_done = false;  // the file is open and the scale fixed
  bool plot_ok = true;        // false: the file could not be opened
};

// Writes one object and its subtree; the first call opens the file (truncating it) and writes the
// header. A page above 100,000,000 units stops with object_id_invalid.
void gx_plotfile_object(gx_plot_t& plot, gx_file_index_t file_index, int object_id, int inst_id);
// Trailer and close. False when the file could not be written whole; nothing without a plot.
bool gx_plotfile_end();

// --- whole sheets, in the order and with the checks of the display's walks
void lb_plotfile_all_frame(gx_plot_t& plot, gx_file_index_t file_index);
void lb_plotfile_one_inst(gx_plot_t& plot, gx_file_index_t file_index, int inst);
void lb_plotfile_all_inst(gx_plot_t& plot, gx_file_index_t file_index);
void lb_plotfile_all_net(gx_plot_t& plot, gx_file_index_t file_index);

// --- single objects of a plot that is open; `inst_id` places the object, 0 for none
void gx_plotfile_prim(gx_file_index_t file_index, int object_id, int inst_id);
void gx_plotfile_pin(gx_file_index_t file_index, int pin_id, int inst_id);
void gx_plotfile_net(gx_file_index_t file_index, int net_id);
