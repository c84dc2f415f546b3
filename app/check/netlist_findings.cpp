#include "app/check/netlist_findings.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "gx/text/at.h"
#include "gx/text/strings.h"

namespace {

// The pins of leaf instances on a flat net: all, those that must be driven or supplied, and those
// that always drive.
struct net_pins_t {
  std::int32_t pins = 0, takes = 0, takes_supply = 0, out = 0;
  std::int32_t first = 0, first_taking = 0, first_supplied = 0, first_out = 0, second_out = 0;
  bool is_driven = false, is_supplied = false;
  bool has_tri_state = false, has_open = false;
  bool has_open_pins_only = true;  // all may be left open
  std::uint8_t marks = 0;          // kv_net_mark
};

class netlist_check {
 public:
  explicit netlist_check(const kv_netlist_findings_t& found)
      : netlist_(found.design), found_(found) {}

  void run() {
    take_pins();
    take_marks();
    take_ports();
    const auto each_net = [this](void (netlist_check::*check)(std::int32_t)) {
      for (std::int32_t net = 1; net <= nb_of_nets(); ++net) (this->*check)(net);
    };
    if (is_on(kv_rule::no_driver)) check_drivers_of_all();
    if (is_on(kv_rule::many_drivers)) each_net(&netlist_check::check_drivers);
    check_open(kv_rule::pin_open);
    check_open(kv_rule::pin_unused);
    if (is_on(kv_rule::single_pin)) each_net(&netlist_check::check_single);
    if (is_on(kv_rule::bus_widths)) check_widths();
  }

 private:
  bool is_on(kv_rule rule) const {
    return kv_severity_of(found_.severities, rule) != kv_severity::off;
  }
  std::int32_t nb_of_nets() const { return netlist_.count(kv_named::net); }
  std::string quoted(std::int32_t pin) const {
    return "\"" + std::string(netlist_.path({kv_named::pin, pin})) + "\"";
  }

  // Its ELECTRICAL, else what its PINTYPE says.
  const kv_electrical_t& electrical(std::int32_t ind) const {
    const kv_object_t pin{kv_named::pin, ind};
    const auto* const type = said_of(pin);
    return type != nullptr ? *type : kv_electrical_of(netlist_.io_type(pin));
  }
  const kv_electrical_t* said_of(kv_object_t pin) const {
    if (!found_.marks.has_any()) return nullptr;
    const auto place = place_of(pin.what, pin.index);
    return found_.marks.of_pin(*gx_at(found_.origins.visits, place.visit).sheet, place.object_id);
  }

  void take_pins() {
    nets_.resize(static_cast<std::size_t>(nb_of_nets()) + 1);
    for (std::int32_t ind = 1; ind <= netlist_.count(kv_named::pin); ++ind) {
      const kv_bits_t bits = netlist_.bits({kv_named::pin, ind});
      const auto& type = electrical(ind);
      for (std::int32_t i = bits.met_first(); i < bits.met_after(); ++i)
        take_pin(ind, type, gx_at(nets_, i));
    }
  }

  static void take_pin(std::int32_t ind, const kv_electrical_t& type, net_pins_t& net) {
    const auto count = [ind](std::int32_t& number, std::int32_t& first) {
      if (number++ == 0) first = ind;
    };
    count(net.pins, net.first);
    if (type.takes) count(net.takes, net.first_taking);
    if (type.takes_supply) count(net.takes_supply, net.first_supplied);
    net.is_driven |= type.drives_inputs;
    net.has_open_pins_only &= type.may_be_open;
    net.is_supplied |= type.drive == kv_drive::supply;
    net.has_tri_state |= type.drive == kv_drive::tri_state;
    net.has_open |= type.drive == kv_drive::open;
    if (!always_drives(type)) return;
    count(net.out, net.first_out);
    if (net.out == 2) net.second_out = ind;
  }
  static bool always_drives(const kv_electrical_t& type) {
    return type.drive == kv_drive::output || type.drive == kv_drive::supply;
  }

