// One face of an expanded design, whatever holds it: in memory after a run (kv_design_t) or mapped
// from its file (kvi_design_t, kvi/load.h).
//
//   const kv_netlist_t netlist(design);
//   for (std::int32_t net = 1; net <= netlist.count(kv_named::net); ++net) {
//     print(netlist.path({kv_named::net, net}));
//     for (const std::int32_t pin : netlist.pins(net)) print(netlist.path({kv_named::pin, pin}));
//   }
//   for (std::int32_t k = 0; k < netlist.nb_of_pins(inst); ++k) {   // what a device is on
//     const kv_bits_t bits = netlist.bits(netlist.pin(inst, k));
//     for (std::int32_t bit = 0; bit < bits.count; ++bit) print(bits.net(bit));
//   }
//
// Everything is a number: the objects of a kind are counted from 1 to count(kind), 0 is none. What
// is asked of an index that the design does not hold is 0 or "". Texts are views into the design
// and last as long as it does. Nothing here allocates, and nothing calls through a pointer.
//
// With it: netlist/path_index.h (from a path to its objects), netlist/hierarchy.h (what is inside a
// block), netlist/simulator_names.h (names for SPICE).
#pragma once

#include <algorithm>
#include <compare>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "gx/text/at.h"
#include "netlist/design_records.h"

// The kinds of objects: leaf instances, macros (instances that stand for a sheet), flat nets, nets
// of sheets that were joined into flat ones, pins of leaf instances, pins of macros.
enum class kv_named : std::uint8_t { inst, macro, net, net_child, pin, pinm };

struct kv_object_t {
  kv_named what = kv_named::inst;
  std::int32_t index = 0;  // from 1; 0: none
  friend auto operator<=>(const kv_object_t&, const kv_object_t&) = default;
};

// The nets that the bits of a pin meet. A pin on a net that is no bus has one bit.
struct kv_bits_t {
  std::int32_t count = 0;             // bits of the pin, at least 1
  std::int32_t at = 0;                // where bit 0 would be among the nets
  std::int32_t first = 0, after = 0;  // the members of the bus: first..after - 1; none when equal

  // The net of bit 0..count - 1 of the pin; 0: it meets none, the bus ends before.
  std::int32_t net(std::int32_t bit) const {
    return at + bit >= first && at + bit < after ? at + bit : 0;
  }
  // Those nets in a row: met_first()..met_after() - 1.
  std::int32_t met_first() const { return std::clamp(at, first, after); }
  std::int32_t met_after() const { return std::clamp(at + count, first, after); }
};

// A kept property of an object.
struct kv_property_t {
  std::string_view name;
  std::int16_t type = kv_prop_string;  // kv_prop_type: which of the next is set
  std::string_view text;               // of a string
  std::int32_t whole[3] = {};          // of an integer; of a time, in steps of time_step() seconds
  float real[3] = {};                  // of a real
};

// How a design is asked. A specialisation has, all static:
//   count<Record>(design)             records of a kind
//   number<&Record::member>(design, index)   one field of a record that the design holds
//   property(design, index)           a property record, likewise
//   text(design, string index)        its characters; "" for 0 and for what it does not hold
//   kept(design), info(design)        the lists of kept properties, the summary
template <typename Design>
struct kv_source_t;

template <>
struct kv_source_t<kv_design_t> {
  template <typename Record>
  static const kv_blocked_t<Record>& array(const kv_design_t& design) {
    return design.*std::get<static_cast<std::size_t>(kv_part_of<Record>())>(kv_array_parts).array;
  }
  template <typename Record>
  static std::int32_t count(const kv_design_t& design) {
    return array<Record>(design).count;
  }
  template <auto Member>
  static auto number(const kv_design_t& design, std::int32_t index) {
    return array<typename kv_member_t<Member>::record>(design)[index].*Member;
  }
  static const kv_prop_record_t& property(const kv_design_t& design, std::int32_t index) {
    return design.props[index];
  }
  static std::string_view text(const kv_design_t& design, std::int32_t index) {
    if (!design.strings.holds(index)) return {};
    const kv_string_record_t& string = design.strings[index];
    if (string.len <= 0 || !design.chars.holds(string.index)) return {};
    return {&design.chars[string.index], static_cast<std::size_t>(string.len)};
  }
  static const kv_kept_lists_t& kept(const kv_design_t& design) { return design.kept; }
  static const kv_general_info_record_t& info(const kv_design_t& design) {
    return design.general_info;
  }
};

