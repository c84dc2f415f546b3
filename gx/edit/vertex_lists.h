// The lists of the vertices and segments of file 1 by cells of its page, for editors that look for
// what lies near a point; no program of the house does. Kept while vertex_list_to_do is on.
#pragma once

#include "gx/db/file/file_records.h"
#include "gx/db/ids.h"

void gx_put_vertex_list(const gx_file_gene_recf_t& file, int vertex);
void gx_put_segment_list(const gx_file_gene_recf_t& file, int segment);
void gx_init_vertex_segment_list(gx_file_index_t file_index);
