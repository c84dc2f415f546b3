// A sheet that is drawn as a symbol, as in `C {inverter.sch}`.
#pragma once

#include "import/xschem/symbols.h"

// The records of a symbol: the graphics of the sheet and of what is on it, with a pin for each port
// at the port's place. Throws std::runtime_error where the sheet is drawn within itself.
gxi_xschem_file_t gxi_xschem_symbol_of_sheet(gxi_xschem_library_t& library,
                                             const gxi_xschem_file_t& sheet,
                                             const std::filesystem::path& path);
