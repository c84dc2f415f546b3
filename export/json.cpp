#include "export/json.h"

#include "export/output.h"
#include "export/words.h"
#include "netlist/hierarchy.h"

namespace {

constexpr int version = 1;  // of the schema in docs/netlists.md

class json_t {
 public:
  json_t(const kvi_design_t& design, std::FILE* file)
      : netlist_(design), blocks_(netlist_), out_(file) {}

  void write() {
    const auto& info = netlist_.info();
    out_ << "{\"format\": \"kivo-netlist\", \"version\": " << version;
    out_ << ",\n\"run\": {\"day\": " << info.day << ", \"month\": " << info.month
         << ", \"year\": " << info.year << ", \"errors\": " << info.num_errors
         << ", \"warnings\": " << info.num_warnings << ", \"time_step\": " << info.time_step << '}';
    array("instances", kv_named::inst, [&](std::int32_t i) { owner({kv_named::inst, i}); });
    array("blocks", kv_named::macro, [&](std::int32_t i) { owner({kv_named::macro, i}); });
    array("nets", kv_named::net, [&](std::int32_t i) { net(i); });
    out_ << "\n}\n";
  }

 private:
  template <typename Write>
  void array(std::string_view name, kv_named what, Write write) {
    out_ << ",\n\"" << name << "\": [";
    kv_between_t between(",");
    for (std::int32_t i = 1; i <= netlist_.count(what); ++i) {
      out_ << between.next() << "\n {";
      write(i);
      out_ << '}';
    }
    out_ << ']';
  }

  // "id", "path", "object" and "properties".
  void common(kv_object_t object) {
    out_ << "\"id\": " << object.index << ", \"path\": ";
    out_.json(netlist_.path(object))
        << ", \"object\": " << netlist_.object_id(object) << ", \"properties\": {";
    kv_between_t between(", ");
    for (std::int32_t k = 0; k < netlist_.nb_of_properties(object); ++k) {
      const kv_property_t property = netlist_.property(object, k);
      out_ << between.next();
      out_.json(property.name) << ": ";
      value(property);
    }
    out_ << '}';
  }
  void value(const kv_property_t& property) {
    if (property.type == kv_prop_string) {
      out_.json(property.text);
      return;
    }
    out_ << '[';
    kv_between_t between(", ");
    for (int i = 0; i < 3; ++i) {
      out_ << between.next();
      if (property.type == kv_prop_real) {
        out_ << property.real[i];
      } else {
        out_ << property.whole[i];
      }
    }
    out_ << ']';
  }

  void owner(kv_object_t object) {
    common(object);
    out_ << ", \"name\": ";
    out_.json(blocks_.name(object)) << ", \"block\": " << blocks_.parent(object) << ", \"sheet\": ";
    out_.json(netlist_.file_path(object)) << ", \"timing\": " << netlist_.timing_index(object);
    out_ << ", \"pins\": [";
    kv_between_t between(",");
    for (std::int32_t k = 0; k < netlist_.nb_of_pins(object); ++k) {
      out_ << between.next() << "\n  {";
      pin(netlist_.pin(object, k));
      out_ << '}';
    }
    out_ << ']';
  }
  void pin(kv_object_t pin) {
    common(pin);
    out_ << ", \"name\": ";
    out_.json(netlist_.pin_name(pin));
    if (pin.what == kv_named::pin)
      out_ << ", \"type\": \"" << kv_word(kv_io_type_words, netlist_.io_type(pin)) << '"';
    out_ << ", \"net\": " << netlist_.net(pin) << ", \"bits\": [";
    const kv_bits_t bits = netlist_.bits(pin);
    kv_between_t between(", ");
    for (std::int32_t bit = 0; bit < bits.count; ++bit) out_ << between.next() << bits.net(bit);
    out_ << ']';
  }

  void net(std::int32_t net) {
    common({kv_named::net, net});
    out_ << ", \"name\": ";
    out_.json(netlist_.name(net)) << ", \"kind\": \""
                                  << kv_word(kv_net_kind_words, netlist_.net_kind(net)) << '"';
    if (netlist_.is_bus(net)) {
      out_ << ", \"range\": [" << netlist_.bus_start(net) << ", " << netlist_.bus_end(net)
           << "], \"first_member\": " << netlist_.first_member(net);
    } else if (netlist_.bus(net) != 0) {
      out_ << ", \"bus\": " << netlist_.bus(net) << ", \"bit\": " << netlist_.bit(net);
    }
    out_ << ", \"pins\": [";
    kv_between_t between(", ");
    for (const std::int32_t pin : netlist_.pins(net)) out_ << between.next() << pin;
    out_ << "], \"children\": [";
    kv_between_t between_children(", ");
    for (const std::int32_t child : netlist_.children(net)) {
      out_ << between_children.next();
      out_.json(netlist_.path({kv_named::net_child, child}));
    }
    out_ << ']';
  }

  const kvi_netlist_t netlist_;
  const kv_hierarchy_t<kvi_design_t> blocks_;
  kv_output_t out_;
};

}  // namespace

void kv_write_json(const kvi_design_t& design, std::FILE* file) { json_t(design, file).write(); }

void kv_write_changes(const std::vector<kv_change_t>& changes, kv_output_t& out) {
  const auto changed = [&](std::string_view what, const std::string& name,
                           const std::string& before, const std::string& after) {
    out << "{\"" << what << "\": ";
    out.json(name) << ", \"before\": ";
    out.json(before) << ", \"after\": ";
    out.json(after) << '}';
  };
  out << "{\"format\": \"kivo-difference\", \"version\": 1, \"changes\": [";
  kv_between_t between(",");
  for (const kv_change_t& change : changes) {
    out << between.next() << "\n ";
    out << "{\"change\": ";
    out.json(kv_change_word(change.change)) << ", \"before\": ";
    out.json(change.before) << ", \"after\": ";
    out.json(change.after) << ", \"values\": [";
    kv_between_t between_values(", "), between_pins(", ");
    for (const kv_changed_value_t& value : change.values) {
      out << between_values.next();
      changed("name", value.name, value.before, value.after);
    }
    out << "], \"pins\": [";
    for (const kv_changed_pin_t& pin : change.pins) {
      out << between_pins.next();
      changed("pin", pin.pin, pin.before, pin.after);
    }
    out << "]}";
  }
  out << "\n]}\n";
}
