#include "expand/messages.h"

#include <utility>

#include "gx/text/at.h"
#include "gx/text/messages/message_list.h"

namespace {

using enum kv_message_kind;

constexpr std::string_view echo = "";  // of the command: a line that is no complaint
constexpr std::string_view fault = "# !! Error : ";
constexpr std::string_view mark = "# !! ";
constexpr std::string_view more = "# !! : ";
// Of blocks: the marks of these lines differ from those of all others.
constexpr std::string_view block_fault = "!! Error : ";
constexpr std::string_view checked_fault = "#  !! Error : ";

constexpr std::array<kv_message_row_t, kv_message_count> rows = {{
    // clang-format off
    {kv_message::run_begins, "run-begins", plain, {{{echo, " RUN "}}}},
    {kv_message::no_primitive, "no-primitive", refusal,
     {{{echo, "# RUN "}, {fault, "No property to define the PRIMITIVE ? "}}}},
    {kv_message::no_property, "no-property", refusal,
     {{{echo, "# RUN "}, {fault, "No property to keep on %1 ? "}}}},
    {kv_message::no_sheet, "no-sheet", refusal,
     {{{echo, "# RUN "}, {fault, "No Sheet available to expand ? "}}}},
    {kv_message::processing, "processing", plain, {{{"# ", "Processing : \"%p\""}}}},
    {kv_message::stopped, "stopped", plain, {{{"# ", "RUN stopped"}}}},
    {kv_message::too_large_for_memory, "too-large-for-memory", error,
     {{{fault, "Design too large for this memory : about %1 MB "}}}},
    {kv_message::design_too_large, "design-too-large", error,
     {{{fault, "Design too large : more than %1 records of the kind : %2"},
       {mark, "STOre SIZe sets how many "}, {mark, "Sheet : \"%p\""}}}},
    {kv_message::too_many_levels, "too-many-levels", error,
     {{{fault, "Too many sheet levels ? : %1"}}}},
    {kv_message::path_too_long, "path-too-long", error,
     {{{fault, "Path longer than 100 characters : "}, {mark, ": \"%p\""}}}},
    {kv_message::object_deleted, "object-deleted", error, {}},
    {kv_message::member_unused, "member-unused", warning,
     {{{"# !! WARNING : ", "PORT SubNET of BUS NOT USED ?? = %1"},
       {mark, "NET name  : \"%p\""}}}},

    {kv_message::listing_not_opened, "listing-not-opened", refusal,
     {{{echo, "# RUN "}, {fault, "Impossible to Open the file : "}, {"# ", "\"%1\""},
       {more, "%2"}}}},
    {kv_message::other_session, "other-session", note,
     {{{mark, "Another session holds this design : process %1"}}}},
    {kv_message::design_in_use, "design-in-use", refusal,
     {{{fault, "The design file is in use by another program "}}}},
    {kv_message::not_written, "not-written", error,
     {{{fault, "Expanded data not written whole in : \"%1\""}, {mark, "%2", true}}}},

    {kv_message::symbol_version_invalid, "symbol-version-invalid", error,
     {{{fault, "Invalid Version in pathname of : "}, {mark, ": \"%1\""},
       {mark, "using old symbol version  "}}}},
    {kv_message::symbol_missing, "symbol-missing", error,
     {{{fault, "Symbol of : \"%1\"  not found ? "}}}},
    {kv_message::symbol_not_current, "symbol-not-current", error,
     {{{mark, "Error on Version (not the current) of : "}, {mark, ": \"%1\""},
       {mark, "using old symbol version  "}}}},
    {kv_message::block_symbol_missing, "block-symbol-missing", error,
     {{{block_fault, "Symbol of Symbol  \"%1\"   not found ?"}, {mark, "%2", true}}}},
    {kv_message::block_version_invalid, "block-version-invalid", error,
     {{{block_fault, "Symbol File Version of \"%1\"  Invalid ? "}}}},
    {kv_message::block_version_old, "block-version-old", warning,
     {{{"!! Warning : ", "using old version of : \"%1\""}}}},
    {kv_message::sheet_missing, "sheet-missing", error,
     {{{block_fault, "Sheet of INStance  \"%1\"  not found ? "}, {mark, "%2", true}}}},
    {kv_message::sheet_damaged, "sheet-damaged", error,
     {{{block_fault, "Sheet of INStance \"%1\"  not found ? "}, {more, "%2"}}}},
    {kv_message::sheet_not_whole, "sheet-not-whole", error,
     {{{block_fault, "Sheet of INStance \"%1\"  Invalid ? "}, {more, "%2", true}}}},
    {kv_message::sheet_unchecked, "sheet-unchecked", error,
     {{{checked_fault, "Sheet of INStance \"%1\"  NOT CHECKED ? "}}}},
    {kv_message::sheet_with_errors, "sheet-with-errors", error,
     {{{checked_fault, "Sheet of INStance \"%1\"  WITH Error(s) ? "}}}},
    {kv_message::no_sheet_below, "no-sheet-below", note,
     {{{mark, "Error no sheet found for : "}, {mark, ": \"%p\""}}}},

    {kv_message::port_unnamed, "port-unnamed", error,
     {{{fault, "PORT without property NET : I_%1"}}}},
    {kv_message::ports_joined, "ports-joined", error,
     {{{"# !! Error :", "2 differents ports connected on same equipot: N_%1 \"%2\" \"%3\""}}}},
    {kv_message::globals_joined, "globals-joined", error,
     {{{"# !! Error :", "2 differents globals connected on same equipot: N_%1 \"%2\" \"%3\""}}}},
    {kv_message::globals_meet, "globals-meet", error,
     {{{mark, "Error Different Globals connected --> "}, {mark, "1rst Global name:\"%1\""},
       {mark, "2nd  Global name:\"%2\""}}}},
    {kv_message::globals_meet_below, "globals-meet-below", error,
     {{{mark, "Error Different Globals connected --> "}, {mark, "  Top Global name:\"%1\""},
       {mark, "child Global name:\"%2\""}}}},
    {kv_message::global_on_bus_pin, "global-on-bus-pin", error,
     {{{fault, "pin bus used for global : P_%1 \"%2\""}}}},
    {kv_message::global_beyond_bus, "global-beyond-bus", error,
     {{{fault, "Global out of the range of its Bus : \"%1\""}}}},
    {kv_message::init_of_global, "init-of-global", error,
     {{{mark, "INIT property on PIN of GLOBAL Invalid "}, {mark, "Global name  : \"%1\""},
       {mark, "INIT value  : \"%2\""}}}},
    {kv_message::init_of_port, "init-of-port", error,
     {{{mark, "INIT property on NET of PORT Invalid "}, {mark, "Port name  : \"%1\""},
       {mark, "INIT value  : \"%2\""}}}},
    {kv_message::init_of_net, "init-of-net", error,
     {{{mark, "INIT property on Local NET Invalid "}, {mark, "NET name  : \"%1\""},
       {mark, "INIT value  : \"%2\""}}}},
    {kv_message::port_without_pin, "port-without-pin", error,
     {{{mark, "Pin of INStance : \"%p\"    :   not found ? "}}}},
    {kv_message::port_misfit, "port-misfit", error,
     {{{mark, "Pin of INStance : \"%p\"    :   not compatible at level -1 ? "}}}},
    {kv_message::bus_invalid, "bus-invalid", error,
     {{{fault, "Range of Bus Invalid : \"%p\""}}}},
    {kv_message::pin_without_net, "pin-without-net", error,
     {{{fault, "Pin without Net : \"%p\""}}}},
    {kv_message::pin_beyond_bus, "pin-beyond-bus", error,
     {{{fault, "Pin out of the range of its Bus : \"%p\""}}}},
    {kv_message::pin_off_chain, "pin-off-chain", error,
     {{{fault, "Pin left off the chain of a Bus member : \"%p\""}}}},
    {kv_message::pins_uncounted, "pins-uncounted", warning,
     {{{"# !! WARNING : ", "More than 32767 pins on Net : \"%p\""}}}},
    {kv_message::pintype_missing, "pintype-missing", warning,
     {{{"# ? Warning ", "Pintype Not Defined so \"OUTPUT\" assumed FOR pin : %p"}}}},
    {kv_message::pintype_invalid, "pintype-invalid", error,
     {{{"# ? Error : ", "Invalid Pintype on Pin : "}, {"#  ", "Pin Path : \"%p\""}}}},

    {kv_message::timing_invalid, "timing-invalid", error,
     {{{mark, "Error on Timing Index : \"%p\""}, {mark, ": \"%1\""}}}},
    {kv_message::timing_too_big, "timing-too-big", error,
     {{{mark, "Error on Timing Index : \"%p\""}, {mark, ": \"%1\""},
       {mark, "Max value for Timing Index : \"120\""}}}},
    {kv_message::value_invalid, "value-invalid", error,
     {{{mark, "Error found on property value "}, {"#    ", "%1 Path : \"%p\""},
       {"#    ", "Property Name :  \"%2\""}, {"#    ", "Property Value :  \"%3\""}}}},
    // clang-format on
}};

constexpr bool are_in_order() {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].code != static_cast<kv_message>(i)) return false;
  }
  return true;
}
static_assert(are_in_order());

