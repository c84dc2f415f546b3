// Reads a sheet into the records that a run needs, once for all visits
// (expand/sheet/sheet_records.h).
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "expand/setup.h"
#include "expand/sheet/sheet_records.h"
#include "gx/db/file/file_records.h"

// Analyses a sheet for the lists of a set-up. Names of globals it meets are added to
// `globals`. A sheet of any contents is taken: what is missing or of a wrong type is left out.
kv_sheet_t kv_analyse_sheet(const gx_file_gene_recf_t& file, std::string_view file_path,
                            const kv_setup_t& setup, std::vector<kv_global_net_record_t>& globals);

// A name without the bus range that follows "[".
std::string_view kv_bare_name(std::string_view name);
