// VIEw DOWn and VIEw UP: the edit viewport moves through the hierarchy of sheets, and the
// simulation path with it.
#include <string>

#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "app/sheet/views.h"
#include "app/sheet/walk.h"
#include "gx/db/object_access.h"
#include "gx/db/queries.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

bool is_file(int file_index) { return file_index >= 1 && file_index <= gx_max_files; }

// The file in the edit viewport must be that of the level.
void check_current(const char* operation, int level) {
  if (kv_pext.file_id_cur == kv_at_level(level).file_index) return;
  gx_debug(" %s  : file_id_cur INVALID : %d  %d\n", operation, kv_pext.file_id_cur,
           kv_at_level(level).file_index);
  gx_set_status(gx_code::file_data_invalid);
}

// --- down

constexpr std::string_view down_refused = "# VIEw DOWn ";

// The words in quotes, as the name of an instance may hold blanks.
void refuse_quoted(std::string_view keyword, const kv_command_t& command, std::string_view error,
                   int first) {
  std::string line(keyword);
  for (int n = first; n <= command.count(); ++n) {
    line += "\"" + std::string(command.word(n)) + "\"   ";
  }
  gx_tell(line);
  gx_display_list(error, gx_line_kind::error);
}

void refuse_down(const kv_command_t& command, std::string_view error) {
  refuse_quoted(down_refused, command, error, 3);
}

// The only instance that VIEw DOWn may mean; 0 after the refusal.
int instance_to_enter(const kv_command_t& command, const gx_file_gene_recf_t& file) {
  const bool by_name = command.count() == 3;
  int found = 0, count = 0;
  for (const int id : lb_instances(file)) {
    if (gx_inq_object_deleted(file, id)) continue;
    if (by_name) {
      const auto* name = lb_find_prop_inst(file, id, "INST");
      if (name == nullptr || !gx_iden(command.word(3), gx_view(name->nvalue))) continue;
    } else if (!gx_inq_object_selected(file, id)) {
      continue;
    }
    found = id;
    ++count;
  }
  if (count == 1) return found;
  if (count > 1) {
    refuse_down(command, by_name ? "# !! Error : More Than 1 Instance Found selected with \"INST\" "
                                 : "# !! Error : More Than 1 Instance Found selected ");
  } else {
    refuse_down(command, by_name ? "# !! Error : No Instance  with \"INST\" "
                                 : "# !! Error : No Instance Found selected ");
  }
  return 0;
}

// The directory of the sheet that an instance stands for; empty after the refusal.
gx_string_record_t directory_of(const gx_file_gene_recf_t& file, int inst,
                                const kv_command_t& command) {
  const auto directory = kv_sheet_directory(file, inst);
  if (directory.len > 0) return directory;
  const auto& symbol = gx_symbol_info_ptr(file, gx_instance_info_ptr(file, inst).symbol);
  gx_trace(" VIEW_DOWN_CMD  :invalid : file path  : \"", gx_view(symbol.path), "\"");
  refuse_down(command, "# !! Error : Symbol path without version ? : ");
  gx_tell_detail("# !! \"", gx_view(symbol.path), "\" ");
  return {};
}

// Opens the sheet into the slot of the level; false after the refusal.
bool open_at(int level, const gx_string_record_t& directory, const kv_command_t& command) {
  const bool reopened = kv_at_level(level).file_index != 0;
  const auto [opened, fault, why] = kv_open_level(level, directory);
  if (opened == kv_opened::yes) return true;
  if (fault) {
    kv_refuse("# VIEw DOWn  ", command, "# !! Error : No Sheet Available ? : ", 3);
    if (!why.empty()) gx_tell_detail("# !! ", gx_view(directory), "/sheet.gx : ", why);
    return false;
  }
  refuse_down(command, reopened ? "# !! Error : Sheet not found ? : "
                                : "# !! Error : Sheet not found or Invalid ? : ");
  gx_tell_detail(reopened ? "# !! \"" : "# !! : \"", gx_view(directory), "\" ");
  if (!why.empty()) gx_tell_detail("# !! ", why);
  return false;
}

// --- both

// Without the last name: of "a/b/", "a/".
gx_string_record_t without_last_name(const gx_string_record_t& path) {
  auto names = gx_view(path);
  if (names.ends_with('/')) names.remove_suffix(1);
  const auto slash = names.rfind('/');
  return gx_string(names.substr(0, slash == names.npos ? 0 : slash + 1));
}

void kv_view_down_cmd(const kv_command_t& command) {
  const int level = kv_pext.file_level_cur;
  if (!kv_is_level(level) || !is_file(kv_at_level(level).file_index)) {
    return refuse_down(command, "# !! Error : No valid design Sheet available ");
  }
  check_current("VIEW_DOWN_CMD", level);
  if (level == 1 && kv_pext.file_id_context != kv_pext.file_id_cur) {
    return refuse_down(command, "# !! Error : No valid design Sheet to view down in Context ");
  }
  const auto& file = gx_ptrto_gene_file_buf(kv_pext.file_id_cur);
  const int inst = instance_to_enter(command, file);
  if (inst == 0) return;
  const std::string name = lb_inst_name(file, inst);
  const auto directory = directory_of(file, inst, command);
  if (directory.len == 0) return;
  if (level == kv_max_levels) {
    return refuse_down(command, "# !! Error : Too many sheet levels ? : ");
  }
  if (!open_at(level + 1, directory, command)) return;
  gx_string_record_t path = kv_pext.cur_sim_path;
  gx_concat_all(path, name, "/");
  kv_remember_view();
  kv_stand_at(level + 1, path);
  kv_show_level();
  gx_tell(" VIEw DOWn  ", name);
}

void kv_view_up_cmd(const kv_command_t& command) {
  const auto refuse = [&](std::string_view error) { kv_refuse("# VIEw UP ", command, error, 3); };
  const int level = kv_pext.file_level_cur;
  if (!kv_is_level(level)) return refuse("# !! Error : No design Sheet available ");
  if (!is_file(kv_at_level(level).file_index)) {
    return refuse("# !! Error : No valid design Sheet available ");
  }
  check_current("VIEW_UP_CMD", level);
  if (level == 1) {
    return refuse(kv_pext.file_id_context == kv_pext.file_id_cur
                      ? "# !! Error : impossible to VIEw UP ( already at TOP ) "
                      : "# !! Error : No valid design Sheet to view up in Context ");
  }
  if (!is_file(kv_at_level(level - 1).file_index)) {
    return refuse("# !! Error : No VIEw UP valid design Sheet available ");
  }
  if (level - 1 > kv_pext.file_level_max) {
    gx_debug(" VIEW_UP_CMD  : level max INVALID : %d  %d\n", level - 1, kv_pext.file_level_max);
    gx_set_status(gx_code::file_data_invalid);
  }
  kv_remember_view();
  kv_stand_at(level - 1, without_last_name(kv_pext.cur_sim_path));
  kv_show_level();
  gx_tell(" VIEw UP  ");
}

constexpr kv_command_row_t navigate_rows[] = {
    // clang-format off
    {.keywords = {"VIE", "DOW"}, .syntax = "VIEw DOWn [instance]", .handler = kv_view_down_cmd, .refusal = down_refused, .first_echoed = 3, .refuse = refuse_quoted},
    {{"VIE", "UP"}, "VIEw UP", kv_view_up_cmd, "# VIEw UP ", 3},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_navigate_commands() { return navigate_rows; }
