// HIGhlight NET, HIGhlight OFF: flat nets marked on every level that is shown.
#include <algorithm>
#include <optional>
#include <string>

#include "app/find/highlights.h"
#include "app/find/net_choice.h"
#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "gx/display/screen_state.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"

namespace {

constexpr std::string_view highlight_net_words = "# HIGhlight NET ";

// Word 5; 0 where none is typed, nothing where it is none of the colours.
std::optional<int> wanted_color(const kv_command_t& command) {
  if (command.count() < 5) return 0;
  const auto number = gx_string_to_int16(command.word(5));
  const bool is_color = gx_equal("COL", command.word(4)) && !number.error && number.value >= 1 &&
                        number.value <= gx_nb_of_highlights;
  return is_color ? std::optional<int>(number.value) : std::nullopt;
}

// Which net has which colour, once there are several.
void tell_colors() {
  const auto& marked = kv_pext.highlighted;
  if (std::ranges::all_of(marked, [](const auto& net) { return net.color == 1; })) return;
  for (const auto& [path, color] : marked)
    gx_tell("#   colour ", std::to_string(color), " : ", path, " ");
}

void kv_highlight_net_cmd(const kv_command_t& command) {
  const auto expanded = kv_expanded();
  if (!expanded) return kv_refuse(highlight_net_words, command, kv_no_expansion, 3);
  const auto color = wanted_color(command);
  if (!color)
    return kv_refuse(highlight_net_words, command,
                     "# !! Error : Colour not within COLour 1 to 6 ? ", 3);
  const auto nets = kv_wanted_nets(highlight_net_words, command, *expanded);
  if (!nets) return;
  for (const std::int32_t net : *nets) {
    kv_highlight(*expanded, net, *color);
    gx_tell(" HIGhlight NET ", expanded->netlist.path({kv_named::net, net}), " ");
  }
  tell_colors();
  kv_redraw_views();
}

void kv_highlight_off_cmd(const kv_command_t&) {
  kv_highlight_off();
  kv_redraw_views();
  gx_tell(" HIGhlight OFF ");
}

constexpr kv_command_row_t highlight_rows[] = {
    {{"HIG", "NET"},
     "HIGhlight NET [path [COLour n]]",
     kv_highlight_net_cmd,
     highlight_net_words,
     3},
    {{"HIG", "OFF"}, "HIGhlight OFF", kv_highlight_off_cmd, "# HIGhlight OFF ", 3},
};

}  // namespace

kv_command_rows_t kv_highlight_commands() { return highlight_rows; }
