// HIGhlight NET, HIGhlight OFF: flat nets marked on every level that is shown.
#include "app/find/highlights.h"
#include "app/find/net_choice.h"
#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "gx/text/message_list.h"

namespace {

constexpr std::string_view refused = "# HIGhlight NET ";

void kv_highlight_net_cmd(const kv_command_t& command) {
  const auto expanded = kv_expanded();
  if (!expanded) return kv_refuse(refused, command, kv_no_expansion, 3);
  const auto nets = kv_wanted_nets(refused, command, *expanded);
  if (!nets) return;
  for (const std::int32_t net : *nets) {
    kv_highlight(*expanded, net);
    gx_tell(" HIGhlight NET ", expanded->netlist.path({kv_named::net, net}), " ");
  }
  kv_redraw_views();
}

void kv_highlight_off_cmd(const kv_command_t&) {
  kv_highlight_off();
  kv_redraw_views();
  gx_tell(" HIGhlight OFF ");
}

constexpr kv_command_row_t rows[] = {
    {{"HIG", "NET"}, "HIGhlight NET [path]", kv_highlight_net_cmd, refused, 3},
    {{"HIG", "OFF"}, "HIGhlight OFF", kv_highlight_off_cmd, "# HIGhlight OFF ", 3},
};

}  // namespace

kv_command_rows_t kv_highlight_commands() { return rows; }
