// Key names and their binding tables. One table describes all names; parsing a name and
// listing the bindings both walk it. Running a binding is the event loop's part.
#include "gx/display/input/keys.h"

#include <array>
#include <span>

#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

using slots_t = std::span<gx_string_record_t>;
using names_t = std::span<const std::string_view>;

template <auto Table>
slots_t slots() {
  return gx_vext.*Table;
}

constexpr std::array<std::string_view, 12> functions = {"1", "2", "3", "4",  "5",  "6",
                                                        "7", "8", "9", "10", "11", "12"};
constexpr std::array<std::string_view, 4> arrows = {"u", "l", "d", "r"};
constexpr std::array<std::string_view, 3> buttons = {"1", "2", "3"};
constexpr std::array<std::string_view, 13> letters = {"n", "o", "p", "q", "r", "s", "t",
                                                      "u", "v", "w", "x", "y", "z"};
constexpr std::array<std::string_view, gx_nb_of_other_keys> others = {"tab", "esc", "cntl_f", "wu",
                                                                      "wd",  "wus", "wds"};

// The names stem + key + suffix; key k has slot first + k * step of its table.
struct key_row_t {
  std::string_view stem;
  names_t keys;
  std::string_view suffix;
  slots_t (*table)();
  std::size_t first = 0, step = 1;
};

using state_t = gx_defref_var_rec_t;
constexpr key_row_t rows[] = {
    {"f", functions, "", slots<&state_t::action_f>},
    {"f", functions, "s", slots<&state_t::action_fs>},
    {"f", functions, "c", slots<&state_t::action_fc>},
    {"f", functions, "a", slots<&state_t::action_fa>},
    {"f", functions, "u", slots<&state_t::action_fup>},
    {"f", functions, "us", slots<&state_t::action_fsup>},
    {"f", functions, "uc", slots<&state_t::action_fcup>},
    {"f", functions, "ua", slots<&state_t::action_faup>},
    {"a", arrows, "", slots<&state_t::action_a>},
    {"a", arrows, "s", slots<&state_t::action_as>},
    {"a", arrows, "c", slots<&state_t::action_ac>},
    {"a", arrows, "a", slots<&state_t::action_aa>},
    {"b", buttons, "", slots<&state_t::action_but>, 0, 2},
    {"b", buttons, "u", slots<&state_t::action_but>, 1, 2},
    {"cntl_", letters, "", slots<&state_t::action_ck>},
    {"", others, "", slots<&state_t::action_other>},
};

gx_string_record_t& slot(const key_row_t& row, std::size_t key) {
  return row.table()[row.first + key * row.step];
}

// The slot of a key name; null when it names no key.
gx_string_record_t* find_slot(std::string_view name) {
  for (const key_row_t& row : rows) {
    if (name.size() <= row.stem.size() + row.suffix.size()) continue;
    const std::size_t key_end = name.size() - row.suffix.size();
    if (!gx_equal(row.stem, name) || !gx_iden(row.suffix, name.substr(key_end))) continue;
    const std::string_view key = name.substr(row.stem.size(), key_end - row.stem.size());
    for (std::size_t k = 0; k < row.keys.size(); ++k) {
      if (gx_iden(row.keys[k], key)) return &slot(row, k);
    }
  }
  return nullptr;
}

}  // namespace

bool gx_set_key_action(std::string_view key_name, std::string_view action) {
  gx_string_record_t* const found = find_slot(key_name);
  if (found != nullptr) *found = gx_string(action);
  return found != nullptr;
}

bool gx_get_key_action(std::string_view key_name, gx_string_record_t& action) {
  const gx_string_record_t* const found =
      key_name == "B2" || key_name == "B3" ? nullptr : find_slot(key_name);
  action = found != nullptr ? *found : gx_string_record_t{};
  return found != nullptr;
}

void gx_status_key_all() {
  for (const key_row_t& row : rows) {
    for (std::size_t k = 0; k < row.keys.size(); ++k) {
      const std::string_view action = gx_view(slot(row, k));
      if (gx_is_blank(action)) continue;
      gx_string_record_t line = gx_string("# KEY : ");
      gx_concat_all(line, row.stem, row.keys[k], row.suffix, " ", action, " ");
      gx_display_list(gx_view(line));
    }
  }
}