kv_message_catcher::take_t catcher;
kv_message_reader_t reader = nullptr;

gx_line_kind line_kind_of(kv_message_kind kind) {
  constexpr gx_line_kind kinds[] = {gx_line_kind::plain, gx_line_kind::detail,
                                    gx_line_kind::warning, gx_line_kind::error,
                                    gx_line_kind::error};
  return gx_at(kinds, kind);
}

// The value that a place names: 'p' or a digit.
std::string_view value_of(const kv_told_t& told, char place) {
  if (place == 'p') return told.path;
  const auto value = static_cast<std::size_t>(place - '1');
  return value < told.values.size() ? told.values[value] : std::string_view{};
}

void append_words(std::string& text, std::string_view words, const kv_told_t& told) {
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i] == '%') {
      text += value_of(told, words[++i]);
    } else {
      text += words[i];
    }
  }
}

// The lines that a message has, in their order.
template <typename Take>
void for_each_line(const kv_told_t& told, Take take) {
  for (const auto& line : kv_row_of(told.code).lines) {
    if (line.head.empty() && line.words.empty()) return;
    if (line.optional && value_of(told, line.words.back()).empty()) continue;
    take(line);
  }
}

std::string text_of(const kv_message_line_t& line, const kv_told_t& told) {
  std::string text(line.head);
  append_words(text, line.words, told);
  return text;
}

}  // namespace

