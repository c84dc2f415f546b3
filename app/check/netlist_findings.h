// What the rules find on the expanded netlist.
#pragma once

#include "app/check/cells.h"
#include "app/check/finding.h"
#include "expand/design.h"

// In the order of the rules, of each rule in the order of the nets or pins.
void kv_find_on_netlist(const kv_design_t& design, kv_cells_t& cells,
                        const kv_severities_t& severities, kv_findings_t& findings);
