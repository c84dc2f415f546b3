// The cells of a design: its sheets as a run analyses them, each once, in the order of the walk.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "expand/sheet_cache.h"

struct kv_cell_t {
  kv_sheet_t* sheet;
  std::string path;  // of its first visit: "" for the primary sheet
};

// A block without a sheet that can be read.
struct kv_missing_sheet_t {
  std::size_t cell;  // that holds the block
  const kv_sheet_inst_t* inst;
  std::string why;
};

class kv_cells_t {
 public:
  // Reads all sheets below the primary one. Tells what a run tells of them; the caller catches it.
  kv_cells_t(const kv_setup_t& setup, const gx_file_gene_recf_t& top, std::string_view top_path);
  kv_cells_t(const kv_cells_t&) = delete;
  kv_cells_t& operator=(const kv_cells_t&) = delete;

  const std::vector<kv_cell_t>& cells() const { return cells_; }
  const std::vector<kv_missing_sheet_t>& missing() const { return missing_; }
  const kv_sheet_cache_t& cache() const { return cache_; }
  // The sheet behind the blocks of a symbol; null when they have none.
  kv_sheet_t* below(const kv_sheet_symbol_t& symbol) const;

 private:
  void walk(kv_sheet_t& sheet, const std::string& path, int level);

  kv_sheet_cache_t cache_;
  kv_sheet_t top_;
  std::unordered_set<const kv_sheet_t*> walked_;
  std::vector<kv_cell_t> cells_;
  std::vector<kv_missing_sheet_t> missing_;
};
