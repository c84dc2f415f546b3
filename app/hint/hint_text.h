// What is under a place of the sheet in view, in a few lines: its flat name, what it is, and its
// value where results are open.
#pragma once

#include <string>
#include <vector>

#include "gx/db/file/file_records.h"

// A pin, else a net, else an instance within `room` design units of the point; no line when there
// is none. Names are those of the expansion when there is one.
std::vector<std::string> kv_hint_lines(const gx_file_gene_recf_t& sheet, gx_pointreal_t point,
                                       std::int32_t room);
