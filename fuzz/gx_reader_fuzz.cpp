// Any bytes as a GX file: they are refused, or they are a file that can be walked, queried, placed
// and written again.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "gx/db/file/link_file.h"
#include "gx/db/file/record_codec.h"
#include "gx/db/file/sheet_shape.h"
#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/db/queries.h"

namespace {

void expect(bool holds) {
  if (!holds) std::abort();
}

int count_below(const gx_file_gene_recf_t& file, int id) {
  int count = 1;
  for (const int child : gx_children(file, id)) count += count_below(file, child);
  return count;
}

void query_instance(const gx_file_gene_recf_t& file, int inst) {
  lb_get_valueof_prop_inst(file, inst, "INST");
  gx_get_path_n0version(
      gx_view(gx_symbol_info_ptr(file, gx_instance_info_ptr(file, inst).symbol).path));
  for (auto pins = lb_inq_inst_first_pin_id(file, inst); pins;
       pins = lb_inq_inst_next_pin_id(file, pins)) {
    lb_get_valueof_prop_pin(file, pins.pin, "PIN");
    lb_get_valueof_prop_pinpropfam(file, pins.pinpropfam, "NET");
    expect(lb_instance_of_pin_id(file, pins.pinpropfam) == inst);
    gx_pin_abs_origin(file, pins.pinpropfam);
  }
}

void query_sheet(const gx_file_gene_recf_t& file) {
  for (int id = lb_inq_first_inst_id(file).member; id != 0; id = lb_inq_next_inst_id(file, id)) {
    query_instance(file, id);
  }
  for (int id = lb_inq_first_symbol_id(file).member; id != 0;
       id = lb_inq_next_symbol_id(file, id)) {
    lb_inq_symbol_child_id(file, id);
  }
  for (int id = lb_inq_first_net_id(file).member; id != 0; id = lb_inq_next_net_id(file, id)) {
    lb_get_valueof_prop_net(file, id, "NET");
    for (int segment = gx_inq_first_net_segment_id(file, id); segment != 0;
         segment = gx_inq_next_net_segment_id(file, id, segment)) {
      const auto& ends = gx_segment_info_ptr(file, segment);
      for (const int end : {ends.vertex1, ends.vertex2}) {
        if (end == 0 || gx_object_id_ptr(file, end).object_type == gx_type::vertex_2d) continue;
        lb_instance_of_pin_id(file, end);
      }
    }
  }
  for (int id = lb_inq_first_vertex_id(file).member; id != 0;
       id = lb_inq_next_vertex_id(file, id)) {
    gx_vertex_info_ptr(file, id);
  }
  for (int id = lb_inq_first_frame_id(file).member; id != 0; id = lb_inq_next_frame_id(file, id)) {
    lb_inq_graphics_property_id(file, id);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto load = gx_decode_file(bytes, "input");
  expect((load.file != nullptr) == (load.code == gx_code::all_is_ok));
  expect((load.file != nullptr) == load.message.empty());
  if (load.file == nullptr) return 0;

  const auto& file = *load.file;
  const std::string written = gx_encode_file(file);
  const auto again = gx_decode_file(written, "written");
  expect(again.file != nullptr && gx_encode_file(*again.file) == written);

  int count = 0;
  for (int id = 1; id <= file.object_id_max; ++id) {
    const auto& object = gx_object_id_ptr(file, id);
    if (object.father == 0) count += count_below(file, id);
    gx_object_abs_origin_bounds(file, id, 0);
  }
  expect(count <= file.object_id_max);
  if (gx_sheet_fault(file).empty()) query_sheet(file);
  return 0;
}
