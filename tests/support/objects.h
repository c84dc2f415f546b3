// Objects of a file, for tests: by their kind, as lists, and in words.
#pragma once

#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "gx/db/object_access.h"

// The n-th object (from 1) of a type; 0 is none.
inline int nth_object(const gx_file_gene_recf_t& file, gx_type type, int n = 1) {
  for (const auto* object : file.ptr_to_ar_objindex)
    if (object->object_type == type && --n == 0) return object->object_id;
  return 0;
}
// A type by its name.
inline gx_type type_named(std::string_view name) {
  for (int code = 1; code <= gx_max_type; ++code)
    if (gx_type_name(static_cast<gx_type>(code)) == name) return static_cast<gx_type>(code);
  throw std::runtime_error("no type " + std::string(name));
}
template <typename Rec>
Rec& nth_record(const gx_file_gene_recf_t& file, int n = 1) {
  return gx_info_ptr<Rec>(file, nth_object(file, Rec::type, n));
}

// The ids of a range, for comparison with a list.
template <typename Range>
std::vector<int> ids_of(const Range& range) {
  std::vector<int> ids;
  for (const int id : range) ids.push_back(id);
  return ids;
}

inline std::ostream& operator<<(std::ostream& out, const gx_boundsreal_t& b) {
  return out << '(' << b.xmin << ' ' << b.ymin << ' ' << b.xmax << ' ' << b.ymax << ')';
}
inline std::ostream& operator<<(std::ostream& out, const gx_pointreal_t& p) {
  return out << '(' << p.x << ' ' << p.y << ')';
}
