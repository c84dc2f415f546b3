// DEFine MENu, STAtus MENu and the internal commands that show, run, print and read the menus.
#include <array>
#include <optional>
#include <span>

#include "app/language/command_row.h"
#include "app/session/input/menu_actions.h"
#include "gx/display/input/menu_draw.h"
#include "gx/display/input/menu_file.h"
#include "gx/display/input/menu_state.h"
#include "gx/display/input/menu_tree.h"
#include "gx/text/at.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

constexpr std::string_view refused = "# DEFine MENu ";
constexpr std::string_view item_syntax = "DEFine MENu Item 'label' i [j]";
constexpr std::size_t max_label = 18;

// The indices in the words from `first` on; nothing when one of them is not a number in 1..12.
struct menu_place_t {
  std::array<int, gx_max_menu_levels> index{};
  std::size_t level = 0;
  std::span<const int> view() const { return std::span(index).first(level); }
};
std::optional<menu_place_t> read_place(const kv_command_t& command, int first) {
  menu_place_t place;
  for (int n = first; n <= command.count(); ++n) {
    const auto number = gx_string_to_int16(command.word(n));
    if (number.error || number.value < 1 || number.value > gx_max_menu_lines) return {};
    place.index[place.level++] = number.value;
  }
  return place;
}

// The error about bad indices, by the number of indices given.
using place_errors_t = std::array<std::string_view, gx_max_menu_levels>;
constexpr place_errors_t item_errors = {"# !! Error : Invalid parameter 5  ? ",
                                        "# !! Error : Invalid parameter 5 or 6 ? "};
constexpr place_errors_t action_errors = {"# !! Error : Invalid parameter  6 ? ",
                                          "# !! Error : Invalid parameter 6 or 7 ? ",
                                          "# !! Error : Invalid parameter 6 or 7 or 8 ? ",
                                          "# !! Error : Invalid parameter 6,7,8 or 9 ? "};
constexpr place_errors_t status_errors = {"# !! Error : Invalid parameter  3 ? ",
                                          "# !! Error : Invalid parameter 3 or 4 ? ",
                                          "# !! Error : Invalid parameter 3 or 4 or 5 ? "};

std::string_view place_error(const place_errors_t& errors, const kv_command_t& command, int first) {
  return gx_at(errors, command.count() - first);
}

void kv_define_item_cmd(const kv_command_t& command) {
  constexpr int first_index = 5;
  const auto place = read_place(command, first_index);
  if (!place) {
    kv_refuse(refused, command, place_error(item_errors, command, first_index), 3);
    return;
  }
  const gx_string_record_t label = kv_unquote(command.word(4));
  const std::size_t last = gx_view(label).find_last_not_of(' ');
  if (place->level == 1 && last != std::string_view::npos && last + 1 > max_label) {
    kv_refuse(refused, command, "# !! Error : string size Invalid ? (>18) ", 3);
    return;
  }
  gx_def_menu_rec(place->view(), gx_view(label), false, "");
  kv_echo(" DEFine MENu ", command, 3);
}

void kv_define_action_cmd(const kv_command_t& command) {
  constexpr int first_index = 6;
  const auto place = read_place(command, first_index);
  if (!place) {
    kv_refuse(refused, command, place_error(action_errors, command, first_index), 3);
    return;
  }
  gx_def_menu_rec(place->view(), gx_view(kv_unquote(command.word(4))), true,
                  gx_view(kv_unquote(command.word(5))));
  kv_echo(" DEFine MENu ", command, 3);
}

// The third word says neither what it is.
void kv_define_menu_cmd(const kv_command_t& command) {
  kv_refuse(refused, command, "# !! Error : invalid parameter 3 (should begin by I or A) ? ", 3);
}

void kv_status_menu_cmd(const kv_command_t& command) {
  constexpr int first_index = 3;
  const auto place = read_place(command, first_index);
  if (!place) {
    kv_refuse("# STAtus MENu ", command, place_error(status_errors, command, first_index), 3);
    return;
  }
  const gx_menu_rec_t record = gx_get_menu_rec(place->view());
  kv_echo(" STAtus MENu ", command, 3);
  gx_tell("# text : \"", gx_view(record.str), "\" ");
  if (record.cmd_on) gx_tell("# cmd : \"", gx_view(record.cmd), "\" ");
}

void kv_draw_menu_cmd(const kv_command_t&) {
  gx_draw_menu1(gx_vext.viewport_edit, kv_menu_position);
}

void kv_run_menu_cmd(const kv_command_t&) { kv_execute_item_menu(); }

void kv_print_menu_cmd(const kv_command_t& command) {
  gx_print_menu(kv_file_name(command.word(2)));
}

// The lines of the menu shown may be gone in the new tree.
void kv_read_menu_cmd(const kv_command_t& command) {
  gx_close_menus(gx_vext.viewport_edit);
  gx_read_menu(kv_file_name(command.word(2)));
}

constexpr kv_command_row_t menu_rows[] = {
    // clang-format off
    {{"DEF", "MEN", "I"}, item_syntax, kv_define_item_cmd, "# DEFine MENu Item", 4},
    {{"DEF", "MEN", "A"}, "DEFine MENu Action 'label' 'command' i [j [k [l]]]", kv_define_action_cmd, "# DEFine MENu Action", 4},
    {{"DEF", "MEN"}, item_syntax, kv_define_menu_cmd},
    {{"STA", "MEN"}, "STAtus MENu i [j [k]]", kv_status_menu_cmd, "# STAtus MENu ", 3},
    {{"$PMENU"}, "$PMENU file", kv_print_menu_cmd, "", 2, 6},
    {{"$RMENU"}, "$RMENU file", kv_read_menu_cmd, "", 2, 6},
    {{"$DM1"}, "$DM1", kv_draw_menu_cmd},
    {{"$XIM"}, "$XIM", kv_run_menu_cmd},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_menu_commands() { return menu_rows; }
