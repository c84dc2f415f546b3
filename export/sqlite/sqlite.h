// A netlist as an SQLite database: the tables of export/tables.h and those of findings, with
// indexes and views (docs/netlists.md).
#pragma once

#include <string>
#include <string_view>

#include "kvi/load.h"

// Writes the database in one transaction into a new file, which takes the name `path` when it is
// whole. `from` is the path of the design, `findings` the text of the design's findings.json, or
// "". "" or what went wrong.
std::string kv_write_sqlite(const kvi_design_t& design, const std::string& from,
                            std::string_view findings, const std::string& path);