  // What the drawing says of a net, wherever in the hierarchy; of a member of a bus also what it
  // says of the bus.
  void take_marks() {
    if (!found_.marks.has_any()) return;
    for (std::int32_t ind = 1; ind <= nb_of_nets(); ++ind) {
      auto& net = gx_at(nets_, ind);
      if (const auto bus = netlist_.bus(ind); bus != 0) net.marks = gx_at(nets_, bus).marks;
      net.marks |= marks_at(place_of(kv_named::net, ind));
      for (const std::int32_t child : netlist_.children(ind))
        net.marks |= marks_at(place_of(kv_named::net_child, child));
      net.is_supplied |= (net.marks & kv_mark_supplied) != 0;
      net.is_driven |= (net.marks & kv_mark_driven) != 0;
    }
  }
  std::uint8_t marks_at(kv_place_t place) const {
    return place.visit < 0 ? std::uint8_t{0}
                           : found_.marks.of_net(*gx_at(found_.origins.visits, place.visit).sheet,
                                                 place.object_id);
  }
  bool is_marked_open(std::int32_t net) const {
    return (gx_at(nets_, net).marks & kv_mark_open) != 0;
  }

  // What the ports of the primary sheet bring to its nets comes from outside.
  void take_ports() {
    const kv_sheet_t& top = found_.origins.sheets->top.sheet;
    for (const auto& port : top.ports) {
      if (port.net < 0) continue;
      const auto group = gx_at(top.nets, port.net).group;  // of a second port, too
      const auto& master = gx_at(top.nets, gx_at(top.groups, group).master);
      auto& type = outside_[top.view(master.suffix)];
      type = type == 0 || type == port.io_type ? port.io_type : kv_io_io;
    }
  }

  // How the outside meets a net: 0 when it does not.
  std::int16_t outside(std::int32_t net) const {
    const std::int32_t bus = netlist_.bus(net);
    const auto port = outside_.find(netlist_.path({kv_named::net, bus != 0 ? bus : net}));
    return port == outside_.end() ? std::int16_t{0} : port->second;
  }

  kv_place_t place_of(kv_named what, std::int32_t ind) const {
    return kv_place_of(netlist_, found_.origins, {what, ind});
  }

  const kv_sheet_pin_t& pin_at(kv_place_t place) {
    const kv_sheet_t& sheet = *gx_at(found_.origins.visits, place.visit).sheet;
    const auto [at, is_new] = pin_places_.try_emplace(&sheet);
    if (is_new) at->second = kv_places_by_id(sheet.pins);
    return gx_at(sheet.pins, gx_at(at->second, place.object_id));
  }

  void add_net(kv_rule rule, std::int32_t ind, std::string words) const {
    found_.add(rule, netlist_.path({kv_named::net, ind}), place_of(kv_named::net, ind),
               std::move(words));
  }

  // A global stands for a supply, whose source need not be drawn, unless pins say that they need
  // one: a net of many such pins is one finding.
  bool lacks_driver(std::int32_t ind) const {
    const auto& pins = gx_at(nets_, ind);
    if (is_marked_open(ind)) return false;
    const std::int16_t port = outside(ind);
    if (port == kv_io_in || port == kv_io_io) return false;
    return lacks_supply(ind) ||
           (pins.takes > 0 && !pins.is_driven && netlist_.net_kind(ind) != kv_kind_global);
  }
  bool lacks_supply(std::int32_t ind) const {
    const auto& pins = gx_at(nets_, ind);
    const bool takes =
        pins.takes_supply > 0 || ((pins.marks & kv_mark_takes_supply) != 0 && pins.pins > 0);
    return takes && !pins.is_supplied;
  }

  void check_drivers_of_all() {
    std::vector<std::int32_t> bits;
    for (std::int32_t ind = 1; ind <= nb_of_nets(); ++ind) {
      if (!lacks_driver(ind)) continue;
      // The members of a bus follow one another.
      if (!bits.empty() && netlist_.bus(bits.back()) != netlist_.bus(ind)) add_undriven(bits);
      bits.push_back(ind);
      if (netlist_.bus(ind) == 0) add_undriven(bits);
    }
    add_undriven(bits);
  }

