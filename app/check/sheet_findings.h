// What the rules find on the sheets of a design: those of CHEck SHEet, and those of a sheet and the
// sheets below it.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "app/check/cells.h"
#include "app/check/electrical.h"
#include "app/check/findings/finding.h"
#include "app/check/sheet/check_rules.h"

// The sheets in the order of the walk, the findings of each in the order of the rules; what they
// say to the rules of the netlist.
void kv_find_on_sheets(kv_sheets_t& sheets, const kv_severities_t& severities,
                       kv_findings_t& findings, kv_electrical_marks& marks);

// --- for the rules below: findings of one cell
struct kv_cell_findings_t {
  const kv_cell_t& cell;
  const kv_severities_t& severities;
  kv_findings_t& findings;

  // `piece` is after the path of the sheet: "/MP1/G".
  void add(kv_rule rule, std::string_view piece, int object_id, std::string words);
};

// Blocks and the ports of their sheets (block_rules.cpp).
void kv_check_blocks(const kv_cells_t& cells, kv_cell_findings_t& found);

// Nets on which two globals meet, here or through blocks (global_rules.cpp). A net is reported on
// the sheet where they come together.
class kv_global_rules {
 public:
  explicit kv_global_rules(const kv_cells_t& cells) : cells_(cells) {}
  void check(kv_cell_findings_t& found);

 private:
  using globals_t = std::vector<std::int32_t>;  // of the run, in the order they were met
  struct net_t {
    globals_t globals;
    std::size_t most = 0;  // that one block, or one global, brings
  };
  using nets_t = std::map<std::pair<std::int32_t, std::int32_t>, net_t>;  // by group and member

  const nets_t& nets_of(kv_sheet_t& sheet);
  void take_block(kv_sheet_t& sheet, kv_sheet_inst_t& inst, kv_sheet_t& below, nets_t& nets);

  const kv_cells_t& cells_;
  std::unordered_map<const kv_sheet_t*, nets_t> nets_;
};
