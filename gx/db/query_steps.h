// The steps that the queries of sheets and of symbol files share. Internal to gx/db.
#pragma once

#include "gx/db/ids.h"
#include "gx/db/queries.h"

// A family under the primary object, what it holds, and how its "first" query names itself in the
// debug file.
struct gx_family_query_t {
  gx_type family, member;
  const char* operation;
  const char* id_name;
};

gx_first_t gx_first_member(const gx_file_gene_recf_t& file, const gx_family_query_t& query);
gx_object_id_t gx_next_member(const gx_file_gene_recf_t& file, int id, gx_type member);

// The last child of that type; 0 when there is none.
gx_object_id_t gx_last_child_of_type(const gx_file_gene_recf_t& file, int father, gx_type type);
