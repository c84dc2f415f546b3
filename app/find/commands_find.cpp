// FINd PATh: from a path to the drawing. VIEw LASt: back to where the view was.
#include <string>

#include "app/find/expanded.h"
#include "app/find/find_path.h"
#include "app/find/go_to.h"
#include "app/language/answers.h"
#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "app/sheet/views.h"
#include "expand/store.h"
#include "gx/text/at.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"

namespace {

constexpr std::size_t most_listed = 20;
constexpr std::string_view find_path_words = "# FINd PATh ";

std::string handle_of(const kv_found_t& found) {
  const bool is_inst = found.what == "instance" || found.what == "block";
  return (is_inst ? "I_" : found.what == "pin" ? "P_" : "N_") + std::to_string(found.object_id);
}

// "/XR/X2/MP1  instance I_27".
std::string words_of(const kv_found_t& found) {
  return found.path + "  " + std::string(found.what) + " " + handle_of(found);
}

void record(const kv_found_t& found) {
  kv_record("place", {{"path", found.path}, {"what", found.what}, {"handle", handle_of(found)}});
}

void go_to(kv_drawings_t& drawings, const kv_found_t& found, const kv_command_t& command) {
  const auto expanded = kv_expanded();
  const auto way = found.visit >= 0 && expanded ? kv_way_of_visit(*expanded, drawings, found.visit)
                                                : kv_way_to(drawings, found.sheet_path);
  const std::string fault = way ? kv_go_along(drawings, *way, found.object_id)
                                : "no such sheet : \"" + found.sheet_path + "\"";
  if (!fault.empty()) {
    kv_refuse(find_path_words, command, "# !! Error : Drawing not as it was expanded ? ", 3);
    return gx_tell_detail("# !! ", fault);
  }
  gx_tell_wrapped(" FINd PATh " + words_of(found) + " ");
  record(found);
}

void list_found(const std::vector<kv_found_t>& found, const kv_command_t& command) {
  kv_pext.found_of_run = kv_sext.origins.run;
  kv_pext.found = found;
  if (kv_pext.found.size() > most_listed) kv_pext.found.resize(most_listed);
  int number = 0;
  for (const auto& each : kv_pext.found) {
    const std::string count = std::to_string(++number);
    gx_tell_wrapped((count.size() < 2 ? "#  " : "# ") + count + "  " + words_of(each));
    record(each);
  }
  if (found.size() > most_listed) gx_tell("# ... and more ");
  kv_echo(" FINd PATh ", command, 3);
}

// The place of that number in the last list; null when the word is no such number.
const kv_found_t* listed(std::string_view word) {
  const auto number = gx_string_to_int32(word);
  const bool is_there = !number.error && number.value >= 1 &&
                        static_cast<std::size_t>(number.value) <= kv_pext.found.size() &&
                        kv_pext.found_of_run == kv_sext.origins.run;
  return is_there ? &gx_at(kv_pext.found, number.value - 1) : nullptr;
}

void kv_find_path_cmd(const kv_command_t& command) {
  kv_drawings_t drawings;
  if (drawings.top() == nullptr) return kv_refuse(find_path_words, command, kv_no_sheet, 3);
  const std::string_view word = command.word(3);
  if (const auto* found = listed(word)) return go_to(drawings, *found, command);
  const kv_search_t search = kv_search_path(drawings, word, most_listed + 1);
  if (search.found.empty()) {
    kv_refuse(find_path_words, command, "# !! Error : Path not found ? ", 3);
    return kv_tell_search_end("", search);
  }
  if (search.found.size() == 1) return go_to(drawings, search.found.front(), command);
  list_found(search.found, command);
}

void kv_view_last_cmd(const kv_command_t& command) {
  constexpr std::string_view refused_last = "# VIEw LASt ";
  const auto view = kv_take_last_view();
  if (!view) return kv_refuse(refused_last, command, "# !! Error : NO view to go back to ? ", 3);
  if (const std::string fault = kv_go_back(*view); !fault.empty()) {
    kv_refuse(refused_last, command, "# !! Error : No Sheet Available ? : ", 3);
    return gx_tell_detail("# !! ", fault);
  }
  gx_tell(" VIEw LASt ");
}

constexpr kv_command_row_t find_rows[] = {
    {{"FIN", "PAT"}, "FINd PATh path or number", kv_find_path_cmd, find_path_words, 3},
    {{"VIE", "LAS"}, "VIEw LASt", kv_view_last_cmd, "# VIEw LASt ", 3},
};

}  // namespace

kv_command_rows_t kv_find_commands() { return find_rows; }
