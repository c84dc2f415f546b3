// From a drawing to GX files. A design goes through gxi_fit (import/build/fit.h) and gxi_divide
// (import/build/divide/division.h) first.
#pragma once

#include <functional>
#include <memory>

#include "gx/db/file/file_records.h"
#include "gxmake/object_tree.h"
#include "import/drawing/drawing.h"

using gxi_tree_t = std::shared_ptr<gx_file_gene_recf_t>;

// The symbol file of a cell, and its sheet. Dates are left at zero; throws gxm_too_many_objects.
gxi_tree_t gxi_build_symbol(const gxi_cell_t& cell);
// `symbol_path` gives the path and the version that the sheet names the symbol of a cell by.
struct gxi_symbol_path_t {
  std::string path{};
  std::int16_t version = 1;
};
gxi_tree_t gxi_build_sheet(const gxi_design_t& design, const gxi_cell_t& cell,
                           const std::function<gxi_symbol_path_t(int)>& symbol_path);
