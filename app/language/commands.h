// What a command handler receives, and how handlers answer.
#pragma once

#include <span>
#include <string_view>

#include "app/state.h"
#include "gx/text/message_list.h"

// One command: its words (word 1 is the keyword, at most 30) and the tables of its level.
struct kv_command_t {
  std::span<const gx_string_record_t> words;
  kv_array_param_t& args;
  kv_array_param_t& vars;

  int count() const { return static_cast<int>(words.size()); }
  // Word n, from 1; empty when there is none.
  std::string_view word(int n) const {
    return n >= 1 && n <= count() ? gx_view(words[static_cast<std::size_t>(n - 1)])
                                  : std::string_view{};
  }
  bool has_count(int least, int most) const { return count() >= least && count() <= most; }
};
using kv_handler_t = void (*)(const kv_command_t& command);

// --- answers in the list viewport
inline constexpr std::string_view kv_bad_count = "# !! Error : parameter number invalid ? ";
// Shows one line: `keyword` to the letter (" SMAsh ON ", "# SMAsh "), then the words from `first`
// on, each followed by a blank.
void kv_echo(std::string_view keyword, const kv_command_t& command, int first = 2);
// The same and then the error line.
void kv_refuse(std::string_view keyword, const kv_command_t& command, std::string_view error,
               int first = 2);
// A typed text without its quotes: what lies between the first quote and the next equal one,
// followed by a blank; a text without such a pair as it is.
gx_string_record_t kv_unquote(std::string_view text);

// --- the interpreter
// Runs every command of the line with the tables behind $ARG and $VAR. Both may change: they are
// normalised, and ASSIgn and READln store into `vars`.
void kv_process_command(const gx_string_record_t& line, kv_array_param_t& args,
                        kv_array_param_t& vars);
// Runs a shell command (1..508 characters) and then each line of its output as a command line.
void kv_exec_cmd(std::string_view text);
// Replaces the command line by the command that it begins, with the present settings.
void kv_expand_cmd(const gx_string_record_t& line);
// Whether the user asks by Control+A to stop a running command file or the output of a program.
bool kv_stop_asked();
void kv_process_events(bool first, kv_array_param_t& args, kv_array_param_t& vars);

// --- handlers, one row of the command table each (command_table.cpp)
void kv_activate_symbol_cmd(const kv_command_t&);
void kv_base_point_cmd(const kv_command_t&);
void kv_bye_cmd(const kv_command_t&);
void kv_define_key_cmd(const kv_command_t&);
void kv_define_menu_cmd(const kv_command_t&);
void kv_do_cmd(const kv_command_t&);
void kv_dobin_cmd(const kv_command_t&);
void kv_dodirbin_cmd(const kv_command_t&);
void kv_display_cmd(const kv_command_t&);
void kv_command_cmd(const kv_command_t&);
void kv_change_prop_switches_cmd(const kv_command_t&);
void kv_check_sheet_cmd(const kv_command_t&);
void kv_generate_data_cmd(const kv_command_t&);
void kv_give_cmd(const kv_command_t&);
void kv_grid_state_cmd(const kv_command_t&);
void kv_grid_step_cmd(const kv_command_t&);
void kv_hardcopy_cmd(const kv_command_t&);
void kv_help_cmd(const kv_command_t&);
void kv_list_object_cmd(const kv_command_t&);
void kv_mark_rectangle_cmd(const kv_command_t&);
void kv_mark_cmd(const kv_command_t&);
void kv_draw_menu_cmd(const kv_command_t&);
void kv_parameter_cmd(const kv_command_t&);
void kv_plot_cmd(const kv_command_t&);
void kv_pop_cmd(const kv_command_t&);
void kv_print_menu_cmd(const kv_command_t&);
void kv_primitive_cmd(const kv_command_t&);
void kv_property_instance_cmd(const kv_command_t&);
void kv_property_net_cmd(const kv_command_t&);
void kv_property_pin_cmd(const kv_command_t&);
void kv_read_menu_cmd(const kv_command_t&);
void kv_readln_cmd(const kv_command_t&);
void kv_run_cmd(const kv_command_t&);
void kv_run_menu_cmd(const kv_command_t&);
void kv_quit_cmd(const kv_command_t&);
void kv_search_cmd(const kv_command_t&);
void kv_select_area_cmd(const kv_command_t&);
void kv_select_object_cmd(const kv_command_t&);
void kv_select_pin_cmd(const kv_command_t&);
void kv_select_prop_cmd(const kv_command_t&);
void kv_send_cmd(const kv_command_t&);
void kv_showfile_cmd(const kv_command_t&);
void kv_show_link_cmd(const kv_command_t&);
void kv_smash_cmd(const kv_command_t&);
void kv_snap_cmd(const kv_command_t&);
void kv_status_key_cmd(const kv_command_t&);
void kv_status_menu_cmd(const kv_command_t&);
void kv_status_net_cmd(const kv_command_t&);
void kv_status_object_cmd(const kv_command_t&);
void kv_status_prop_cmd(const kv_command_t&);
void kv_time_step_cmd(const kv_command_t&);
void kv_store_size_cmd(const kv_command_t&);
void kv_transcript_cmd(const kv_command_t&);
void kv_unselect_all_cmd(const kv_command_t&);
void kv_unselect_area_cmd(const kv_command_t&);
void kv_view_all_cmd(const kv_command_t&);
void kv_view_area_cmd(const kv_command_t&);
void kv_view_down_cmd(const kv_command_t&);
void kv_view_sheet_cmd(const kv_command_t&);
void kv_view_up_cmd(const kv_command_t&);