// Indexes that follow one another by a link, for range-based loops. Ends at 0, or after as many
// steps as there are records: a file that is written again meanwhile may hold a circle.
template <typename Next>
class kv_chain_t {
 public:
  kv_chain_t(std::int32_t first, std::int32_t most, Next next)
      : first_(first), most_(most), next_(next) {}
  struct end_t {};
  class iterator {
   public:
    explicit iterator(const kv_chain_t& chain)
        : chain_(chain), index_(chain.first_), left_(chain.most_) {}
    std::int32_t operator*() const { return index_; }
    iterator& operator++() {
      index_ = --left_ > 0 ? chain_.next_(index_) : 0;
      return *this;
    }
    bool operator!=(end_t) const { return index_ != 0; }

   private:
    const kv_chain_t& chain_;
    std::int32_t index_, left_;
  };
  iterator begin() const { return iterator(*this); }
  end_t end() const { return {}; }

 private:
  std::int32_t first_, most_;
  Next next_;
};

template <typename Design>
class kv_netlist_t {
  using source = kv_source_t<Design>;

 public:
  // Of a design, which must stay where it is; made of it silently where one is asked for.
  kv_netlist_t(const Design& design) : design_(&design) {}

  const kv_general_info_record_t& info() const { return source::info(*design_); }
  float time_step() const { return info().time_step; }  // seconds

  // --- every object

  std::int32_t count(kv_named what) const {
    return with_kind(what, [&]<typename Record>(kind_t<Record>) { return count<Record>(); });
  }
  bool holds(kv_object_t object) const {
    return object.index >= 1 && object.index <= count(object.what);
  }
  // "/XR/X2/MP1", "/XR/X2/MP1/G"; a member of a bus without a name of its own has "/D_2".
  std::string_view path(kv_object_t object) const {
    return with_kind(object.what, [&]<typename Record>(kind_t<Record>) {
      return text(at<&Record::sim_path>(object.index));
    });
  }
  // Its object on its sheet, 1..30000.
  std::int16_t object_id(kv_object_t object) const {
    return with_kind(object.what, [&]<typename Record>(kind_t<Record>) {
      return at<&Record::object_id>(object.index);
    });
  }

  // The kept properties of an object: places 0..nb_of_properties - 1, in the order of the lists
  // that the user gave. A property that an object does not have is an empty text or zeros. The
  // children of nets have none.
  std::int32_t nb_of_properties(kv_object_t object) const {
    const std::int32_t nb = with_kind(object.what, [&]<typename Record>(kind_t<Record>) {
      if constexpr (std::is_same_v<Record, kv_net_child_record_t>) {
        return std::int8_t{0};
      } else {
        return at<&Record::nb_of_property>(object.index);
      }
    });
    return std::min(nb, kept(object.what).count);
  }
  std::string_view property_name(kv_named what, std::int32_t place) const {
    return gx_view(gx_at(kept(what).entry, place).name);
  }
  kv_property_t property(kv_object_t object, std::int32_t place) const {
    kv_property_t property;
    property.name = property_name(object.what, place);
    const std::int32_t index = first_property(object) + place;
    if (!held<kv_prop_record_t>(index)) return property;
    const kv_prop_record_t& record = source::property(*design_, index);
    property.type = record.prop_type;
    if (record.prop_type == kv_prop_string) property.text = text(record.valuec);
    if (record.prop_type == kv_prop_int) std::copy_n(record.valuei, 3, property.whole);
    if (record.prop_type == kv_prop_time) std::copy_n(record.valuet, 3, property.whole);
    if (record.prop_type == kv_prop_real) std::copy_n(record.valuer, 3, property.real);
    return property;
  }
  // Value 0 (least), 1 (typical) or 2 (greatest) of a property that is no string; a time in
  // seconds.
  double value(const kv_property_t& property, int which) const {
    if (property.type == kv_prop_real) return static_cast<double>(property.real[which]);
    const double whole = property.whole[which];
    return property.type == kv_prop_time ? whole * static_cast<double>(time_step()) : whole;
  }

