// The sheets of a design by their directories: each looked up, read and analysed once, whoever
// asks. A store lives for one command; the next one sees what has changed in the files. Nothing is
// reported here: what is wrong with a sheet is a field of its component.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "expand/setup.h"
#include "expand/sheet/sheet_records.h"

// A directory with a symbol and the sheet of that symbol.
struct kv_component_t {
  std::string directory;

  // of its symbol, looked up when an instance on an analysed sheet has it
  bool symbol_looked_up = false;
  bool symbol_found = false;        // it has a current version
  std::int16_t symbol_version = 0;  // that version
  std::string why_no_symbol;        // the link file cannot be read: why

  // of its sheet, see kv_read_sheet
  enum { unknown, missing, damaged, found } sheet_state = unknown;
  std::string why_no_sheet;   // damaged: why; missing: why the link file cannot be read
  std::string sheet_path;     // the data file
  std::string fault;          // what it lacks as a sheet
  bool has_primary = false;   // a primary object
  bool is_checked = false;    // not changed since its last check
  bool has_no_error = false;  // that check found none
  std::shared_ptr<const gx_file_gene_recf_t> file;

  bool is_analysed = false;
  kv_sheet_t sheet;
};

struct kv_sheets_t {
  const kv_setup_t* setup = nullptr;  // to analyse for; null: nothing is analysed
  bool keeps_files = false;           // false: a file is gone when it has been analysed
  kv_component_t top;                 // in no directory; its file is given
  std::vector<std::unique_ptr<kv_component_t>> components = {};
  std::unordered_map<std::string, std::int32_t> by_directory = {};
  std::vector<kv_global_net_record_t> globals = {};  // of the analysed sheets, which index them
};

// Makes a file the primary sheet of an empty store. The store does not own it: it must live as long
// as the store keeps files, or until the sheet is analysed.
void kv_set_top(kv_sheets_t& sheets, const gx_file_gene_recf_t& file, std::string_view file_path);

// The component of a directory. Reads nothing.
kv_component_t& kv_component_at(kv_sheets_t& sheets, std::string_view directory);
// The component of a symbol on an analysed sheet, with the version of the symbol looked up.
kv_component_t& kv_component_of(kv_sheets_t& sheets, const kv_sheet_t& sheet,
                                kv_sheet_symbol_t& symbol);

// Looks up and reads the sheet of a component, the first time. True when there is a file that could
// be read, with or without a fault.
bool kv_read_sheet(kv_component_t& component);
// The analysed sheet of a component, read first where that was not done; null when it has none.
kv_sheet_t* kv_analysed(kv_sheets_t& sheets, kv_component_t& component);

// The first instance of a symbol that is no primitive; null when all are.
kv_sheet_inst_t* kv_first_block(kv_sheet_t& sheet, const kv_sheet_symbol_t& symbol);

// What a walk calls.
struct kv_sheet_visitor_t {
  // At the first visit of a sheet, with its path ("" at the top): whether to go below it.
  std::function<bool(kv_component_t& component, const std::string& path)> enter;
  // After all below a symbol with blocks: `below` may have no sheet.
  std::function<void(kv_sheet_t& sheet, const kv_sheet_symbol_t& symbol, kv_component_t& below)>
      leave;
};
// Walks down from the primary sheet, which is analysed already, symbol by symbol. Each sheet is
// entered once, so a sheet inside itself ends the way; ways end at kv_max_levels, too.
void kv_walk_down(kv_sheets_t& sheets, const kv_sheet_visitor_t& visitor);
