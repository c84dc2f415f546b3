// Whether a file is a sheet. Reading a file makes sure that what it holds is of the right types
// (reference_check.cpp); here is what it may still lack for being shown and worked on.
#pragma once

#include <string>

#include "gx/db/file/file_records.h"

// The first thing that a file lacks as a sheet: the main object, a family, the grid, the symbol of
// an instance, a family of pins or properties. "" when it has all.
std::string gx_sheet_fault(const gx_file_gene_recf_t& file);
