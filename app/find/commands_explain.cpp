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

std::string kind_words(const kv_design_t& design, const kv_net_record_t& net) {
  constexpr std::string_view kinds[] = {"local", "bus", "port", "child", "global"};
  const auto kind = static_cast<std::size_t>(net.net_kind);
  std::string words(kind < std::size(kinds) ? kinds[kind] : "local");
  if (net.net_type == kv_net_bus) {
    const std::int32_t last = net.netind_start + net.net_bus_end - net.net_bus_start;
    words += " [" + std::to_string(net.net_bus_start) + ":" + std::to_string(net.net_bus_end) +
             "], members " + std::to_string(net.netind_start) + " to " + std::to_string(last);
  } else if (net.bus != 0) {
    const auto& bus = kv_record(design.nets, net.bus);
    if (net.net_kind != kv_kind_global) words = "bit";
    words += ", bit " + std::to_string(bus.net_bus_start + net.posinbus) + " of bus " +
             quoted(kv_text(design, bus.sim_path)) + " (" + std::to_string(net.bus) + ")";
  }
  return words;
}

void tell_net(const kv_design_t& design, std::int32_t index) {
  const auto& net = kv_record(design.nets, index);
  gx_tell("# NET ", std::to_string(index), " : ", quoted(kv_text(design, net.sim_path)), " name ",
          quoted(kv_text(design, net.name)));
  gx_tell("#   kind ", kind_words(design, net), " ; pins in ", std::to_string(net.nb_pin_in),
          " out ", std::to_string(net.nb_pin_out));
}

// One line, or two where one would be cut.
void tell_joined(std::string_view path, std::string_view place, std::string_view reason) {
  const std::string first = "#   " + std::string(path) + " : " + std::string(place);
  if (first.size() + 3 + reason.size() <= longest_line) return gx_tell(first, " : ", reason);
  gx_tell(first);
  gx_tell("#     ", reason);
}

void tell_drawn(const kv_expanded_t& expanded, kv_explainer_t& explainer, std::int32_t net) {
  const kv_design_t& design = expanded.design;
  for (const auto& drawn : explainer.drawn(net)) {
    const std::int32_t path = drawn.child != 0 ? kv_record(design.net_childs, drawn.child).sim_path
                                               : kv_record(design.nets, drawn.net).sim_path;
    const std::string reason = explainer.reason(net, drawn);
    tell_joined(kv_text(design, path),
                explainer.sheet(drawn.visit).file_path + " N_" + std::to_string(drawn.object_id),
                reason.empty() ? "the net itself" : reason);
  }
}

// The pins of the net: of its input chain, then those that are on its output chain alone.
void tell_pins(const kv_design_t& design, const kv_net_record_t& net) {
  const auto tell = [&](std::string_view way, const kv_pin_record_t& pin) {
    gx_tell("#   pin ", way, " ", kv_text(design, pin.sim_path));
  };
  const auto is_both = [](const kv_pin_record_t& pin) {
    return pin.io_type == kv_io_ixo || pin.io_type == kv_io_io;
  };
  for (std::int32_t i = net.first_pin_in_ind; i != 0;) {
    const auto& pin = kv_record(design.pins, i);
    tell(is_both(pin) ? "in/out" : "in", pin);
    i = pin.next_pin_in_ind;
  }
  for (std::int32_t i = net.first_pin_out_ind; i != 0;) {
    const auto& pin = kv_record(design.pins, i);
    if (!is_both(pin)) tell("out", pin);
    i = pin.next_pin_out_ind;
  }
}

void kv_explain_net_cmd(const kv_command_t& command) {
  const auto expanded = kv_expanded();
  if (!expanded) return kv_refuse(explain_net_words, command, kv_no_expansion, 3);
  const auto nets = kv_wanted_nets(explain_net_words, command, *expanded);
  if (!nets) return;
  const gx_list_batch_t batch;
  kv_explainer_t explainer(expanded->design, expanded->origins);
  for (const std::int32_t net : *nets) {
    tell_net(expanded->design, net);
    tell_drawn(*expanded, explainer, net);
    tell_pins(expanded->design, kv_record(expanded->design.nets, net));
  }
  kv_echo(" EXPlain NET ", command, 3);
}

constexpr kv_command_row_t explain_rows[] = {
    {{"EXP", "NET"}, "EXPlain NET [path]", kv_explain_net_cmd, explain_net_words, 3},
};

}  // namespace

kv_command_rows_t kv_explain_commands() { return explain_rows; }
