// A plot from its first object on, and the frames, instances and nets of a sheet.
#include "gx/plot/plot_sheet.h"

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/picture/object_shapes.h"
#include "gx/picture/sheet_shapes.h"
#include "gx/plot/plot_pen.h"
#include "gx/plot/plot_shape.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {
constexpr std::int32_t max_page = 100000000;  // design units

// Opens the file and fixes the scale; false when the file cannot be opened.
bool start_plot(gx_plot_t& plot, const gx_file_gene_recf_t& file) {
  if (!plot.plot_ok) return false;  // said once
  const gx_pointreal_t page = gx_inq_page_dim(file);
  if (page.x > max_page || page.y > max_page) {
    gx_debug(" gx_plotfile_object  : file_index : %d\n", file.file_index);
    gx_debug(" gx_plotfile_object  :  too big page : %d  %d  %d\n", page.x, page.y, 1000);
    gx_set_status(gx_code::object_id_invalid);
  }
  plot.plot_ok = gx_plot_open(plot.path, page, plot.landscape);
  plot.scaling_done = plot.plot_ok;
  if (!plot.plot_ok) {
    ++gx_vext.num_errors;
    gx_trace("!!! ( gx_plotfile_object ) impossible to open new plot_file  : \"", plot.path, "\" ");
  }
  return plot.plot_ok;
}

const gx_file_gene_recf_t& plotted_file(gx_file_index_t file_index) {
  if (file_index < 1 || file_index > gx_max_files) {
    gx_debug(" gx_plotfile_object  : file_index : %d\n", file_index);
    gx_set_status(gx_code::file_data_invalid);
  }
  return gx_ptrto_gene_file_buf(file_index);
}
// Where shapes of a file go: the plot that is open.
gx_sink_t sink_of(const gx_file_gene_recf_t& file) {
  gx_sink_t sink{.name = "gx_plotfile", .instance_name = "LB_PLOTFILE_ONE_INST"};
  sink.draw = [height = gx_inq_page_dim(file).y](const gx_shape_t& shape) {
    gx_plot_shape(shape, height);
  };
  return sink;
}

// The same; the first object that is seen opens the plot.
gx_sink_t sink_of(gx_plot_t& plot, const gx_file_gene_recf_t& file) {
  gx_sink_t sink = sink_of(file);
  sink.sees = [&](int, int) { return plot.scaling_done || start_plot(plot, file); };
  return sink;
}
}  // namespace

void gx_plotfile_object(gx_plot_t& plot, gx_file_index_t file_index, int object_id, int inst_id) {
  const auto& file = plotted_file(file_index);
  gx_object_id_ptr(file, object_id);
  if (!plot.scaling_done && !start_plot(plot, file)) return;
  gx_tree_shapes(file, object_id, inst_id, false, sink_of(file));
}

bool gx_plotfile_end() { return !gx_plot_is_open() || gx_plot_close(); }

void lb_plotfile_all_frame(gx_plot_t& plot, gx_file_index_t file_index) {
  const auto& file = plotted_file(file_index);
  lb_frame_shapes(file, sink_of(plot, file));
}

void lb_plotfile_one_inst(gx_plot_t& plot, gx_file_index_t file_index, int inst) {
  const auto& file = plotted_file(file_index);
  lb_instance_shapes(file, inst, sink_of(plot, file));
}

void lb_plotfile_all_inst(gx_plot_t& plot, gx_file_index_t file_index) {
  const auto& file = plotted_file(file_index);
  lb_all_instance_shapes(file, sink_of(plot, file));
}

void lb_plotfile_all_net(gx_plot_t& plot, gx_file_index_t file_index) {
  const auto& file = plotted_file(file_index);
  if (!plot.scaling_done && !start_plot(plot, file)) return;
  lb_all_net_shapes(file, sink_of(file));
}

void gx_plotfile_prim(gx_file_index_t file_index, int object_id, int inst_id) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  gx_primitive_shape(file, object_id, inst_id, false, sink_of(file));
}

void gx_plotfile_pin(gx_file_index_t file_index, int pin_id, int inst_id) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  gx_pin_shape(file, pin_id, inst_id, false, sink_of(file));
}

void gx_plotfile_net(gx_file_index_t file_index, int net_id) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  gx_net_shapes(file, net_id, sink_of(file));
}
