// Whether a file is a sheet, and where its symbols are. Reading a file makes sure that what it
// holds is of the right types (reference_check.cpp); here is what it may still lack for being shown
// and worked on.
#pragma once

#include <string>
#include <string_view>

#include "gx/db/file/file_records.h"

// The first thing that a file lacks as a sheet: the main object, a family, the grid, the symbol of
// an instance, a family of pins or properties. "" when it has all.
std::string gx_sheet_fault(const gx_file_gene_recf_t& file);

// Paths of symbols begin in the directory where a session works. Here the one that `design`, the
// directory of the sheet, is in, when symbols are found there and not from the present directory;
// otherwise "".
std::string gx_place_of_symbols(const gx_file_gene_recf_t& file, std::string_view design);
