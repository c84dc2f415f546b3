// Which reference and unit a symbol has in each use of its sheet.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "import/kicad/records.h"

// `path` is that of a use of the sheet: the ids of the sheets down to it, each after "/".
class gxi_kicad_references_t {
 public:
  // The top sheet, which must live as long: of an older drawing it has the references of all
  // sheets.
  explicit gxi_kicad_references_t(const gxi_kicad_file_t& top);

  std::string reference(const gxi_kicad_placed_t& placed, const std::string& path) const;
  int unit(const gxi_kicad_placed_t& placed, const std::string& path) const;

 private:
  const gxi_kicad_use_t* old_use(const gxi_kicad_placed_t& placed, const std::string& path) const;

  std::size_t id_length_ = 0;  // of the top sheet
  std::map<std::string, const gxi_kicad_use_t*, std::less<>> old_uses_{};
};

// What the parts and blocks of a cell are called, and what of the drawing they are.
struct gxi_kicad_cell_use_t {
  struct part_t {
    const gxi_kicad_placed_t* placed = nullptr;
    std::string name{};
  };
  struct block_t {
    const gxi_kicad_block_t* block = nullptr;
    std::string name{};
    int cell = 0;
  };
  std::vector<part_t> parts{};
  std::vector<block_t> blocks{};
};

// A line for each part, in each use of its cell from the first cell down, whose reference is not
// its name: its path and its reference. `path` is that of the top sheet. Of more uses than anybody
// reads the rest is left out, which is reported.
std::string gxi_kicad_reference_lines(const std::vector<gxi_kicad_cell_use_t>& cells,
                                      const gxi_kicad_references_t& references,
                                      const std::string& path, std::vector<std::string>& warnings);

// A, B ... Z, AA ... of unit 1, 2 ...
std::string gxi_kicad_letters(int unit);
