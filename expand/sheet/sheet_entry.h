// What a run asks before it enters the sheet of an instance: is there one, which pin stands for
// which port, which nets are on a global inside.
#pragma once

#include <cstdint>

#include "expand/sheet/sheets.h"

// The sheet of an instance of a symbol; nullptr, the reason reported, when it has none that can be
// expanded. Old versions, missing checks and errors of the check are reported and counted at every
// call.
kv_sheet_t* kv_get_sheet_for_expand(kv_sheets_t& sheets, const kv_sheet_t& sheet,
                                    kv_sheet_symbol_t& symbol);

// For each port of the sheet `below` an instance stands for: the instance's pin of the port's name
// (its place among the instance's pins), -1 when it has none. Matched once.
const std::int32_t* kv_pins_of_ports(kv_sheet_t& above, kv_sheet_inst_t& inst,
                                     const kv_sheet_t& below);

// Finds out which equipotentials of the primary sheet and of the sheets below it are on a global,
// and what a visit of each sheet comes to. A net that meets a global only inside a sheet below is
// that global's net from the start: two flat nets could not become one later. Says nothing; what is
// wrong is reported by the visits.
void kv_find_tied_globals(kv_sheets_t& sheets);
