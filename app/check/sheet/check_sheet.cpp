// CHEck SHEet: the rules over the sheet in the edit viewport, its reference file and its summary.
#include <string>
#include <vector>

#include "app/check/sheet/check_reference.h"
#include "app/check/sheet/check_rules.h"
#include "app/language/answers.h"
#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "gx/db/undo.h"
#include "gx/display/sheet/draw.h"
#include "gx/text/at.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/message_list.h"
#include "gx/vext.h"

namespace {

constexpr std::string_view echo = "# CHEck  SHEet  ";

void show_unwritable(const std::string& path) {
  gx_debug("!! ERROR :  CHECK_SHEET : file_ref_path not open : \"%s\" \n", path.c_str());
  gx_tell_detail(" !! impossible to open : ");
  gx_tell_detail(" !! \"", path, "\" ");
}

void tell_lines(const kv_sheet_finding_t& finding) {
  constexpr std::string_view heads[] = {
      "# !! Error : ", "# !! Warning : ", "# !! warning : ", "## !! : ", "# !! ", "#    "};
  constexpr gx_line_kind kinds[] = {gx_line_kind::error,   gx_line_kind::warning,
                                    gx_line_kind::warning, gx_line_kind::detail,
                                    gx_line_kind::detail,  gx_line_kind::detail};
  for (const auto& line : finding.lines)
    gx_tell_as(gx_at(kinds, line.head), gx_at(heads, line.head), line.words);
}

void record_sheet_finding(const kv_sheet_finding_t& finding) {
  kv_record("finding", {{"severity", kv_severity_word(kv_row_of(finding.rule).severity)},
                        {"rule", kv_row_of(finding.rule).name},
                        {"object_id", finding.where.on_sheet},
                        {"words", kv_words_of(finding)}});
}

void select(const kv_view_t& view, const kv_mark_t& mark) {
  switch (mark.kind) {
    case kv_mark_t::object:
      return gx_set_object_selected(view.file(), mark.id, true);
    case kv_mark_t::properties:
      return gx_set_child_selected(view.file(), mark.id, true);
    case kv_mark_t::net:
      return lb_select_net(view.file_index, mark.id);
  }
}

// Symbols that no instance names leave the sheet.
void delete_unused_symbols(const kv_view_t& view) {
  const auto& file = view.file();
  std::vector<bool> used(static_cast<std::size_t>(file.object_id_max) + 1);
  for (const int inst : lb_instances(file)) {
    gx_at(used, gx_instance_info_ptr(file, inst).symbol) = true;
  }
  for (const int symbol : lb_symbols(file)) {
    if (!gx_at(used, symbol) && !gx_inq_object_deleted(file, symbol)) {
      lb_delete_symbol_prim(view.file_index, symbol);
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
  const auto& slot = gx_at(gx_vext.filear, view.file_index);
  kv_reference_file reference(gx_view(slot.file_pathname));
  kv_echo(echo, command, 3);
  if (!reference.is_open()) return show_unwritable(reference.path());

  gx_undo_define_new_step();
  kv_links_t links;
  const auto report = kv_check_sheet(view.file(), links, kv_names_compared);
  int errors = 0, warnings = 0;
  for (const auto& finding : report.findings) {
    if (finding.is_further) continue;
    ++(kv_row_of(finding.rule).severity == kv_severity::error ? errors : warnings);
    tell_lines(finding);
    record_sheet_finding(finding);
    for (const auto& mark : finding.marks) select(view, mark);
  }
  for (const auto& [symbol, path] : report.references) reference.add_symbol(symbol, path);
  delete_unused_symbols(view);

  kv_record("counts", {{"errors", errors}, {"warnings", warnings}});
  show_count("nb_error    = ", "nb_errors   = ", errors);
  show_count("nb_warning  = ", "nb_warnings = ", warnings);
  if (reference.finish()) {
    kv_echo(" CHEck  SHEet ", command, 3);
  } else {
    show_unwritable(reference.path());
  }
  kv_redraw_views();
}

constexpr kv_command_row_t check_rows[] = {
    // clang-format off
    {{"CHE", "SHE"}, "CHEck SHEet [comment]", kv_check_sheet_cmd, echo, 3},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_check_commands() { return check_rows; }
