// The components that a run has met: their link files, looked at once, and their sheets, read and
// analysed once. What a component's visit has to say is said at every visit.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "expand/sheet_analysis.h"

struct kv_component_t {
  std::string directory;
  bool symbol_found = false;        // its symbol has a current version
  std::int16_t symbol_version = 0;  // that version

  // of its sheet, looked up when the first macro is met
  enum { unknown, missing, damaged, found } sheet_state = unknown;
  std::string why_damaged;    // or why its link file cannot be read
  std::string why_no_symbol;  // likewise
  bool has_primary = false;
  std::string fault;          // what it lacks as a sheet
  bool is_checked = false;    // not changed since its last check
  bool has_no_error = false;  // and that check found none
  kv_sheet_t sheet;
};

struct kv_sheet_cache_t {
  const kv_setup_t& setup;
  std::vector<std::unique_ptr<kv_component_t>> components;
  std::unordered_map<std::string, std::int32_t> by_directory;
  std::vector<kv_global_net_record_t> globals;  // of the run; the analysed sheets index them
};

// The component that a symbol of a sheet belongs to.
kv_component_t& kv_component_of(kv_sheet_cache_t& cache, const kv_sheet_t& sheet,
                                kv_sheet_symbol_t& symbol);

// The sheet behind an instance of a symbol; nullptr, with the reason told, when it has none that
// can be expanded. Old versions, missing checks and errors of the check are told and counted.
kv_sheet_t* kv_get_sheet_for_expand(kv_sheet_cache_t& cache, const kv_sheet_t& sheet,
                                    kv_sheet_symbol_t& symbol);

// For each port of the sheet `below` an instance stands for: the instance's pin of the port's name
// (its place among the instance's pins), -1 when it has none. Matched once.
const std::int32_t* kv_pins_of_ports(kv_sheet_t& above, kv_sheet_inst_t& inst,
                                     const kv_sheet_t& below);

// Finds out which equipotentials of a sheet and of the sheets below it are on a global. A net that
// meets a global only inside a sheet below is that global's net from the start: two flat nets
// could not become one later. Says nothing; what is wrong is told by the visits.
void kv_find_tied_globals(kv_sheet_cache_t& cache, kv_sheet_t& sheet, int level);
