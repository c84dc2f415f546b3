#include "export/verilog.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "export/output.h"
#include "export/words.h"
#include "netlist/hierarchy.h"
#include "netlist/simulator_names.h"

namespace {

bool is_printed(char c) { return c > ' ' && c <= '~'; }

// An identifier. Keywords have no capital letter: what has one, and no strange character, stands as
// it is; anything else is escaped, which ends with a blank. A character that cannot be in a name is
// written as "%0a".
std::string identifier(std::string_view name) {
  const auto is_capital = [](char c) { return c >= 'A' && c <= 'Z'; };
  const auto is_plain = [&](char c) {
    return is_capital(c) || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
  };
  const bool begins_well = !name.empty() && (name[0] < '0' || name[0] > '9');
  if (begins_well && std::ranges::all_of(name, is_plain) && std::ranges::any_of(name, is_capital))
    return std::string(name);
  constexpr std::string_view digits = "0123456789abcdef";
  std::string escaped = "\\";
  for (const char c : name) {
    const auto code = static_cast<unsigned char>(c);
    if (is_printed(c)) {
      escaped += c;
    } else {
      escaped.append("%").append(1, digits[code >> 4U]).append(1, digits[code & 15U]);
    }
  }
  return escaped + (name.empty() ? "_ " : " ");
}

std::string in_quotes(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      result.append("\\").append(1, c);
    } else if (is_printed(c) || c == ' ') {
      result += c;
    } else {
      const char octal[] = {'\\', static_cast<char>('0' + (code >> 6U)),
                            static_cast<char>('0' + (code >> 3U & 7U)),
                            static_cast<char>('0' + (code & 7U)), 0};
      result += octal;
    }
  }
  return result + "\"";
}

std::string range_of(std::int32_t width) {
  return width == 1 ? "" : "[0:" + std::to_string(width - 1) + "] ";
}

// The names of one module, and how each node that it meets is written in it.
struct scope_t {
  std::int32_t block = 0;
  kv_unique_t unique;
  std::map<std::int32_t, std::string> nodes;
  std::vector<std::int32_t> shared;  // nodes that come in by a port more
};

class verilog_t {
 public:
  verilog_t(const kvi_design_t& design, bool flat, std::FILE* file)
      : netlist_(design), blocks_(netlist_), nodes_(netlist_), flat_(flat), out_(file) {
    place_nodes();
  }

  void write(std::string_view name) {
    module_names_(std::string(name));
    out_ << "// Written by KIVO.\n";
    module_t top = module_of(0);
    out_ << "module " << identifier(name) << top.text;
    for (const auto& [key, part] : parts_)
      out_ << "(* blackbox *) module " << part << " (" << key.second << ");\nendmodule\n\n";
  }

 private:
  struct module_t {
    std::string text;
    std::vector<std::int32_t> shared;
  };

  bool is_inside(std::int32_t block, std::int32_t outer) const {
    if (outer == 0) return true;
    while (block != 0 && block != outer) block = blocks_.parent({kv_named::macro, block});
    return block == outer;
  }

  // The block in which each node is declared: that of its path; the top for one that is met outside
  // of it, as a supply is.
  void place_nodes() {
    const std::int32_t nets = netlist_.count(kv_named::net);
    home_.resize(static_cast<std::size_t>(nets) + 1);
    declared_.resize(static_cast<std::size_t>(netlist_.count(kv_named::macro)) + 1);
    if (!flat_) {
      for (std::int32_t net = 1; net <= nets; ++net) {
        const std::int32_t bus = netlist_.bus(net);
        gx_at(home_, net) = blocks_.block_of(netlist_.path({kv_named::net, bus != 0 ? bus : net}));
        if (nodes_.node(net) != net) bring_up(net, gx_at(home_, net));
      }
      for (const kv_named what : {kv_named::pin, kv_named::pinm}) {
        for (std::int32_t i = 1; i <= netlist_.count(what); ++i) {
          const kv_object_t pin{what, i};
          const std::int32_t block = blocks_.parent(netlist_.owner(pin));
          const kv_bits_t bits = netlist_.bits(pin);
          for (std::int32_t net = bits.met_first(); net < bits.met_after(); ++net)
            bring_up(net, block);
        }
      }
    }
    for (std::int32_t net = nets; net > 0; --net)
      if (netlist_.bus(net) == 0 && (netlist_.is_bus(net) || nodes_.node(net) == net))
        gx_at(declared_, gx_at(home_, net)).push_back(net);
    for (auto& nets_of : declared_) std::ranges::reverse(nets_of);
  }
  void bring_up(std::int32_t net, std::int32_t block) {
    const std::int32_t node = nodes_.node(net), bus = netlist_.bus(node);
    if (is_inside(block, gx_at(home_, node))) return;
    gx_at(home_, node) = 0;
    if (bus == 0) return;
    gx_at(home_, bus) = 0;
    for (std::int32_t i = 0; i < netlist_.width(bus); ++i)
      gx_at(home_, netlist_.first_member(bus) + i) = 0;
  }

