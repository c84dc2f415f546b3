// CHEck SHEet: the run over the sheet in the edit viewport, its reference file and its summary.
#include <string>
#include <vector>

#include "app/check/check_rules.h"
#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "gx/db/owners.h"
#include "gx/db/undo.h"
#include "gx/display/draw.h"
#include "gx/text/debug.h"
#include "gx/text/message_list.h"
#include "gx/vext.h"

namespace {

constexpr std::string_view echo = "# CHEck  SHEet  ";

void show_unwritable(const std::string& path) {
  gx_debug("!! ERROR :  CHECK_SHEET : file_ref_path not open : \"%s\" \n", path.c_str());
  gx_tell(" !! impossible to open : ");
  gx_tell(" !! \"", path, "\" ");
}

// Symbols that no instance names leave the sheet.
void delete_unused_symbols(const kv_check_t& check) {
  std::vector<bool> used(static_cast<std::size_t>(check.file.object_id_max) + 1);
  for (const int inst : lb_instances(check.file)) {
    used[static_cast<std::size_t>(gx_instance_info_ptr(check.file, inst).symbol)] = true;
  }
  for (const int symbol : lb_symbols(check.file)) {
    if (!used[static_cast<std::size_t>(symbol)] && !gx_inq_object_deleted(check.file, symbol)) {
      lb_delete_symbol_prim(check.file_index, symbol);
    }
  }
}

void show_count(std::string_view one, std::string_view many, int count) {
  gx_tell("# CHEck  SHEet > ", count < 2 ? one : many, std::to_string(count), " ");
}

void kv_check_sheet_cmd(const kv_command_t& command) {
  const auto view = kv_edit_view();
  if (!view.has_sheet()) {
    return kv_refuse(echo, command, "# !! Error : No Valid current sheet ? : ", 3);
  }
  const auto& slot = gx_vext.filear[static_cast<std::size_t>(view.file_index)];
  kv_reference_file reference(gx_view(slot.file_pathname));
  kv_echo(echo, command, 3);
  if (!reference.is_open()) return show_unwritable(reference.path());

  gx_undo_define_new_step();
  kv_check_t check = {view.file_index, view.file(), reference, 0, 0, {}, {}, {}, {}};
  kv_check_instances(check);
  kv_check_instance_names(check);
  kv_check_nets(check);
  kv_check_frames(check);
  kv_check_net_names(check);
  delete_unused_symbols(check);

  show_count("nb_error    = ", "nb_errors   = ", check.errors);
  show_count("nb_warning  = ", "nb_warnings = ", check.warnings);
  kv_echo(" CHEck  SHEet ", command, 3);
  if (!reference.finish()) show_unwritable(reference.path());
  kv_redraw_views();
}

constexpr kv_command_row_t rows[] = {
    // clang-format off
    {{"CHE", "SHE"}, "CHEck SHEet [comment]", kv_check_sheet_cmd, echo, 3},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_check_commands() { return rows; }