  // --- leaf instances and macros

  std::string_view file_path(kv_object_t owner) const {  // of the sheet that it is drawn on
    return text(of_owner<&kv_inst_record_t::file_path, &kv_macro_record_t::file_path>(owner));
  }
  std::int8_t timing_index(kv_object_t owner) const {  // 0..120
    return of_owner<&kv_inst_record_t::timing_index, &kv_macro_record_t::timing_index>(owner);
  }
  std::int32_t nb_of_pins(kv_object_t owner) const {
    return of_owner<&kv_inst_record_t::nb_of_pin, &kv_macro_record_t::nb_of_pin>(owner);
  }
  // Pin 0..nb_of_pins - 1; those of an instance or macro follow one another.
  kv_object_t pin(kv_object_t owner, std::int32_t place) const {
    const std::int32_t first =
        of_owner<&kv_inst_record_t::first_pin_ind, &kv_macro_record_t::first_pin_ind>(owner);
    const kv_named what = owner.what == kv_named::macro ? kv_named::pinm : kv_named::pin;
    return {what, first == 0 ? 0 : first + place};
  }

  // --- pins of leaf instances and of macros

  kv_object_t owner(kv_object_t pin) const {
    return pin.what == kv_named::pinm
               ? kv_object_t{kv_named::macro, at<&kv_pinm_record_t::macro_ind>(pin.index)}
               : kv_object_t{kv_named::inst, at<&kv_pin_record_t::instance_ind>(pin.index)};
  }
  // Its name on its symbol: the end of its path, after that of its owner.
  std::string_view pin_name(kv_object_t pin) const {
    const std::size_t before = path(owner(pin)).size() + 1;
    const std::string_view whole = path(pin);
    return whole.substr(std::min(before, whole.size()));
  }
  // kv_io_type; 0 for pins of macros, of which none is kept.
  std::int16_t io_type(kv_object_t pin) const {
    return pin.what == kv_named::pin ? at<&kv_pin_record_t::io_type>(pin.index) : std::int16_t{0};
  }
  // The net or the bus that it is on; 0 when it is on none.
  std::int32_t net(kv_object_t pin) const {
    return of_pin<&kv_pin_record_t::net_ind, &kv_pinm_record_t::net_ind>(pin);
  }
  // Of a pin on a bus: its own bits, and the bit of the bus that its first one meets.
  std::int16_t first_bit(kv_object_t pin) const {
    return of_pin<&kv_pin_record_t::pin_start, &kv_pinm_record_t::pin_start>(pin);
  }
  std::int16_t last_bit(kv_object_t pin) const {
    return of_pin<&kv_pin_record_t::pin_end, &kv_pinm_record_t::pin_end>(pin);
  }
  std::int16_t net_first_bit(kv_object_t pin) const {
    return of_pin<&kv_pin_record_t::pin_net_start, &kv_pinm_record_t::pin_net_start>(pin);
  }
  std::int32_t width(kv_object_t pin) const { return std::abs(last_bit(pin) - first_bit(pin)) + 1; }
  // The nets of its bits. Those of a bus [7:0] that falls are counted from its bit 7 on.
  kv_bits_t bits(kv_object_t pin) const {
    const std::int32_t net = this->net(pin);
    if (net == 0) return {.count = width(pin)};
    if (!is_bus(net)) return {1, net, net, net + 1};
    const std::int32_t first = first_member(net), start = bus_start(net);
    const std::int32_t from = falls(net) ? start - net_first_bit(pin) : net_first_bit(pin) - start;
    return {width(pin), first + from, first, first == 0 ? 0 : first + width(net)};
  }

  // --- flat nets