  module_t module_of(std::int32_t block) {
    scope_t scope{.block = block, .unique = {}, .nodes = {}, .shared = {}};
    std::string ports, body;
    kv_between_t between(", ");
    const kv_object_t macro{kv_named::macro, block};
    for (std::int32_t k = 0; block != 0 && k < netlist_.nb_of_pins(macro); ++k)
      ports.append(between.next()).append(take_port(scope, netlist_.pin(macro, k)));
    for (const std::int32_t net : gx_at(declared_, block)) body += declaration(scope, net);
    add_parts(scope, block, body);
    if (!flat_)
      for (const std::int32_t inner : blocks_.macros(block)) body += block_text(scope, inner);
    for (const std::int32_t node : scope.shared)
      ports.append(between.next()).append("inout ").append(scope.nodes.at(node));
    return {" (" + ports + ");\n" + body + "endmodule\n\n", scope.shared};
  }

  // All parts of a block; all of the design in the one module of a flat netlist.
  void add_parts(scope_t& scope, std::int32_t block, std::string& body) {
    if (!flat_) {
      for (const std::int32_t inst : blocks_.instances(block))
        body += part_text(scope, {kv_named::inst, inst});
      return;
    }
    for (std::int32_t inst = 1; inst <= netlist_.count(kv_named::inst); ++inst)
      body += part_text(scope, {kv_named::inst, inst});
  }

  // The port of a block's pin; the nodes of its bits are met by it, but for those that another port
  // brought before.
  std::string take_port(scope_t& scope, kv_object_t pin) {
    const kv_bits_t bits = netlist_.bits(pin);
    const std::string name = identifier(scope.unique(std::string(netlist_.pin_name(pin))));
    for (std::int32_t bit = 0; bit < bits.count; ++bit) {
      if (bits.net(bit) == 0) continue;
      scope.nodes.try_emplace(nodes_.node(bits.net(bit)),
                              bits.count == 1 ? name : name + "[" + std::to_string(bit) + "]");
    }
    return "inout " + range_of(bits.count) + name;
  }

  std::string declaration(scope_t& scope, std::int32_t net) {
    const std::string name = identifier(scope.unique(local_name(scope, {kv_named::net, net})));
    if (!netlist_.is_bus(net)) {
      scope.nodes.try_emplace(net, name);
      return "  wire " + name + ";\n";
    }
    for (std::int32_t i = 0; i < netlist_.width(net) && netlist_.first_member(net) != 0; ++i) {
      const std::int32_t member = netlist_.first_member(net) + i;
      if (nodes_.node(member) == member)
        scope.nodes.try_emplace(member, name + "[" + std::to_string(netlist_.bit(member)) + "]");
    }
    return "  wire [" + std::to_string(netlist_.bus_start(net)) + ":" +
           std::to_string(netlist_.bus_end(net)) + "] " + name + ";\n";
  }

  // The name of an object in a block: its path after that of the block.
  std::string local_name(const scope_t& scope, kv_object_t object) const {
    const std::string_view path = netlist_.path(object);
    const std::string_view before =
        scope.block == 0 ? std::string_view() : netlist_.path({kv_named::macro, scope.block});
    return kv_flat_name(path.starts_with(before) ? path.substr(before.size()) : path, '.');
  }

  std::string node_text(scope_t& scope, std::int32_t net) {
    const std::int32_t node = nodes_.node(net);
    const auto at = scope.nodes.find(node);
    if (at != scope.nodes.end()) return at->second;
    std::string name =
        identifier(scope.unique(kv_flat_name(netlist_.path({kv_named::net, node}), '.')));
    scope.shared.push_back(node);
    return scope.nodes.emplace(node, std::move(name)).first->second;
  }