  // One net, or bits of one bus in their order; they are taken away.
  void add_undriven(std::vector<std::int32_t>& bits) {
    if (bits.size() == 1) add_undriven(bits.front());
    if (bits.size() > 1) {
      std::string words = "nothing drives its bits";
      for (std::size_t i = 0; i < bits.size();) {
        std::size_t last = i;
        while (last + 1 < bits.size() && bits[last + 1] == bits[last] + 1) ++last;
        words += (i == 0 ? " " : ", ") + std::to_string(netlist_.bit(bits[i]));
        if (last > i) words += " to " + std::to_string(netlist_.bit(bits[last]));
        i = last + 1;
      }
      add_net(kv_rule::no_driver, netlist_.bus(bits.front()),
              words + " : the first input is " + quoted(gx_at(nets_, bits.front()).first_taking));
    }
    bits.clear();
  }

  void add_undriven(std::int32_t ind) const {
    const auto& pins = gx_at(nets_, ind);
    const auto inputs = [this](std::int32_t number, const char* what, std::int32_t first) {
      return std::to_string(number) + what + (number == 1 ? " " : "s, the first ") + quoted(first);
    };
    std::string words = "nothing drives it : " + inputs(pins.takes, " input", pins.first_taking);
    if (lacks_supply(ind))
      words =
          "nothing supplies it : " +
          (pins.takes_supply > 0 ? inputs(pins.takes_supply, " power input", pins.first_supplied)
                                 : "no pin of type power_out on the net of " + quoted(pins.first));
    add_net(kv_rule::no_driver, ind, std::move(words));
  }

  // Whether the type of a pin is said; a pin without PINTYPE only counts as OUT.
  bool is_declared(std::int32_t ind) {
    const kv_object_t pin{kv_named::pin, ind};
    return said_of(pin) != nullptr ||
           pin_at(place_of(kv_named::pin, ind)).type_state == kv_sheet_pin_t::type_ok;
  }

  // Open collectors may share a net, and so may tri-state pins; neither shares one with a pin that
  // always drives.
  void check_drivers(std::int32_t ind) {
    const auto& pins = gx_at(nets_, ind);
    if (pins.out < 2) return check_sharing(ind);
    std::int32_t first = pins.first_out, second = pins.second_out, more = pins.out - 2;
    if (!is_declared(first) || !is_declared(second)) {
      const auto declared = drivers(ind, [this](std::int32_t pin) {
        return always_drives(electrical(pin)) && is_declared(pin);
      });
      if (declared.size() < 2) return;
      first = declared[0];
      second = declared[1];
      more = static_cast<std::int32_t>(declared.size()) - 2;
    }
    add_driven(ind, first, second, more);
  }

  void check_sharing(std::int32_t ind) {
    const auto& pins = gx_at(nets_, ind);
    const bool with_tri_state = pins.has_tri_state && pins.is_supplied;
    if (pins.out == 0 || !(pins.has_open || with_tri_state) || !is_declared(pins.first_out)) return;
    const auto others = drivers(ind, [&](std::int32_t pin) {
      const auto drive = electrical(pin).drive;
      return drive == kv_drive::open || (with_tri_state && drive == kv_drive::tri_state);
    });
    if (others.empty()) return;
    add_driven(ind, pins.first_out, others[0], static_cast<std::int32_t>(others.size()) - 1);
  }

  // The pins of the net that the run takes for drivers, in their order.
  template <typename Is>
  std::vector<std::int32_t> drivers(std::int32_t net, const Is& is_one) const {
    std::vector<std::int32_t> pins;
    for (const std::int32_t pin : netlist_.pins_out(net))
      if (is_one(pin)) pins.push_back(pin);
    std::ranges::sort(pins);
    return pins;
  }

