// EXPlain NET: why a flat net is what it is.
#include <string>

#include "app/find/net_choice.h"
#include "app/language/command_row.h"
#include "expand/explain.h"
#include "gx/text/message_list.h"
#include "gx/text/records.h"

namespace {

constexpr std::string_view explain_net_words = "# EXPlain NET ";
constexpr std::size_t longest_line = 199;

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string kind_words(const kv_memory_netlist_t& netlist, std::int32_t net) {
  constexpr std::string_view kinds[] = {"local", "bus", "port", "child", "global"};
  const auto kind = static_cast<std::size_t>(netlist.net_kind(net));
  std::string words(kind < std::size(kinds) ? kinds[kind] : "local");
  if (netlist.is_bus(net)) {
    const std::int32_t first = netlist.first_member(net);
    words += " [" + std::to_string(netlist.bus_start(net)) + ":" +
             std::to_string(netlist.bus_end(net)) + "], members " + std::to_string(first) + " to " +
             std::to_string(first + netlist.width(net) - 1);
  } else if (const std::int32_t bus = netlist.bus(net); bus != 0) {
    if (netlist.net_kind(net) != kv_kind_global) words = "bit";
    words += ", bit " + std::to_string(netlist.bit(net)) + " of bus " +
             quoted(netlist.path({kv_named::net, bus})) + " (" + std::to_string(bus) + ")";
  }
  return words;
}

void tell_net(const kv_memory_netlist_t& netlist, std::int32_t net) {
  gx_tell("# NET ", std::to_string(net), " : ", quoted(netlist.path({kv_named::net, net})),
          " name ", quoted(netlist.name(net)));
  gx_tell("#   kind ", kind_words(netlist, net), " ; pins in ",
          std::to_string(netlist.nb_of_pins_in(net)), " out ",
          std::to_string(netlist.nb_of_pins_out(net)));
}

// One line, or two where one would be cut.
void tell_joined(std::string_view path, std::string_view place, std::string_view reason) {
  const std::string first = "#   " + std::string(path) + " : " + std::string(place);
  if (first.size() + 3 + reason.size() <= longest_line) return gx_tell(first, " : ", reason);
  gx_tell(first);
  gx_tell("#     ", reason);
}

void tell_drawn(const kv_memory_netlist_t& netlist, kv_explainer_t& explainer, std::int32_t net) {
  for (const auto& drawn : explainer.drawn(net)) {
    const kv_object_t object = drawn.child != 0 ? kv_object_t{kv_named::net_child, drawn.child}
                                                : kv_object_t{kv_named::net, drawn.net};
    const std::string reason = explainer.reason(net, drawn);
    tell_joined(netlist.path(object),
                explainer.sheet(drawn.visit).file_path + " N_" + std::to_string(drawn.object_id),
                reason.empty() ? "the net itself" : reason);
  }
}

void tell_pins(const kv_memory_netlist_t& netlist, std::int32_t net) {
  constexpr std::string_view ways[] = {"", "in", "out", "in/out", "in/out"};  // by kv_io_type
  for (const std::int32_t index : netlist.pins(net)) {
    const kv_object_t pin{kv_named::pin, index};
    gx_tell("#   pin ", gx_at(ways, netlist.io_type(pin)), " ", netlist.path(pin));
  }
}

void kv_explain_net_cmd(const kv_command_t& command) {
  const auto expanded = kv_expanded();
  if (!expanded) return kv_refuse(explain_net_words, command, kv_no_expansion, 3);
  const auto nets = kv_wanted_nets(explain_net_words, command, *expanded);
  if (!nets) return;
  const gx_list_batch_t batch;
  const kv_memory_netlist_t& netlist = expanded->netlist;
  kv_explainer_t explainer(netlist, expanded->origins);
  for (const std::int32_t net : *nets) {
    tell_net(netlist, net);
    tell_drawn(netlist, explainer, net);
    tell_pins(netlist, net);
  }
  kv_echo(" EXPlain NET ", command, 3);
}

constexpr kv_command_row_t explain_rows[] = {
    {{"EXP", "NET"}, "EXPlain NET [path]", kv_explain_net_cmd, explain_net_words, 3},
};

}  // namespace

kv_command_rows_t kv_explain_commands() { return explain_rows; }
