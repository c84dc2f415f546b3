// Building objects: the bracket of create, open and close, which makes every new object a child of
// the one that is open. For editors and for gxmake; KIVO itself only reads.
//
// Objects are created in the current file, inside the bracket of their father. The constructors
// (hierarchy.h, primitives.h) fill the object being created or open; when that has another type the
// program stops with the code of the constructor.
#pragma once

#include <string_view>

#include "gx/db/file/file_records.h"
#include "gx/db/ids.h"

gx_object_id_t gx_object_create(gx_file_index_t file_index, gx_type type, std::int32_t x,
                                std::int32_t y);
gx_type gx_object_open(gx_file_index_t file_index, int id);
void gx_object_close(gx_file_index_t file_index, int id);

// --- for the constructors
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
