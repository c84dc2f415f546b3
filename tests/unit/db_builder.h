// Builds GX files in memory, object by object, with the tree links that an editor would set.
#pragma once

#include <string>
#include <string_view>

#include "gx/db/ids.h"
#include "gx/db/object_access.h"
#include "gx/db/record_codec.h"
#include "gx/db/record_tables.h"
#include "gx/text/strings.h"

class gx_builder {
 public:
  gx_file_gene_recf_t file;

  // Appends an object to the children of `father` (0: none) and gives its id.
  int add(gx_type type, int father = 0) {
    auto& object = gx_new_object(file, type);
    file.ptr_to_ar_objindex.push_back(&object);
    const int id = ++file.object_id_max;
    object.object_id = id16(id);
    object.object_type = type;
    object.father = id16(father);
    if (type == gx_type::main) file.primary_object = id16(id);
    if (type == gx_type::page) file.page_obj_id = id16(id);
    if (type == gx_type::grid_2d) file.grid_obj_id = id16(id);
    if (father == 0) return id;
    auto& parent = gx_object_id_ptr(file, father);
    if (parent.child1 == 0) {
      parent.child1 = id16(id);
    } else {
      int last = parent.child1;
      while (gx_object_id_ptr(file, last).following != 0) {
        last = gx_object_id_ptr(file, last).following;
      }
      gx_object_id_ptr(file, last).following = id16(id);
      object.previous = id16(last);
    }
    return id;
  }

  template <typename Rec>
  Rec& add_record(int father = 0) {
    return gx_info_ptr<Rec>(file, add(Rec::type, father));
  }

  int add_property(int father, std::string_view name, std::string_view value) {
    auto& property = add_record<gx_object_property_rec_t>(father);
    property.name = gx_name(name);
    property.nvalue = gx_value(value);
    return property.gene.object_id;
  }

  std::string bytes() const { return gx_encode_file(file); }

 private:
  static gx_object_id_t id16(int id) { return static_cast<gx_object_id_t>(id); }
};

// A sheet with one object of every kind of reference: two instances of one symbol, one net with a
// vertex, a segment from the vertex to a pin, and properties.
inline gx_builder small_sheet() {
  gx_builder sheet;
  auto& f = sheet.file;
  const auto id16 = [](int id) { return static_cast<gx_object_id_t>(id); };
  const int main_id = sheet.add(gx_type::main);
  const int instances = sheet.add(gx_type::instance_family, main_id);
  const int symbols = sheet.add(gx_type::symbol_family, main_id);
  const int nets = sheet.add(gx_type::net_family, main_id);
  const int vertices = sheet.add(gx_type::vertex_family, main_id);
  sheet.add(gx_type::frame_family, main_id);

  const int symbol = sheet.add(gx_type::symbol, symbols);
  gx_symbol_info_ptr(f, symbol).path = gx_string("inv/Symbol.gx_2");
  sheet.add(gx_type::property_family, sheet.add(gx_type::body, symbol));
  const int symbol_pins = sheet.add(gx_type::pin_family, symbol);
  sheet.add_property(sheet.add(gx_type::pin, symbol_pins), "PIN", "A");
  const int net = sheet.add(gx_type::net, nets);
  sheet.add_property(sheet.add(gx_type::property_family, net), "NET", "CLK");

  int before = 0, pin = 0;
  for (const auto* name : {"I1", "I2"}) {
    const int instance = sheet.add(gx_type::instance, instances);
    auto& record = gx_instance_info_ptr(f, instance);
    record.symbol = id16(symbol);
    record.n0_version = 2;
    record.previous_inst = id16(before);
    if (before == 0) {
      gx_symbol_info_ptr(f, symbol).instance = id16(instance);
    } else {
      gx_instance_info_ptr(f, before).following_inst = id16(instance);
    }
    before = instance;
    sheet.add_property(sheet.add(gx_type::bodpropfam, instance), "INST", name);
    pin = sheet.add(gx_type::pinpropfam, sheet.add(gx_type::pin_family, instance));
    gx_pinpropfam_info_ptr(f, pin).net = id16(net);
  }
  const int vertex = sheet.add(gx_type::vertex_2d, vertices);
  gx_vertex_info_ptr(f, vertex).net = id16(net);
  auto& segment = sheet.add_record<gx_object_segment_rec_t>(net);
  segment.vertex1 = id16(vertex);
  segment.vertex2 = id16(pin);
  auto& grid = sheet.add_record<gx_object_grid_rec_t>(sheet.add(gx_type::page, main_id));
  grid.step_point = 100;
  return sheet;
}
