// A netlist as CSV files, one a table (export/tables.h), as RFC 4180 has them.
#pragma once

#include <string>

#include "kvi/load.h"

// Writes NAME.csv for each table into a directory, which is made when it is missing. Each file is
// whole or absent: they get their names when all are written. `from` is the path of the design. ""
// or what went wrong.
std::string kv_write_csv(const kvi_design_t& design, const std::string& from,
                         const std::string& directory);