  void add_driven(std::int32_t ind, std::int32_t first, std::int32_t second,
                  std::int32_t more) const {
    std::string words = "several pins drive it : " + quoted(first) + " and " + quoted(second);
    if (more > 0) words += " and " + std::to_string(more) + " more";
    add_net(kv_rule::many_drivers, ind, std::move(words));
  }

  void check_open(kv_rule rule) {
    if (!is_on(rule)) return;
    const auto each = [&](kv_named what, const char* words) {
      for (std::int32_t ind = 1; ind <= netlist_.count(what); ++ind) {
        if (netlist_.net({what, ind}) != 0) continue;
        const auto place = place_of(what, ind);
        if (const auto* const type = said_of({what, ind}); type != nullptr && type->may_be_open)
          continue;
        const bool is_input = pin_at(place).io_type == kv_io_in;
        if (is_input == (rule == kv_rule::pin_open))
          found_.add(rule, netlist_.path({what, ind}), place, words);
      }
    };
    each(kv_named::pin, "the pin is on no net");
    each(kv_named::pinm, "the pin of the block is on no net");
  }

  void check_single(std::int32_t ind) {
    const auto& pins = gx_at(nets_, ind);
    if (pins.pins != 1 || outside(ind) != 0 || is_marked_open(ind) || pins.has_open_pins_only)
      return;
    add_net(kv_rule::single_pin, ind, "its only pin is " + quoted(pins.first));
  }

  // Pins of single bits are taps of a bus, not pins of its width.
  void check_widths() {
    struct seen_t {
      std::int32_t width = 0, other_width = 0;
      kv_object_t pin, other_pin;
    };
    std::unordered_map<std::int32_t, seen_t> buses;
    for (const kv_named what : {kv_named::pinm, kv_named::pin}) {
      for (std::int32_t ind = 1; ind <= netlist_.count(what); ++ind) {
        const kv_object_t pin{what, ind};
        const std::int32_t width = netlist_.width(pin);
        if (width == 1 || !netlist_.is_bus(netlist_.net(pin))) continue;
        auto& seen = buses[netlist_.net(pin)];
        if (seen.width == 0) {
          seen.width = width;
          seen.pin = pin;
        } else if (width != seen.width && seen.other_width == 0) {
          seen.other_width = width;
          seen.other_pin = pin;
        }
      }
    }
    for (std::int32_t ind = 1; ind <= nb_of_nets(); ++ind) {
      if (!netlist_.is_bus(ind)) continue;
      const auto at = buses.find(ind);
      if (at == buses.end() || at->second.other_width == 0) continue;
      const auto& seen = at->second;
      const auto words = [&](std::int32_t width, kv_object_t pin) {
        return std::to_string(width) + " bits at \"" + std::string(netlist_.path(pin)) + "\"";
      };
      add_net(kv_rule::bus_widths, ind,
              "pins of different widths : " + words(seen.width, seen.pin) + ", " +
                  words(seen.other_width, seen.other_pin));
    }
  }

  const kv_memory_netlist_t netlist_;
  const kv_netlist_findings_t& found_;
  std::vector<net_pins_t> nets_;                                // by flat net
  std::unordered_map<std::string_view, std::int16_t> outside_;  // by path: kv_io_type of the port
  std::unordered_map<const kv_sheet_t*, std::vector<std::int32_t>> pin_places_;  // by object id
};

}  // namespace

void kv_netlist_findings_t::add(kv_rule rule, std::string_view path, kv_place_t place,
                                std::string words) const {
  const kv_severity severity = kv_severity_of(severities, rule);
  if (severity == kv_severity::off) return;
  const auto* sheet = place.visit >= 0 ? gx_at(origins.visits, place.visit).sheet : nullptr;
  findings.push_back({rule, severity, std::string(path.empty() ? "/" : path),
                      std::string(kv_visit_path(design, origins, place.visit)),
                      sheet != nullptr ? sheet->file_path : "", place.object_id, std::move(words)});
}

void kv_find_on_netlist(const kv_netlist_findings_t& found) { netlist_check(found).run(); }
