// What the constructors of objects and of primitives share. Internal to gx/db.
#pragma once

#include <string_view>

#include "gx/db/construction.h"

// The current file; the package must be initialised or a file open.
gx_file_gene_recf_t& gx_construction_file();

// The object being created or open, which must have the type; `misfit` is what the program stops
// with otherwise. The file counts as updated.
gx_object_gene_rec_t& gx_object_to_fill(const gx_file_gene_recf_t& file, gx_type type,
                                        std::string_view name, gx_code misfit);

template <typename Rec>
Rec& gx_record_to_fill(gx_code misfit) {
  return reinterpret_cast<Rec&>(
      gx_object_to_fill(gx_construction_file(), Rec::type, gx_type_name(Rec::type), misfit));
}
