#include "app/language/command_table.h"

#include <algorithm>
#include <vector>

#include "app/language/command.h"
#include "gx/text/strings.h"

namespace {
std::vector<kv_command_row_t> joined_rows() {
  std::vector<kv_command_row_t> rows;
  for (const auto& part : {kv_view_commands(),      kv_navigate_commands(),  kv_grid_commands(),
                           kv_mark_commands(),      kv_select_commands(),    kv_name_commands(),
                           kv_status_commands(),    kv_check_commands(),     kv_expand_commands(),
                           kv_simulator_commands(), kv_file_commands(),      kv_variable_commands(),
                           kv_session_commands(),   kv_key_commands(),       kv_menu_commands(),
                           kv_move_commands(),      kv_find_commands(),      kv_explain_commands(),
                           kv_highlight_commands(), kv_hierarchy_commands(), kv_finding_commands(),
                           kv_values_commands(),    kv_condition_commands(), kv_shown_commands(),
                           kv_tree_commands(),      kv_difference_commands()}) {
    rows.insert(rows.end(), part.begin(), part.end());
  }
  return rows;
}

bool matches(const kv_command_row_t& row, const kv_command_t& command) {
  if (row.exact != 0 && command.word(1).size() != row.exact) return false;
  for (std::size_t i = 0; i < row.keywords.size() && !row.keywords[i].empty(); ++i)
    if (!gx_equal(row.keywords[i], command.word(static_cast<int>(i + 1)))) return false;
  return true;
}
}  // namespace

kv_command_rows_t kv_command_table() {
  static const std::vector<kv_command_row_t> rows = joined_rows();
  return rows;
}

const kv_command_row_t* kv_find_command(const kv_command_t& command) {
  const auto rows = kv_command_table();
  const auto row = std::ranges::find_if(
      rows, [&](const kv_command_row_t& candidate) { return matches(candidate, command); });
  return row == rows.end() ? nullptr : &*row;
}