  // Its name on its sheet; "" for a member without one.
  std::string_view name(std::int32_t net) const { return text(at<&kv_net_record_t::name>(net)); }
  std::int16_t net_type(std::int32_t net) const { return at<&kv_net_record_t::net_type>(net); }
  std::int16_t net_kind(std::int32_t net) const { return at<&kv_net_record_t::net_kind>(net); }
  bool is_bus(std::int32_t net) const { return net_type(net) == kv_net_bus; }
  // Its value at the start of a simulation, as INIT gives it: 0..255; 0 for a bus.
  std::uint8_t initial_state(std::int32_t net) const {
    return is_bus(net) ? std::uint8_t{0}
                       : static_cast<std::uint8_t>(at<&kv_net_record_t::state_init>(net));
  }

  // Of a bus: its range, its bits, and its member 0..width - 1, from bit bus_start on. Members
  // follow one another. 0 for a net that is no bus.
  std::int16_t bus_start(std::int32_t net) const {
    return of_bus<&kv_net_record_t::net_bus_start>(net);
  }
  std::int16_t bus_end(std::int32_t net) const {
    return of_bus<&kv_net_record_t::net_bus_end>(net);
  }
  std::int32_t width(std::int32_t bus) const {
    return is_bus(bus) ? std::abs(bus_end(bus) - bus_start(bus)) + 1 : 0;
  }
  std::int32_t first_member(std::int32_t bus) const {
    const std::int32_t first = of_bus<&kv_net_record_t::netind_start>(bus);
    return first >= 1 && first <= count(kv_named::net) - width(bus) + 1 ? first : 0;
  }
  // Of a bus and of its members with names of their own: the first, the next.
  std::int32_t first_named(std::int32_t bus) const {
    return at<&kv_net_record_t::first_sub_net>(bus);
  }
  std::int32_t next_named(std::int32_t net) const {
    return at<&kv_net_record_t::next_sub_net>(net);
  }
  std::int32_t father(std::int32_t named) const { return at<&kv_net_record_t::father_net>(named); }

  // Of a member: its bus (0 for other nets), its place 0.. in it, its bit in the range of the bus.
  std::int32_t bus(std::int32_t net) const { return at<&kv_net_record_t::bus>(net); }
  std::int16_t position(std::int32_t net) const { return at<&kv_net_record_t::posinbus>(net); }
  std::int32_t bit(std::int32_t net) const {
    const std::int32_t of = bus(net);
    return falls(of) ? bus_start(of) - position(net) : bus_start(of) + position(net);
  }

  // The nets of sheets that were joined into it, in the order of joining: indexes of children.
  std::int32_t nb_of_children(std::int32_t net) const {
    return at<&kv_net_record_t::nb_of_child>(net);
  }
  auto children(std::int32_t net) const {
    return chain<&kv_net_child_record_t::next_child>(at<&kv_net_record_t::first_child>(net));
  }
  std::int32_t next_child(std::int32_t child) const {
    return at<&kv_net_child_record_t::next_child>(child);
  }
  std::string_view child_name(std::int32_t child) const {
    return text(at<&kv_net_child_record_t::name>(child));
  }
  std::int16_t child_kind(std::int32_t child) const {
    return at<&kv_net_child_record_t::net_kind>(child);
  }

  // The pins of leaf instances on it. A bidirectional pin is on both chains; pins() has each once:
  // those of the input chain, then those of the output chain alone. The counters stop at 32,767.
  // A pin on several bits of a bus may be missing from the chains of some of them: a run says so.
  std::int16_t nb_of_pins_in(std::int32_t net) const {
    return at<&kv_net_record_t::nb_pin_in>(net);
  }
  std::int16_t nb_of_pins_out(std::int32_t net) const {
    return at<&kv_net_record_t::nb_pin_out>(net);
  }
  auto pins_in(std::int32_t net) const {
    return chain<&kv_pin_record_t::next_pin_in_ind>(first_pin_in(net));
  }
  auto pins_out(std::int32_t net) const {
    return chain<&kv_pin_record_t::next_pin_out_ind>(first_pin_out(net));
  }
  auto pins(std::int32_t net) const {
    const auto out_alone = [this](std::int32_t pin) {
      while (pin != 0 && io_type({kv_named::pin, pin}) != kv_io_out) pin = next_pin_out(pin);
      return pin;
    };
    const auto next = [this, net, out_alone](std::int32_t pin) {
      if (io_type({kv_named::pin, pin}) == kv_io_out) return out_alone(next_pin_out(pin));
      const std::int32_t after = next_pin_in(pin);
      return after != 0 ? after : out_alone(first_pin_out(net));
    };
    const std::int32_t first = first_pin_in(net);
    return kv_chain_t(first != 0 ? first : out_alone(first_pin_out(net)), count(kv_named::pin),
                      next);
  }
  std::int32_t first_pin_in(std::int32_t net) const {
    return at<&kv_net_record_t::first_pin_in_ind>(net);
  }
  std::int32_t first_pin_out(std::int32_t net) const {
    return at<&kv_net_record_t::first_pin_out_ind>(net);
  }
  std::int32_t next_pin_in(std::int32_t pin) const {
    return at<&kv_pin_record_t::next_pin_in_ind>(pin);
  }
  std::int32_t next_pin_out(std::int32_t pin) const {
    return at<&kv_pin_record_t::next_pin_out_ind>(pin);
  }

