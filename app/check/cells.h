// The cells of a design: its sheets as a run analyses them, each once, in the order of the walk.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "expand/sheet/sheet_entry.h"

struct kv_cell_t {
  kv_sheet_t* sheet;
  std::string path;  // of its first visit: "" for the primary sheet
};

// A block without a sheet that can be read.
struct kv_missing_sheet_t {
  const kv_sheet_t* sheet;  // with the block
  const kv_sheet_inst_t* inst;
  std::string why;
};

class kv_cells_t {
 public:
  // What looks at the file of each cell when the walk reaches it; the file is gone afterwards.
  using look_t = std::function<void(const kv_cell_t& cell, const gx_file_gene_recf_t& file)>;

  // Reads all sheets below the primary one of a store that keeps files.
  kv_cells_t(kv_sheets_t& sheets, const look_t& look);

  const std::vector<kv_cell_t>& cells() const { return cells_; }
  const std::vector<kv_missing_sheet_t>& missing() const { return missing_; }
  // The globals that the analysed sheets index.
  const std::vector<kv_global_net_record_t>& globals() const { return sheets_.globals; }
  // The sheet of the blocks of a symbol; null when they have none.
  kv_sheet_t* below(const kv_sheet_symbol_t& symbol) const;

 private:
  kv_sheets_t& sheets_;
  std::vector<kv_cell_t> cells_;
  std::vector<kv_missing_sheet_t> missing_;
};
