// The form of Yosys: bits are numbers from 2 on, one for each node.
#include <array>
#include <string>
#include <vector>

#include "export/json.h"
#include "export/output.h"
#include "export/words.h"
#include "netlist/simulator_names.h"

namespace {

class yosys_t {
 public:
  yosys_t(const kvi_design_t& design, std::FILE* file)
      : netlist_(design),
        nodes_(netlist_),
        out_(file),
        next_bit_(netlist_.count(kv_named::net) + 2) {}

  // Cells and nets have different names; nets keep theirs.
  void write(std::string_view name) {
    std::vector<std::string> net_names;
    for (std::int32_t net = 1; net <= netlist_.count(kv_named::net); ++net) {
      if (netlist_.bus(net) == 0)
        net_names.push_back(unique_(kv_flat_name(netlist_.path({kv_named::net, net}), '.')));
    }
    out_ << "{\"creator\": \"KIVO\",\n\"modules\": {\n";
    out_.json(name) << ": {\"attributes\": {\"top\": \"00000000000000000000000000000001\"},\n"
                    << "\"ports\": {},\n\"cells\": {";
    kv_between_t between(",");
    for (std::int32_t i = 1; i <= netlist_.count(kv_named::inst); ++i) {
      out_ << between.next() << '\n';
      cell({kv_named::inst, i});
    }
    out_ << "},\n\"netnames\": {";
    kv_between_t between_nets(",");
    auto net_name = net_names.begin();
    for (std::int32_t net = 1; net <= netlist_.count(kv_named::net); ++net) {
      if (netlist_.bus(net) != 0) continue;
      out_ << between_nets.next() << '\n';
      write_net(net, *net_name++);
    }
    out_ << "}}}}\n";
  }

 private:
  std::int32_t bit_of(std::int32_t net) const { return nodes_.node(net) + 1; }

  void cell(kv_object_t inst) {
    out_.json(unique_(kv_flat_name(netlist_.path(inst), '.'))) << ": {\"hide_name\": 0, \"type\": ";
    out_.json(kv_device_of(netlist_, inst)) << ", \"parameters\": {}, \"attributes\": {";
    kv_between_t between(", ");
    for (std::int32_t k = 0; k < netlist_.nb_of_properties(inst); ++k) {
      const kv_property_t property = netlist_.property(inst, k);
      if (property.type != kv_prop_string || property.text.empty()) continue;
      out_ << between.next();
      out_.json(property.name) << ": ";
      out_.json(property.text);
    }
    out_ << "}, \"port_directions\": {";
    each_pin(inst, [&](kv_object_t pin, std::string_view name) {
      constexpr std::array<std::string_view, 5> words{"inout", "input", "output", "inout", "inout"};
      out_.json(name) << ": \"" << kv_word(words, netlist_.io_type(pin)) << '"';
    });
    out_ << "}, \"connections\": {";
    each_pin(inst, [&](kv_object_t pin, std::string_view name) {
      out_.json(name) << ": [";
      const kv_bits_t bits = netlist_.bits(pin);
      kv_between_t between_bits(", ");
      for (std::int32_t bit = 0; bit < bits.count; ++bit) {
        const std::int32_t net = bits.net(bit);
        out_ << between_bits.next() << (net != 0 ? bit_of(net) : next_bit_++);
      }
      out_ << ']';
    });
    out_ << "}}";
  }
  // Calls `write` for each pin, with a name that no other pin of the part has.
  template <typename Write>
  void each_pin(kv_object_t inst, Write write) {
    kv_unique_t unique;
    kv_between_t between(", ");
    for (std::int32_t k = 0; k < netlist_.nb_of_pins(inst); ++k) {
      const kv_object_t pin = netlist_.pin(inst, k);
      out_ << between.next();
      write(pin, unique(std::string(netlist_.pin_name(pin))));
    }
  }

  void write_net(std::int32_t net, std::string_view name) {
    out_.json(name) << ": {\"hide_name\": 0, \"bits\": [";
    kv_between_t between(", ");
    const std::int32_t width = netlist_.width(net);
    if (!netlist_.is_bus(net)) out_ << bit_of(net);
    for (std::int32_t i = 0; i < width && netlist_.first_member(net) != 0; ++i)
      out_ << between.next() << bit_of(netlist_.first_member(net) + i);
    out_ << "], \"attributes\": {}}";
  }

  const kvi_netlist_t netlist_;
  const kv_simulator_names_t<kvi_design_t> nodes_;
  kv_output_t out_;
  kv_unique_t unique_;
  std::int32_t next_bit_;  // of a pin on no net
};

}  // namespace

void kv_write_yosys(const kvi_design_t& design, std::string_view name, std::FILE* file) {
  yosys_t(design, file).write(name);
}
