// GX files as raw records, for what no description would say: damaged ones, and parts of files.
#pragma once

#include <string>
#include <string_view>

#include "gx/db/file/record_codec.h"
#include "gx/db/file/record_tables.h"
#include "gx/db/ids.h"
#include "gx/db/object_access.h"
#include "gx/text/strings.h"
#include "tests/support/make_design.h"
#include "tests/support/objects.h"

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

// A sheet with every kind of reference, to be damaged: two instances of one symbol, and a net with
// a wire from each to a vertex. Its objects stand in the order of gxmake: main 1, page 2, grid 3,
// the families of instances, symbols, nets, vertices and frames 4 to 8, the symbol 9 and its
// body 10.
inline gx_builder small_sheet() {
  gx_builder sheet;
  sheet.file = *build_design(
                    "symbol inv\n pin A 0,0\n"
                    "sheet top\n part I1 inv 4,4\n part I2 inv 8,4\n"
                    "net CLK\n wire I1.A 4,6\n wire I2.A 8,6\n")
                    .back()
                    .file;
  return sheet;
}
