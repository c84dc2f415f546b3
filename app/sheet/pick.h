// What of a sheet lies under a point.
#pragma once

#include <cstdint>

#include "gx/db/file/file_records.h"

// The live instance with the smallest box around the point; 0 for none.
int kv_pick_instance(const gx_file_gene_recf_t& file, gx_pointreal_t point);
// The live net with a segment nearest to the point, within `room` design units; 0 for none.
int kv_pick_net(const gx_file_gene_recf_t& file, gx_pointreal_t point, std::int32_t room);