 private:
  template <typename Record>
  struct kind_t {};
  template <typename Visit>
  static auto with_kind(kv_named what, Visit visit) {
    switch (what) {
      case kv_named::inst:
        return visit(kind_t<kv_inst_record_t>{});
      case kv_named::macro:
        return visit(kind_t<kv_macro_record_t>{});
      case kv_named::net:
        return visit(kind_t<kv_net_record_t>{});
      case kv_named::net_child:
        return visit(kind_t<kv_net_child_record_t>{});
      case kv_named::pin:
        return visit(kind_t<kv_pin_record_t>{});
      case kv_named::pinm:
        break;
    }
    return visit(kind_t<kv_pinm_record_t>{});
  }

  template <typename Record>
  std::int32_t count() const {
    return source::template count<Record>(*design_);
  }
  template <typename Record>
  bool held(std::int32_t index) const {
    return index >= 1 && index <= count<Record>();
  }
  std::string_view text(std::int32_t string) const { return source::text(*design_, string); }
  template <auto Member>
  auto at(std::int32_t index) const {
    if (held<typename kv_member_t<Member>::record>(index)) [[likely]]
      return source::template number<Member>(*design_, index);
    return typename kv_member_t<Member>::value{};
  }
  // A field that instances and macros, or their pins, both have.
  template <auto OfInst, auto OfMacro>
  auto of_owner(kv_object_t owner) const {
    if (owner.what == kv_named::inst) return at<OfInst>(owner.index);
    return owner.what == kv_named::macro ? at<OfMacro>(owner.index) : decltype(at<OfInst>(0)){};
  }
  template <auto OfPin, auto OfPinm>
  auto of_pin(kv_object_t pin) const {
    if (pin.what == kv_named::pin) return at<OfPin>(pin.index);
    return pin.what == kv_named::pinm ? at<OfPinm>(pin.index) : decltype(at<OfPin>(0)){};
  }
  // A field that only buses have.
  template <auto Member>
  auto of_bus(std::int32_t net) const {
    return is_bus(net) ? at<Member>(net) : typename kv_member_t<Member>::value{};
  }
  bool falls(std::int32_t bus) const { return bus_end(bus) < bus_start(bus); }

  const kv_prop_list_t& kept(kv_named what) const {
    const kv_kept_lists_t& lists = source::kept(*design_);
    if (what == kv_named::inst || what == kv_named::macro) return lists.property_instance;
    return what == kv_named::pin || what == kv_named::pinm ? lists.property_pin
                                                           : lists.property_net;
  }
  std::int32_t first_property(kv_object_t object) const {
    return with_kind(object.what, [&]<typename Record>(kind_t<Record>) {
      if constexpr (std::is_same_v<Record, kv_net_child_record_t>) {
        return std::int32_t{0};
      } else {
        return at<&Record::first_prop>(object.index);
      }
    });
  }

  // The links of one record after the other.
  template <auto Member>
  auto chain(std::int32_t first) const {
    return kv_chain_t(first, count<typename kv_member_t<Member>::record>(),
                      [this](std::int32_t index) { return at<Member>(index); });
  }

  const Design* design_;
};

using kv_memory_netlist_t = kv_netlist_t<kv_design_t>;