  // What a pin is connected to: its bits from the first one on; nothing for one on no net.
  std::string connection(scope_t& scope, kv_object_t pin) {
    const kv_bits_t bits = netlist_.bits(pin);
    if (bits.count == 1) return bits.net(0) != 0 ? node_text(scope, bits.net(0)) : "";
    if (bits.met_first() == bits.met_after()) return "";
    std::string text = "{";
    kv_between_t between(", ");
    for (std::int32_t bit = 0; bit < bits.count; ++bit)
      text.append(between.next())
          .append(bits.net(bit) != 0 ? node_text(scope, bits.net(bit)) : "1'bz");
    return text + "}";
  }

  std::string attributes(kv_object_t of) const {
    std::string text;
    kv_between_t between(", ");
    for (std::int32_t k = 0; k < netlist_.nb_of_properties(of); ++k) {
      const kv_property_t property = netlist_.property(of, k);
      if (property.type == kv_prop_string && property.text.empty()) continue;
      std::string value = in_quotes(property.text);
      if (property.type != kv_prop_string) {
        char number[40];
        std::snprintf(number, sizeof number, "\"%.9g\"", netlist_.value(property, 1));
        value = number;
      }
      text.append(between.next()).append(identifier(property.name)).append(" = ").append(value);
    }
    return text.empty() ? "" : "(* " + text + " *) ";
  }

  std::string part_text(scope_t& scope, kv_object_t inst) {
    constexpr std::array<std::string_view, 5> directions{"inout", "input", "output", "inout",
                                                         "inout"};
    kv_unique_t unique;
    std::string ports, connections;
    kv_between_t between(", "), between_ports(", ");
    for (std::int32_t k = 0; k < netlist_.nb_of_pins(inst); ++k) {
      const kv_object_t pin = netlist_.pin(inst, k);
      const std::string name = identifier(unique(std::string(netlist_.pin_name(pin))));
      ports.append(between_ports.next())
          .append(kv_word(directions, netlist_.io_type(pin)))
          .append(" ")
          .append(range_of(netlist_.bits(pin).count))
          .append(name);
      connections.append(between.next()).append(".").append(name).append("(");
      connections.append(connection(scope, pin)).append(")");
    }
    const std::string module = part_name(std::string(kv_device_of(netlist_, inst)), ports);
    return "  " + attributes(inst) + module + " " +
           identifier(scope.unique(local_name(scope, inst))) + " (" + connections + ");\n";
  }

  std::string block_text(scope_t& scope, std::int32_t inner) {
    const kv_object_t macro{kv_named::macro, inner};
    const module_t module = module_of(inner);
    const auto [at, is_new] = modules_.try_emplace(module.text);
    if (is_new) {
      at->second = identifier(module_names_(sheet_name(inner)));
      out_ << "module " << at->second << module.text;
    }
    const std::string& type = at->second;
    std::string text =
        "  " + type + " " + identifier(scope.unique(local_name(scope, macro))) + " (";
    kv_between_t between(", ");
    for (std::int32_t k = 0; k < netlist_.nb_of_pins(macro); ++k)
      text.append(between.next()).append(connection(scope, netlist_.pin(macro, k)));
    for (const std::int32_t node : module.shared)
      text.append(between.next()).append(node_text(scope, node));
    return text + ");\n";
  }

  // The directory of the block's sheet: "dlatch" of "dlatch/sheet.gx_1".
  std::string sheet_name(std::int32_t block) const {
    const std::string_view sheet = blocks_.sheet(block);
    const std::string_view directory = sheet.substr(0, std::min(sheet.rfind('/'), sheet.size()));
    const auto slash = directory.rfind('/');
    const auto name = directory.substr(slash == directory.npos ? 0 : slash + 1);
    return std::string(name.empty() ? "block" : name);
  }

  // The module of a device with these ports; one more when it has others elsewhere.
  const std::string& part_name(const std::string& device, const std::string& ports) {
    const auto [at, is_new] = parts_.try_emplace({device, ports});
    if (is_new) at->second = identifier(module_names_(device));
    return at->second;
  }

  const kvi_netlist_t netlist_;
  const kv_hierarchy_t<kvi_design_t> blocks_;
  const kv_simulator_names_t<kvi_design_t> nodes_;
  const bool flat_;
  kv_output_t out_;
  std::vector<std::int32_t> home_;                   // by net: its block
  std::vector<std::vector<std::int32_t>> declared_;  // by block: nets that are no members
  kv_unique_t module_names_;
  std::map<std::string, std::string> modules_;                        // names by their text
  std::map<std::pair<std::string, std::string>, std::string> parts_;  // by device and ports
};

}  // namespace

void kv_write_verilog(const kvi_design_t& design, std::string_view name, bool flat,
                      std::FILE* file) {
  verilog_t(design, flat, file).write(name);
}
