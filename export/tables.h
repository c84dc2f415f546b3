// A netlist as tables: what CSV files and a database hold alike (docs/netlists.md).
//
// A table is a name, its columns, and a function that calls `row` once for each of its rows, with
// one value for each column.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <variant>

#include "export/words.h"
#include "kvi/load.h"
#include "netlist/hierarchy.h"
#include "netlist/simulator_names.h"

// No value, a number, a real, a text.
using kv_cell_t = std::variant<std::monostate, std::int64_t, double, std::string_view>;

struct kv_table_t {
  std::string_view name;
  std::string_view columns;  // "id path ...": separated by blanks; TEXT, INTEGER, REAL in `types`
  std::string_view types;    // a letter a column: T, I, R
};

enum class kv_table { instance, block, net, pin, connection, property, child };
inline constexpr kv_table_t kv_tables[] = {
    {"instance", "id path name cell block sheet object timing", "ITTTITII"},
    {"block", "id path name block sheet object timing", "ITTITII"},
    {"net", "id path name kind bus bit first_bit last_bit node object", "ITTTIIIITI"},
    {"pin", "id owner_kind owner path name type net first_bit last_bit net_first_bit object",
     "ITITTTIIIII"},
    {"connection", "owner_kind pin bit net", "TIII"},
    {"property", "owner_kind owner name type text low typical high", "TITTTRRR"},
    {"child", "id net path name kind object", "IITTTI"},
};

// Calls row(table, values) for all rows of all tables, table by table as far as each kind goes.
template <typename Row>
class kv_table_writer_t {
 public:
  kv_table_writer_t(const kvi_design_t& design, Row row)
      : netlist_(design), blocks_(netlist_), nodes_(netlist_), row_(row) {}

  void write() {
    each(kv_named::inst, [&](kv_object_t inst) {
      put(kv_table::instance, inst.index, netlist_.path(inst), blocks_.name(inst),
          kv_device_of(netlist_, inst), blocks_.parent(inst), netlist_.file_path(inst),
          netlist_.object_id(inst), netlist_.timing_index(inst));
      properties("instance", inst);
    });
    each(kv_named::macro, [&](kv_object_t macro) {
      put(kv_table::block, macro.index, netlist_.path(macro), blocks_.name(macro),
          blocks_.parent(macro), netlist_.file_path(macro), netlist_.object_id(macro),
          netlist_.timing_index(macro));
      properties("block", macro);
    });
    each(kv_named::net, [&](kv_object_t net) { put_net(net); });
    each(kv_named::pin, [&](kv_object_t pin) { put_pin("instance", pin); });
    each(kv_named::pinm, [&](kv_object_t pin) { put_pin("block", pin); });
  }

 private:
  template <typename Visit>
  void each(kv_named what, Visit visit) {
    for (std::int32_t i = 1; i <= netlist_.count(what); ++i) visit(kv_object_t{what, i});
  }

  static kv_cell_t cell(std::string_view text) { return text; }
  static kv_cell_t cell(std::integral auto number) { return std::int64_t{number}; }
  static kv_cell_t cell(double number) { return number; }
  static kv_cell_t cell(std::monostate none) { return none; }
  template <typename... Value>
  void put(kv_table table, Value... value) {
    const kv_cell_t cells[] = {cell(value)...};
    row_(table, std::span<const kv_cell_t>(cells));
  }

  void put_net(kv_object_t object) {
    const std::int32_t net = object.index, bus = netlist_.bus(net);
    const std::string_view path = netlist_.path(object), kind = word(net);
    const bool is_bus = netlist_.is_bus(net);
    const std::string node = is_bus ? std::string() : nodes_.of(net);
    put(kv_table::net, net, path, netlist_.name(net), kind, bus, bus != 0 ? netlist_.bit(net) : 0,
        netlist_.bus_start(net), netlist_.bus_end(net), std::string_view(node),
        netlist_.object_id(object));
    properties("net", object);
    for (const std::int32_t child : netlist_.children(net)) {
      const kv_object_t joined{kv_named::net_child, child};
      put(kv_table::child, child, net, netlist_.path(joined), netlist_.child_name(child),
          kv_word(kv_net_kind_words, netlist_.child_kind(child)), netlist_.object_id(joined));
    }
  }
  std::string_view word(std::int32_t net) const {
    return kv_word(kv_net_kind_words, netlist_.net_kind(net));
  }

  void put_pin(std::string_view owner_kind, kv_object_t pin) {
    put(kv_table::pin, pin.index, owner_kind, netlist_.owner(pin).index, netlist_.path(pin),
        netlist_.pin_name(pin),
        pin.what == kv_named::pin ? kv_word(kv_io_type_words, netlist_.io_type(pin)) : "",
        netlist_.net(pin), netlist_.first_bit(pin), netlist_.last_bit(pin),
        netlist_.net_first_bit(pin), netlist_.object_id(pin));
    properties(owner_kind == "instance" ? "pin" : "block pin", pin);
    const kv_bits_t bits = netlist_.bits(pin);
    for (std::int32_t bit = 0; bit < bits.count; ++bit)
      if (bits.net(bit) != 0) put(kv_table::connection, owner_kind, pin.index, bit, bits.net(bit));
  }

  void properties(std::string_view kind, kv_object_t of) {
    for (std::int32_t k = 0; k < netlist_.nb_of_properties(of); ++k) {
      const kv_property_t property = netlist_.property(of, k);
      const std::string_view type = kv_word(kv_prop_type_words, property.type);
      if (property.type == kv_prop_string) {
        if (!property.text.empty())
          put(kv_table::property, kind, of.index, property.name, type, property.text,
              std::monostate(), std::monostate(), std::monostate());
        continue;
      }
      put(kv_table::property, kind, of.index, property.name, type, std::monostate(),
          netlist_.value(property, 0), netlist_.value(property, 1), netlist_.value(property, 2));
    }
  }

  const kvi_netlist_t netlist_;
  const kv_hierarchy_t<kvi_design_t> blocks_;
  const kv_simulator_names_t<kvi_design_t> nodes_;
  Row row_;
};