std::span<const kv_message_row_t, kv_message_count> kv_messages() { return rows; }

const kv_message_row_t& kv_row_of(kv_message code) { return gx_at(rows, code); }

std::string_view kv_message_kind_name(kv_message_kind kind) {
  constexpr std::string_view names[] = {"plain", "note", "warning", "error", "refusal"};
  return gx_at(names, kind);
}

std::vector<std::string> kv_lines_of(const kv_told_t& told) {
  std::vector<std::string> lines;
  for_each_line(told, [&](const auto& line) { lines.push_back(text_of(line, told)); });
  return lines;
}

std::string kv_words_of(const kv_told_t& told) {
  std::string words;
  for_each_line(told, [&](const auto& line) {
    if (!words.empty()) words += ' ';
    append_words(words, line.words, told);
    while (words.ends_with(' ')) words.pop_back();
  });
  return words;
}

void kv_tell_message(const kv_told_t& told) {
  if (catcher) return catcher(told);
  if (reader != nullptr) reader(told);
  const gx_line_kind kind = line_kind_of(kv_row_of(told.code).kind);
  gx_line_kind next = kind;
  for_each_line(told, [&](const auto& line) {
    if (line.head == echo) return gx_tell(text_of(line, told));
    gx_tell_as(next, text_of(line, told));
    if (kind != gx_line_kind::plain) next = gx_line_kind::detail;
  });
  if (kv_row_of(told.code).kind != refusal) gx_count_kind(kind);
}

void kv_set_message_reader(kv_message_reader_t the_reader) { reader = the_reader; }

kv_message_catcher::kv_message_catcher(take_t take) { catcher = std::move(take); }

kv_message_catcher::~kv_message_catcher() { catcher = nullptr; }
