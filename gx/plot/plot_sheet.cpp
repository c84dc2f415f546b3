// A plot from its first object on, and the frames, instances and nets of a sheet.
#include "gx/plot/plot_sheet.h"

#include "gx/db/geometry.h"
#include "gx/db/object_access.h"
#include "gx/db/picture_walk.h"
#include "gx/plot/plot_objects.h"
#include "gx/plot/plot_pen.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"
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

// Plots an object without what is below it; a net whole.
void plot_one(const gx_file_gene_recf_t& file, int id, int inst_id) {
  const gx_type type = gx_object_id_ptr(file, id).object_type;
  if (type == gx_type::net)
    gx_plotfile_net(file.file_index, id);
  else if (type == gx_type::pin)
    gx_plotfile_pin(file.file_index, id, inst_id);
  else if (gx_is_drawn_primitive(type))
    gx_plotfile_prim(file.file_index, id, inst_id);
}

const gx_file_gene_recf_t& plotted_file(gx_file_index_t file_index) {
  if (file_index < 1 || file_index > gx_max_files) {
    gx_debug(" gx_plotfile_object  : file_index : %d\n", file_index);
    gx_set_status(gx_code::file_data_invalid);
  }
  return gx_ptrto_gene_file_buf(file_index);
}
}  // namespace

void gx_plotfile_object(gx_plot_t& plot, gx_file_index_t file_index, int object_id, int inst_id) {
  const auto& file = plotted_file(file_index);
  const gx_type type = gx_object_id_ptr(file, object_id).object_type;
  if (!plot.scaling_done && !start_plot(plot, file)) return;
  if (type == gx_type::net) gx_set_status(gx_code::invalid_level);
  plot_one(file, object_id, inst_id);
  gx_walk_below(file, object_id, [&](int id) { plot_one(file, id, inst_id); });
}

bool gx_plotfile_end() { return !gx_plot_is_open() || gx_plot_close(); }

void lb_plotfile_all_frame(gx_plot_t& plot, gx_file_index_t file_index) {
  const auto& file = plotted_file(file_index);
  lb_walk_members(file, lb_frames(file),
                  [&](int frame) { gx_plotfile_object(plot, file_index, frame, 0); });
}

void lb_plotfile_one_inst(gx_plot_t& plot, gx_file_index_t file_index, int inst) {
  lb_walk_instance(plotted_file(file_index), inst, "LB_PLOTFILE_ONE_INST",
                   [&](int root, bool) { gx_plotfile_object(plot, file_index, root, inst); });
}

void lb_plotfile_all_inst(gx_plot_t& plot, gx_file_index_t file_index) {
  const auto& file = plotted_file(file_index);
  lb_walk_members(file, lb_instances(file),
                  [&](int inst) { lb_plotfile_one_inst(plot, file_index, inst); });
}

void lb_plotfile_all_net(gx_plot_t& plot, gx_file_index_t file_index) {
  const auto& file = plotted_file(file_index);
  if (!plot.scaling_done && !start_plot(plot, file)) return;
  lb_walk_members(file, lb_nets(file), [&](int net) { gx_plotfile_net(file_index, net); });
}
