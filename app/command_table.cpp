#include "app/command_table.h"

#include <algorithm>

#include "gx/text/strings.h"

namespace {
// Within the rows of an initial the first match counts, so a longer form stands before the shorter
// one that it begins with.
constexpr kv_command_row_t command_table[] = {
    // clang-format off
    {"A", {"ACT", "SYM"}, 0, "ACTivate SYMbol", nullptr},
    {"A", {"ASSI"}, 0, "ASSIgn", nullptr, kv_assign},
    {"BD", {"BASE"}, 0, "BASEpoint", nullptr},
    {"BD", {"BYE"}, 3, "BYE", kv_bye_cmd},
    {"BD", {"DEF", "KEY"}, 0, "DEFine KEY", nullptr},
    {"BD", {"DEF", "MEN"}, 0, "DEFine MENu", nullptr},
    {"BD", {"DO"}, 2, "DO", kv_do_cmd},
    {"BD", {"DOB"}, 0, "DOBin", kv_dobin_cmd},
    {"BD", {"DODIR"}, 0, "DODIRectbin", kv_dodirbin_cmd},
    {"BD", {"DISP"}, 0, "DISplay", kv_display_cmd},
    {"C", {"COM"}, 0, "COMmand", kv_command_cmd},
    {"C", {"CHA", "PRO", "SWI"}, 0, "CHAnge PROperty SWItches", nullptr},
    {"C", {"CHE", "SHE"}, 0, "CHEck SHEet", nullptr},
    {"EFGH", {"GEN", "DAT"}, 0, "GENerate DATa", nullptr},
    {"EFGH", {"GIV"}, 0, "GIVE", nullptr},
    {"EFGH", {"G"}, 1, "GIVE", nullptr},
    {"EFGH", {"GRID", "O"}, 0, "GRId ON, GRId OFF", nullptr},
    {"EFGH", {"GRID", "ST"}, 0, "GRId STep", nullptr},
    {"EFGH", {"HAR"}, 0, "HARDcopy", kv_hardcopy_cmd},
    {"EFGH", {"HEL"}, 0, "HELp", kv_help_cmd},
    {"IKL", {"LIST", "OBJ"}, 0, "LIST OBJect", nullptr},
    {"MNO", {"MARK", "RECT"}, 4, "MARK RECTangle", nullptr},
    {"MNO", {"MARK"}, 4, "MARK", nullptr},
    {"PQR", {"PARAM"}, 0, "PARAMeter", nullptr},
    {"PQR", {"PLO"}, 0, "PLOt", kv_plot_cmd},
    {"PQR", {"POP"}, 0, "POP", nullptr},
    {"PQR", {"PRIMI"}, 0, "PRIMitive", nullptr},
    {"PQR", {"PRO", "INS"}, 0, "PROPerty INStance", nullptr},
    {"PQR", {"PRO", "NET"}, 0, "PROPerty NET", nullptr},
    {"PQR", {"PRO", "PIN"}, 0, "PROPerty PIN", nullptr},
    {"PQR", {"READ"}, 0, "READln", kv_readln_cmd},
    {"PQR", {"RUN"}, 0, "RUN", nullptr},
    {"PQR", {"QUIT"}, 4, "QUIT", kv_quit_cmd},
    {"S", {"SEA"}, 0, "SEArch", nullptr},
    {"S", {"SEL", "ARE"}, 0, "SELect AREa", nullptr},
    {"S", {"SEL", "OBJ"}, 0, "SELect OBJect", nullptr},
    {"S", {"SEL", "PIN"}, 0, "SELect PIN", nullptr},
    {"S", {"SEL", "PRO"}, 0, "SELect PROperty", nullptr},
    {"S", {"SEN"}, 0, "SENd", nullptr},
    {"S", {"SHO", "FIL"}, 0, "SHOw FILe", kv_showfile_cmd},
    {"S", {"SHO", "LIN"}, 0, "SHOw LINk", nullptr},
    {"S", {"SMA", "O"}, 0, "SMAsh ON, SMAsh OFF", nullptr},
    {"S", {"SNA", "O"}, 0, "SNAp ON, SNAp OFF", nullptr},
    {"S", {"STA", "KEY"}, 0, "STAtus KEY", nullptr},
    {"S", {"STA", "MEN"}, 0, "STAtus MENu", nullptr},
    {"S", {"STA", "NET"}, 0, "STAtus NET", nullptr},
    {"S", {"STA", "OBJ"}, 0, "STAtus OBJect", nullptr},
    {"S", {"STA", "PRO"}, 0, "STAtus PROperty", nullptr},
    {"S", {"SYST"}, 0, "SYSTem", nullptr, kv_system},
    {"TU", {"TIM", "STE"}, 0, "TIMe STEp", nullptr},
    {"TU", {"TRANS", "O"}, 0, "TRANScript ON, TRANScript OFF", kv_transcript_cmd},
    {"TU", {"UNS", "AL"}, 0, "UNSelect ALL", nullptr},
    {"TU", {"UNS", "AR"}, 0, "UNSelect AREa", nullptr},
    {"VWXYZ", {"VIE", "AL"}, 0, "VIEw ALL", nullptr},
    {"VWXYZ", {"VIE", "AR"}, 0, "VIEw AREa", nullptr},
    {"VWXYZ", {"VIE", "DOW"}, 0, "VIEw DOWn", nullptr},
    {"VWXYZ", {"VIE", "SHE"}, 0, "VIEw SHEet", nullptr},
    {"VWXYZ", {"VIE", "UP"}, 0, "VIEw UP", nullptr},
    {"$", {"$C"}, 4, "$CU1, $CD1, $CL1, $CR1, $CU4, $CD4, $CL4, $CR4", nullptr, kv_move},
    {"$", {"$VPT"}, 0, "$VPTU5, $VPTD5, $VPTL5, $VPTR5, and with 20 and 80", nullptr, kv_move},
    {"$", {"$PMENU"}, 6, "$PMENU", nullptr},
    {"$", {"$RMENU"}, 6, "$RMENU", nullptr},
    {"$", {"$DM1"}, 0, "$DM1", nullptr},
    {"$", {"$XIM"}, 0, "$XIM", nullptr},
    // clang-format on
};

bool matches(const kv_command_row_t& row, const kv_command_t& command) {
  if (row.exact != 0 && command.word(1).size() != row.exact) return false;
  for (std::size_t i = 0; i < row.keywords.size() && !row.keywords[i].empty(); ++i)
    if (!gx_equal(row.keywords[i], command.word(static_cast<int>(i + 1)))) return false;
  return true;
}
}  // namespace

std::span<const kv_command_row_t> kv_command_table() { return command_table; }

const kv_command_row_t* kv_find_command(const kv_command_t& command) {
  const auto row = std::find_if(std::begin(command_table), std::end(command_table),
                                [&](const auto& candidate) { return matches(candidate, command); });
  return row == std::end(command_table) ? nullptr : row;
}

bool kv_begins_command(char c) {
  const char upper = gx_upper_case(c);
  return std::any_of(std::begin(command_table), std::end(command_table), [&](const auto& row) {
    return row.initials.find(upper) != std::string_view::npos;
  });
}
