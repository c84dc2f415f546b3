#include "gx/edit/hierarchy.h"

#include "gx/db/file/link_file.h"
#include "gx/db/object_access.h"
#include "gx/text/messages/debug.h"
#include "gx/text/strings.h"

namespace {

// An instance that is filled once more leaves the chain of the symbol it had.
void leave_chain(const gx_file_gene_recf_t& file, gx_object_instance_rec_t& instance) {
  if (instance.symbol == 0) return;
  if (instance.previous_inst > 0) {
    gx_instance_info_ptr(file, instance.previous_inst).following_inst = instance.following_inst;
  } else {
    gx_symbol_info_ptr(file, instance.symbol).instance = instance.following_inst;
  }
  if (instance.following_inst > 0) {
    gx_instance_info_ptr(file, instance.following_inst).previous_inst = instance.previous_inst;
  }
  instance.previous_inst = 0;
}

}  // namespace

void gx_plain(gx_type type) {
  gx_object_to_fill(gx_construction_file(), type, gx_type_name(type),
                    gx_code::object_create_invalid);
}

void gx_symbol(std::string_view path) {
  auto& symbol = gx_record_to_fill<gx_object_symbol_rec_t>(gx_code::object_create_invalid);
  symbol.instance = 0;
  symbol.path = gx_string(path);
}

void gx_instance(int symbol_id, int rotate, bool fliph) {
  const auto& file = gx_construction_file();
  auto& instance = gx_record_to_fill<gx_object_instance_rec_t>(gx_code::object_create_invalid);
  if (!gx_object_id_ok(file, symbol_id)) {
    gx_debug_line(" gx_instance : symbol_id_invalid ");
    gx_set_status(gx_code::object_id_invalid);
  }
  auto& symbol = gx_symbol_info_ptr(file, symbol_id);
  const auto path = gx_get_path_n0version(gx_view(symbol.path));
  if (path.error) {
    gx_debug_line(" gx_instance : symbol n0 version invalid ");
    gx_set_status(gx_code::object_id_invalid);
  }
  if (rotate < 0 || rotate > 3) gx_set_status(gx_code::coordonate_conversion_overflow);
  leave_chain(file, instance);
  instance.rotate = static_cast<std::uint8_t>(rotate);
  instance.fliph = fliph;
  instance.symbol = symbol.gene.object_id;
  instance.n0_version = path.version;

  // The instance becomes the head of the chain of its symbol.
  const auto own = instance.gene.object_id;
  instance.following_inst = symbol.instance;
  if (symbol.instance > 0) gx_instance_info_ptr(file, symbol.instance).previous_inst = own;
  symbol.instance = own;
}

void gx_pinpropfam() {
  auto& pin = gx_record_to_fill<gx_object_pinpropfam_rec_t>(gx_code::object_create_invalid);
  pin.dotted = 0;
  pin.net = 0;
  pin.pin_start = pin.pin_end = pin.pin_net_start = 0;
}

void gx_net() {
  auto& net = gx_record_to_fill<gx_object_net_rec_t>(gx_code::object_create_invalid);
  net.net_index = 0;
  net.ptrto_probe = nullptr;
  net.is_bus = 0;
  net.bus_start = net.bus_end = 0;
}
