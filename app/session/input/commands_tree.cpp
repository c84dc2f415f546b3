// VIEw TREe.
#include "app/find/drawings.h"
#include "app/find/go_to.h"
#include "app/language/command_row.h"
#include "app/session/input/event_loop.h"
#include "app/sheet/command_viewport.h"
#include "app/tree/tree_view.h"
#include "gx/display/strokes/offscreen.h"
#include "gx/text/messages/message_list.h"
#include "gx/vext.h"

namespace {
constexpr std::string_view tree_echo = "# VIEw TREe ";

void kv_view_tree_cmd(const kv_command_t& command) {
  const std::string_view word = command.word(3);
  if (word.starts_with('/')) {
    kv_drawings_t drawings;
    const auto way = kv_way_to(drawings, word == "/" ? "" : word);
    if (!way) return kv_refuse(tree_echo, command, "# !! Error : Path not found ? ", 3);
    if (const std::string fault = kv_go_along(drawings, *way, 0); !fault.empty()) {
      kv_refuse(tree_echo, command, "# !! Error : No Sheet Available ? : ", 3);
      return gx_tell_detail("# !! ", fault);
    }
    return kv_echo(" VIEw TREe ", command, 3);
  }
  const auto on = word.empty() ? !kv_tree_is_shown() : kv_on_or_off(word);
  if (!on)
    return kv_refuse(tree_echo, command, "# !! Error : 3rd parameter incorrect (ON, OFF, /path) ? ",
                     3);
  kv_show_tree(*on);
  if (gx_vext.screen != nullptr) {
    const gx_offscreen_t picture({0, 0, gx_vext.bitmap_size.x, gx_vext.bitmap_size.y});
    kv_draw_window(true);
  }
  gx_tell(*on ? " VIEw TREe ON " : " VIEw TREe OFF ");
}

constexpr kv_command_row_t tree_rows[] = {
    {{"VIE", "TRE"}, "VIEw TREe [ON or OFF or path]", kv_view_tree_cmd, tree_echo, 3},
};
}  // namespace

kv_command_rows_t kv_tree_commands() { return tree_rows; }
