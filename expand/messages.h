// What an expansion reports, as data: one table gives each message its name, its kind and its lines
// with places for a path and values. Lines, counters and findings come from the record.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class kv_message : std::uint8_t {
  // of the run as a whole
  run_begins,
  no_primitive,
  no_property,
  no_sheet,
  processing,
  stopped,
  too_large_for_memory,
  design_too_large,
  too_many_levels,
  path_too_long,
  object_deleted,
  member_unused,
  // of its files
  listing_not_opened,
  other_session,
  design_in_use,
  not_written,
  // of symbols and sheets
  symbol_version_invalid,
  symbol_missing,
  symbol_not_current,
  block_symbol_missing,
  block_version_invalid,
  block_version_old,
  sheet_missing,
  sheet_damaged,
  sheet_not_whole,
  sheet_unchecked,
  sheet_with_errors,
  no_sheet_below,
  // of ports, globals, nets and pins
  port_unnamed,
  ports_joined,
  globals_joined,
  globals_meet,
  globals_meet_below,
  global_on_bus_pin,
  global_beyond_bus,
  init_of_global,
  init_of_port,
  init_of_net,
  port_without_pin,
  port_misfit,
  bus_invalid,
  pin_without_net,
  pin_beyond_bus,
  pin_off_chain,
  pins_uncounted,
  pintype_missing,
  pintype_invalid,
  // of properties
  timing_invalid,
  timing_too_big,
  value_invalid,
};
inline constexpr std::size_t kv_message_count =
    static_cast<std::size_t>(kv_message::value_invalid) + 1;

// How much a message matters. Errors and warnings count for the session; a refusal is an error that
// does not, a note says more about an error that was counted.
enum class kv_message_kind : std::uint8_t { plain, note, warning, error, refusal };

// One line of a message: the head marks it as a line, the rest is words. In the words "%p" is the
// path, "%1" the first value.
struct kv_message_line_t {
  std::string_view head, words;
  bool optional = false;  // left out when its last value is empty
};

struct kv_message_row_t {
  kv_message code;
  std::string_view name;  // "pin-without-net"
  kv_message_kind kind;
  std::array<kv_message_line_t, 4> lines;  // those with neither head nor words are none
};

std::span<const kv_message_row_t, kv_message_count> kv_messages();
const kv_message_row_t& kv_row_of(kv_message code);
std::string_view kv_message_kind_name(kv_message_kind kind);  // "error"

// A message with its path ("" when it has none) and values. The texts are the caller's.
struct kv_told_t {
  kv_message code;
  std::string_view path;
  std::span<const std::string_view> values;
};

// The lines, with heads; the words alone, without heads and joined by blanks.
std::vector<std::string> kv_lines_of(const kv_told_t& told);
std::string kv_words_of(const kv_told_t& told);

// Writes the lines to the list and counts the message, unless a catcher takes it.
void kv_tell_message(const kv_told_t& told);
template <typename... Value>
void kv_tell(kv_message code, std::string_view path = {}, const Value&... values) {
  const std::array<std::string_view, sizeof...(Value)> views = {std::string_view(values)...};
  kv_tell_message({code, path, views});
}

// Who else gets each message that is written to the list, before its lines; none at first.
using kv_message_reader_t = void (*)(const kv_told_t& told);
void kv_set_message_reader(kv_message_reader_t reader);

// While a catcher lives, messages go to it, and neither to the list nor to the counters: for an
// expansion that another command makes. Catchers do not nest.
class kv_message_catcher {
 public:
  using take_t = std::function<void(const kv_told_t& told)>;
  explicit kv_message_catcher(take_t take);
  ~kv_message_catcher();
  kv_message_catcher(const kv_message_catcher&) = delete;
  kv_message_catcher& operator=(const kv_message_catcher&) = delete;
};
