#include "gx/db/file/sheet_shape.h"

#include <array>
#include <filesystem>

#include "gx/db/objects_of.h"
#include "gx/text/strings.h"

namespace {

constexpr std::array families = {gx_type::instance_family, gx_type::symbol_family,
                                 gx_type::net_family, gx_type::vertex_family,
                                 gx_type::frame_family};

std::string without(const gx_object_gene_rec_t& object, std::string_view what) {
  return "object " + std::to_string(object.object_id) + ": " +
         std::string(gx_type_name(object.object_type)) + " without " + std::string(what);
}

std::string shape_fault(const gx_file_gene_recf_t& file, const gx_object_gene_rec_t& object) {
  const int id = object.object_id;
  if (object.object_type == gx_type::symbol) {
    if (gx_first_child_of(file, id, gx_type::pin_family) == 0) return without(object, "pins");
  } else if (object.object_type == gx_type::instance) {
    const int symbol = gx_object_as<gx_object_instance_rec_t>(file, id)->symbol;
    if (gx_object_as<gx_object_symbol_rec_t>(file, symbol) == nullptr) {
      return without(object, "symbol");
    }
    if (gx_first_child_of(file, id, gx_type::pin_family) == 0) return without(object, "pins");
    if (gx_first_child_of(file, id, gx_type::bodpropfam) == 0) {
      return without(object, "properties");
    }
  }
  return {};
}

}  // namespace

std::string gx_sheet_fault(const gx_file_gene_recf_t& file) {
  if (gx_object(file, file.primary_object) == nullptr) return "no main object";
  for (const gx_type family : families) {
    if (gx_first_child_of(file, file.primary_object, family) == 0) {
      return "no " + std::string(gx_type_name(family));
    }
  }
  if (gx_object_as<gx_object_grid_rec_t>(file, file.grid_obj_id) == nullptr) return "no grid";
  for (const auto* object : file.ptr_to_ar_objindex) {
    if (auto fault = shape_fault(file, *object); !fault.empty()) return fault;
  }
  return {};
}

std::string gx_place_of_symbols(const gx_file_gene_recf_t& file, std::string_view design) {
  const auto end = design.find_last_not_of('/');
  const auto place = std::filesystem::path(design.substr(0, end + 1)).parent_path();
  if (place.empty()) return "";
  for (const int id : lb_symbols(file)) {
    const auto* symbol = gx_object_as<gx_object_symbol_rec_t>(file, id);
    const std::filesystem::path path(gx_view(symbol->path));
    std::error_code ignored;
    if (path.is_relative() && !std::filesystem::exists(path, ignored) &&
        std::filesystem::exists(place / path, ignored))
      return place.string();
  }
  return "";
}
