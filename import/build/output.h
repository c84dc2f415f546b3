// A drawing on disk: the design directory that gximport leaves.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "gxmake/object_tree.h"
#include "import/drawing/drawing.h"

struct gxi_output_t {
  std::filesystem::path root;
  gx_date_t date{1, 1, 2000};  // of files that are new
  bool absolute = false;       // sheets name their symbols by absolute paths
  // Properties of instances that an expansion keeps as numbers.
  std::vector<std::string> numbers{};
};

struct gxi_summary_t {
  std::string top{};  // the cell to open
  int cells = 0, sheets = 0, instances = 0, nets = 0;
  int files = 0;    // symbols and sheets
  int written = 0;  // of them new or changed
};

// "1 note", "2 notes".
std::string gxi_counted(std::size_t number, std::string_view what);

// Fits, divides and builds the design and writes it below the root: CELL/symbol.gx, CELL/sheet.gx,
// expand.do and gximport.log. A file is written, as a new version, only where its contents changed.
// Everything is built and written aside before the first file comes to its place. What is left out
// is added to design.warnings. Throws std::runtime_error with a line for the user.
gxi_summary_t gxi_write(gxi_design_t& design, const gxi_output_t& output);
