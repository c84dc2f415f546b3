#include "app/language/command_table.h"

#include <algorithm>

#include "gx/text/strings.h"

namespace {
// Within the rows of an initial the first match counts, so a longer form stands before the shorter
// one that it begins with.
constexpr kv_command_row_t command_table[] = {
    // clang-format off
    {"A", {"ACT", "SYM"}, 0, "ACTivate SYMbol", kv_activate_symbol_cmd},
    {"A", {"ASSI"}, 0, "ASSIgn", nullptr, kv_assign},
    {"BD", {"BASE"}, 0, "BASEpoint", kv_base_point_cmd},
    {"BD", {"BYE"}, 3, "BYE", kv_bye_cmd},
    {"BD", {"DEF", "KEY"}, 0, "DEFine KEY", kv_define_key_cmd},
    {"BD", {"DEF", "MEN"}, 0, "DEFine MENu", kv_define_menu_cmd},
    {"BD", {"DO"}, 2, "DO", kv_do_cmd},
    {"BD", {"DOB"}, 0, "DOBin", kv_dobin_cmd},
    {"BD", {"DODIR"}, 0, "DODIRectbin", kv_dodirbin_cmd},
    {"BD", {"DISP"}, 0, "DISplay", kv_display_cmd},
    {"C", {"COM"}, 0, "COMmand", kv_command_cmd},
    {"C", {"CHA", "PRO", "SWI"}, 0, "CHAnge PROperty SWItches", kv_change_prop_switches_cmd},
    {"C", {"CHE", "SHE"}, 0, "CHEck SHEet", kv_check_sheet_cmd},
    {"EFGH", {"GEN", "DAT"}, 0, "GENerate DATa", kv_generate_data_cmd},
    {"EFGH", {"GIV"}, 0, "GIVE", kv_give_cmd},
    {"EFGH", {"G"}, 1, "GIVE", kv_give_cmd},
    {"EFGH", {"GRID", "O"}, 0, "GRId ON, GRId OFF", kv_grid_state_cmd},
    {"EFGH", {"GRID", "ST"}, 0, "GRId STep", kv_grid_step_cmd},
    {"EFGH", {"HAR"}, 0, "HARDcopy", kv_hardcopy_cmd},
    {"EFGH", {"HEL"}, 0, "HELp", kv_help_cmd},
    {"IKL", {"LIST", "OBJ"}, 0, "LIST OBJect", kv_list_object_cmd},
    {"MNO", {"MARK", "RECT"}, 4, "MARK RECTangle", kv_mark_rectangle_cmd},
    {"MNO", {"MARK"}, 4, "MARK", kv_mark_cmd},
    {"PQR", {"PARAM"}, 0, "PARAMeter", kv_parameter_cmd},
    {"PQR", {"PLO"}, 0, "PLOt", kv_plot_cmd},
    {"PQR", {"POP"}, 0, "POP", kv_pop_cmd},
    {"PQR", {"PRIMI"}, 0, "PRIMitive", kv_primitive_cmd},
    {"PQR", {"PRO", "INS"}, 0, "PROPerty INStance", kv_property_instance_cmd},
    {"PQR", {"PRO", "NET"}, 0, "PROPerty NET", kv_property_net_cmd},
    {"PQR", {"PRO", "PIN"}, 0, "PROPerty PIN", kv_property_pin_cmd},
    {"PQR", {"READ"}, 0, "READln", kv_readln_cmd},
    {"PQR", {"RUN"}, 0, "RUN", kv_run_cmd},
    {"PQR", {"QUIT"}, 4, "QUIT", kv_quit_cmd},
    {"S", {"SEA"}, 0, "SEArch", kv_search_cmd},
    {"S", {"SEL", "ARE"}, 0, "SELect AREa", kv_select_area_cmd},
    {"S", {"SEL", "OBJ"}, 0, "SELect OBJect", kv_select_object_cmd},
    {"S", {"SEL", "PIN"}, 0, "SELect PIN", kv_select_pin_cmd},
    {"S", {"SEL", "PRO"}, 0, "SELect PROperty", kv_select_prop_cmd},
    {"S", {"SEN"}, 0, "SENd", kv_send_cmd},
    {"S", {"SHO", "FIL"}, 0, "SHOw FILe", kv_showfile_cmd},
    {"S", {"SHO", "LIN"}, 0, "SHOw LINk", kv_show_link_cmd},
    {"S", {"SMA", "O"}, 0, "SMAsh ON, SMAsh OFF", kv_smash_cmd},
    {"S", {"SNA", "O"}, 0, "SNAp ON, SNAp OFF", kv_snap_cmd},
    {"S", {"STA", "KEY"}, 0, "STAtus KEY", kv_status_key_cmd},
    {"S", {"STA", "MEN"}, 0, "STAtus MENu", kv_status_menu_cmd},
    {"S", {"STA", "NET"}, 0, "STAtus NET", kv_status_net_cmd},
    {"S", {"STA", "OBJ"}, 0, "STAtus OBJect", kv_status_object_cmd},
    {"S", {"STA", "PRO"}, 0, "STAtus PROperty", kv_status_prop_cmd},
    {"S", {"STO", "SIZ"}, 0, "STOre SIZe", kv_store_size_cmd},
    {"S", {"SYST"}, 0, "SYSTem", nullptr, kv_system},
    {"TU", {"TIM", "STE"}, 0, "TIMe STEp", kv_time_step_cmd},
    {"TU", {"TRANS", "O"}, 0, "TRANScript ON, TRANScript OFF", kv_transcript_cmd},
    {"TU", {"UNS", "AL"}, 0, "UNSelect ALL", kv_unselect_all_cmd},
    {"TU", {"UNS", "AR"}, 0, "UNSelect AREa", kv_unselect_area_cmd},
    {"VWXYZ", {"VIE", "AL"}, 0, "VIEw ALL", kv_view_all_cmd},
    {"VWXYZ", {"VIE", "AR"}, 0, "VIEw AREa", kv_view_area_cmd},
    {"VWXYZ", {"VIE", "DOW"}, 0, "VIEw DOWn", kv_view_down_cmd},
    {"VWXYZ", {"VIE", "SHE"}, 0, "VIEw SHEet", kv_view_sheet_cmd},
    {"VWXYZ", {"VIE", "UP"}, 0, "VIEw UP", kv_view_up_cmd},
    {"$", {"$C"}, 4, "$CU1, $CD1, $CL1, $CR1, $CU4, $CD4, $CL4, $CR4", nullptr, kv_move},
    {"$", {"$VPT"}, 0, "$VPTU5, $VPTD5, $VPTL5, $VPTR5, and with 20 and 80", nullptr, kv_move},
    {"$", {"$PMENU"}, 6, "$PMENU", kv_print_menu_cmd},
    {"$", {"$RMENU"}, 6, "$RMENU", kv_read_menu_cmd},
    {"$", {"$DM1"}, 0, "$DM1", kv_draw_menu_cmd},
    {"$", {"$XIM"}, 0, "$XIM", kv_run_menu_cmd},
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
