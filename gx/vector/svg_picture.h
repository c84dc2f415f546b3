// A sheet as an SVG file: real texts, a block's drawing leads to its sheet, and what the pointer
// rests on says its net, or its instance with its values.
#pragma once

#include <span>
#include <string>

#include "gx/vector/look.h"
#include "gx/vector/sheet_labels.h"

struct gx_svg_page_t {
  gx_colours colours = gx_colours::print;
  gx_paper_t paper;  // the size that a viewer shows it in; 0 by 0: as it likes
  gx_sheet_labels_t labels;
  std::span<const std::string> files = {};  // of the pages, where links lead; relative
};

// The file, which must be sound (gx_sheet_fault).
std::string gx_svg_picture(const gx_file_gene_recf_t& file, const gx_svg_page_t& page);
