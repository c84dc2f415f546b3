// Writes the data listing: the summary, then instances, nets and macros with all that hangs on
// them.
#include "expand/output/data_listing.h"

#include <string>

#include "expand/output/listing_text.h"
#include "netlist/netlist.h"

namespace {

struct listing {
  kv_memory_netlist_t netlist;
  kv_listing_text_t out;

  void header(std::string_view path);
  void title(std::string_view label, std::int32_t index) {
    out.rule('*', 41);
    out.rule('*', 41);
    out.integer(label, index);
    out.rule('*', 41);
  }
  // Places and paths: what every object has.
  void object_id(kv_object_t object) { out.integer(" object_id  : ", netlist.object_id(object)); }
  void path(std::string_view label, kv_object_t object) { out.quoted(label, netlist.path(object)); }
  // An instance or a macro: how its kind and that of its pins are written.
  struct owner_words_t {
    std::string_view title, property, pin_owner;
    char rule;
    int length;
  };
  // The kind is known when these are compiled: they are asked for each of millions of objects.
  template <kv_named What>
  void properties(std::int32_t index, int rule, std::string_view count_label,
                  std::string_view label);
  template <kv_named What>
  void owner(std::int32_t index, const owner_words_t& words);
  template <kv_named What>
  void pin(std::int32_t index, const owner_words_t& words);
  void net(std::int32_t index);
  void net_children(std::int32_t index);
  template <typename Chain>
  void net_pins(std::string_view count_label, std::string_view pin_label, int rule,
                std::int32_t net_index, std::int32_t count, const Chain& pins);
};

constexpr listing::owner_words_t instance_words{
    " Instance : ", " Prop instance : name : ", " instance_ind  : ", '@', 30};
constexpr listing::owner_words_t macro_words{
    " MACRO : ", " Prop MACRO : name : ", " macro_ind  : ", '#', 31};

void listing::header(std::string_view path) {
  const kv_general_info_record_t& info = netlist.info();
  out.quoted("#    ", path);
  out.text("#\n#  KIVO  data  \"\n#\n");
  out.rule('#', 41);
  out.text("\n");
  out.integer(" day                  :", info.day);
  out.integer(" month                :", info.month);
  out.integer(" year                 :", info.year);
  out.real(" software_revision    :", info.software_revision);
  const auto count = [&](std::int32_t kv_general_info_record_t::*member) {
    const std::string_view name = kv_count_name(member);
    std::string label(" ");
    label += member == &kv_general_info_record_t::nbof_pinm ? "nbof_pin (for macro)" : name;
    label.resize(22, ' ');
    out.integer(label += ':', info.*member);
  };
  for (const auto& part : kv_list_parts) count(part.count);
  kv_for_each_part([&](const auto& part) { count(part.count); });
  out.real(" time_step            :", info.time_step);
  out.integer(" num_warnings         :", info.num_warnings);
  out.integer(" num_errors           :", info.num_errors);
  out.text("\n");
  out.rule('#', 41);
  out.text("\n");
}

template <kv_named What>
void listing::properties(std::int32_t index, int rule, std::string_view count_label,
                         std::string_view label) {
  const kv_object_t object{What, index};
  const std::int32_t nb_of_properties = netlist.nb_of_properties(object);
  out.integer(count_label, nb_of_properties);
  for (std::int32_t k = 0; k < nb_of_properties; ++k) {
    const kv_property_t property = netlist.property(object, k);
    out.rule('-', rule);
    out.text(" \n");
    out.text(label);
    out.text("\"");
    out.text(property.name);
    out.text("\"");
    out.integer(" prop_type  : ", property.type);
    switch (property.type) {
      case kv_prop_string:
        out.quoted(" prop_char   : ", property.text);
        break;
      case kv_prop_int:
        out.integer(" prop_int  1 : ", property.whole[0]);
        out.integer(" prop_int  2 : ", property.whole[1]);
        out.integer(" prop_int  3 : ", property.whole[2]);
        break;
      case kv_prop_time:
        out.real(" prop_time  1 : ", static_cast<float>(property.whole[0]) * netlist.time_step());
        out.real(" prop_time  2 : ", static_cast<float>(property.whole[1]) * netlist.time_step());
        out.real(" prop_time  3 : ", static_cast<float>(property.whole[2]) * netlist.time_step());
        break;
      case kv_prop_real:
        out.real(" prop_real 1 : ", property.real[0]);
        out.real(" prop_real 2 : ", property.real[1]);
        out.real(" prop_real 3 : ", property.real[2]);
        break;
    }
  }
}

template <kv_named What>
void listing::owner(std::int32_t index, const owner_words_t& words) {
  constexpr kv_named pins = What == kv_named::inst ? kv_named::pin : kv_named::pinm;
  const kv_object_t object{What, index};
  title(words.title, object.index);
  object_id(object);
  path(" sim_path   : ", object);
  out.quoted(" file_path   : ", netlist.file_path(object));
  properties<What>(index, 46, " nb_of_prop  : ", words.property);
  out.rule(words.rule, words.length);
  const std::int32_t nb_of_pins = netlist.nb_of_pins(object);
  out.integer(" nb_of_pin  : ", nb_of_pins);
  const std::int32_t first = netlist.pin(object, 0).index;
  for (std::int32_t k = 0; k < nb_of_pins; ++k) pin<pins>(first + k, words);
}

template <kv_named What>
void listing::pin(std::int32_t index, const owner_words_t& words) {
  const kv_object_t object{What, index};
  out.rule(words.rule, words.length);
  out.integer(" Pin  : ", object.index);
  object_id(object);
  if (What == kv_named::pin) out.integer(" io_type  : ", netlist.io_type(object));
  path(" sim_path   : ", object);
  out.integer(words.pin_owner, netlist.owner(object).index);
  out.integer(" net_ind       : ", netlist.net(object));
  properties<What>(index, 46, " nb_of_prop  : ", " Prop PIN : name : ");
}

void listing::net(std::int32_t index) {
  const kv_object_t object{kv_named::net, index};
  const bool is_bus = netlist.is_bus(index);
  title(" NET : ", index);
  out.integer(" self          : ", index);
  out.integer(" object_id     : ", netlist.object_id(object));
  out.integer(" net_type      : ", netlist.net_type(index));
  out.integer(" net_kind      : ", netlist.net_kind(index));
  out.quoted(" name         : ", netlist.name(index));
  path(" sim_path     : ", object);
  if (is_bus) {
    out.integer(" net_bus_start : ", netlist.bus_start(index));
    out.integer(" net_bus_end   : ", netlist.bus_end(index));
    out.integer(" netind_start  : ", netlist.first_member(index));
  } else {
    out.integer(" bus           : ", netlist.bus(index));
    out.integer(" posinbus      : ", netlist.position(index));
    out.integer(" first_sub_net : ", netlist.first_named(index));
    out.integer(" father_net    : ", netlist.father(index));
    out.integer(" next_sub_net  : ", netlist.next_named(index));
  }
  properties<kv_named::net>(index, 29, " nb_of_prop    : ", " Prop NET : name : ");
  net_children(index);
  net_pins(" nb_pin_in  : ", "  PIN_IN : ", 26, index, netlist.nb_of_pins_in(index),
           netlist.pins_in(index));
  net_pins(" nb_pin_out  : ", "  PIN_OUT : ", 27, index, netlist.nb_of_pins_out(index),
           netlist.pins_out(index));
  // The first two halfwords of the part that differs by type: of a net that is no bus, they hold
  // its initial state.
  out.integer(" net_bus_start : ",
              is_bus ? netlist.bus_start(index) : netlist.initial_state(index));
  out.integer(" net_bus_end   : ", netlist.bus_end(index));
}

void listing::net_children(std::int32_t index) {
  out.rule('@', 30);
  out.integer(" nb_of_child  : ", netlist.nb_of_children(index));
  int n = 0;
  for (const std::int32_t child : netlist.children(index)) {
    const kv_object_t object{kv_named::net_child, child};
    out.rule('@', 30);
    out.integers("  NET_CHILD : ", index, ++n);
    object_id(object);
    out.integer(" net_kind   : ", netlist.child_kind(child));
    out.integer(" next_child : ", netlist.next_child(child));
    path(" sim_path   : ", object);
    out.quoted("  name     : ", netlist.child_name(child));
  }
}

// The chain may be longer than its counter.
template <typename Chain>
void listing::net_pins(std::string_view count_label, std::string_view pin_label, int rule,
                       std::int32_t net_index, std::int32_t count, const Chain& pins) {
  out.rule('@', rule);
  out.integer(count_label, count);
  int n = 0;
  for (const std::int32_t pin : pins) {
    const kv_object_t object{kv_named::pin, pin};
    out.rule('@', rule);
    out.integers(pin_label, net_index, ++n);
    object_id(object);
    path(" sim_path   : ", object);
  }
}

}  // namespace

bool kv_write_listing_head(const kv_design_t& design, std::FILE* file, std::string_view path) {
  listing list{design, kv_listing_text_t(file)};
  list.header(path);
  return list.out.finish();
}

bool kv_write_listing_body(const kv_design_t& design, std::FILE* file) {
  listing list{design, kv_listing_text_t(file)};
  const auto each = [&](kv_named what, auto write) {
    for (std::int32_t i = 1; i <= list.netlist.count(what); ++i) write(i);
  };
  each(kv_named::inst, [&](std::int32_t i) { list.owner<kv_named::inst>(i, instance_words); });
  each(kv_named::net, [&](std::int32_t i) { list.net(i); });
  each(kv_named::macro, [&](std::int32_t i) { list.owner<kv_named::macro>(i, macro_words); });
  list.out.text("# KIVO generate DATA : END : OK  \n");
  return list.out.finish();
}
