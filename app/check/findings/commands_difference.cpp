// DIFference DESign: what changed electrically from an older design to the one that RUN made.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "app/check/findings/changed_places.h"
#include "app/check/findings/listed_places.h"
#include "app/find/highlights.h"
#include "app/language/answers.h"
#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "compare/words.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/text_files.h"
#include "kvi/load.h"

namespace {

constexpr std::string_view difference_words = "# DIFference DESign ";
constexpr std::size_t most_changes = 1000;  // that are reported and marked

// The changes from the design of a directory or file; nothing, and why.
std::optional<std::vector<kv_change_t>> changes_since(const kv_expanded_t& expanded,
                                                      const std::string& old, std::string& fault) {
  kvi_design_t design;
  const kvi_loaded_t loaded = kvi_open_design(design, old);
  fault = loaded.message;
  if (loaded.result != kvi_load_result::loaded) return std::nullopt;
  auto changes = kv_compare(kv_compared(kvi_netlist_t(design)), kv_compared(expanded.netlist));
  if (design.is_unchanged()) return changes;
  fault = kvi_changed_message(old);
  return std::nullopt;
}

void tell_change(const kv_expanded_t& expanded, const kv_change_t& change,
                 std::vector<kv_changed_object_t>& marked) {
  kv_changed_place_t place = kv_changed_place(expanded, change);
  const std::string words = kv_change_text(change);
  const std::size_t number = kv_pext.listed_places.size() + 1;
  gx_tell_wrapped("# " + std::to_string(number) + " " + kv_change_sign(change.change) + " " +
                  words);
  kv_record("change", {{"number", number},
                       {"change", kv_change_word(change.change)},
                       {"before", change.before},
                       {"after", change.after},
                       {"path", place.path},
                       {"words", words}});
  if (place.marked) marked.push_back(std::move(*place.marked));
  kv_pext.listed_places.push_back(
      {std::move(place.path), std::move(place.at), place.object_id, words});
}

void kv_difference_design_cmd(const kv_command_t& command) {
  const auto expanded = kv_expanded();
  if (!expanded) return kv_refuse(difference_words, command, kv_no_expansion, 3);
  const std::string old(gx_view(gx_resolve_path(kv_file_name(command.word(3)))));
  std::string fault;
  const auto changes = changes_since(*expanded, old, fault);
  if (!changes) return kv_refuse(difference_words, command, "# !! Error : " + fault, 3);
  const gx_list_batch_t batch;
  kv_begin_list(kv_listed::changes);
  std::vector<kv_changed_object_t> marked;
  std::size_t told = 0;
  for (const kv_change_t& change : *changes) {
    if (change.in_new_branch || ++told > most_changes) continue;
    tell_change(*expanded, change, marked);
  }
  if (told > most_changes) gx_tell("# ... and more ");
  kv_highlight_changed(std::move(marked));
  kv_redraw_views();
  gx_tell("# DIFference DESign > ",
          told < 2 ? "nb_change  = " : "nb_changes = ", std::to_string(told), " ");
  kv_record("counts", {{"changes", told}});
  kv_echo(" DIFference DESign ", command, 3);
}

constexpr kv_command_row_t difference_rows[] = {
    {{"DIF", "DES"}, "DIFference DESign old", kv_difference_design_cmd, difference_words, 3},
};

}  // namespace

kv_command_rows_t kv_difference_commands() { return difference_rows; }
