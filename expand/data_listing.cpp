// Writes the data listing: the summary, then instances, nets and macros with all that hangs on
// them.
#include "expand/data_listing.h"

#include <string>

#include "expand/design_records.h"
#include "expand/listing_text.h"
#include "gx/text/at.h"

namespace {

struct listing {
  const kv_design_t& design;
  kv_listing_text_t out;

  void header(std::string_view path);
  void title(std::string_view label, std::int32_t index) {
    out.rule('*', 41);
    out.rule('*', 41);
    out.integer(label, index);
    out.rule('*', 41);
  }
  void string(std::string_view label, std::int32_t index) {
    out.quoted(label, kv_text(design, index));
  }
  void properties(const kv_prop_list_t& list, int rule, std::string_view label, std::int32_t count,
                  std::int32_t first);
  void instance(std::int32_t index);
  void instance_pin(std::int32_t index);
  void net(std::int32_t index);
  void net_children(std::int32_t index);
  void net_pins(std::string_view count_label, std::string_view pin_label, int rule,
                std::int32_t net_index, std::int32_t count, std::int32_t first,
                std::int32_t kv_pin_record_t::*next);
  void macro(std::int32_t index);
  void macro_pin(std::int32_t index);
};

void listing::header(std::string_view path) {
  const kv_general_info_record_t& info = design.general_info;
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

void listing::properties(const kv_prop_list_t& list, int rule, std::string_view label,
                         std::int32_t count, std::int32_t first) {
  const float time_step = design.general_info.time_step;
  for (std::int32_t k = 0; k < count && k < list.count; ++k) {
    const kv_prop_record_t& prop = kv_record(design.props, first + k);
    out.rule('-', rule);
    out.text(" \n");
    out.text(label);
    out.text("\"");
    out.text(gx_view(gx_at(list.entry, k).name));
    out.text("\"");
    out.integer(" prop_type  : ", prop.prop_type);
    switch (prop.prop_type) {
      case kv_prop_string:
        string(" prop_char   : ", prop.valuec);
        break;
      case kv_prop_int:
        out.integer(" prop_int  1 : ", prop.valuei[0]);
        out.integer(" prop_int  2 : ", prop.valuei[1]);
        out.integer(" prop_int  3 : ", prop.valuei[2]);
        break;
      case kv_prop_time:
        out.real(" prop_time  1 : ", static_cast<float>(prop.valuet[0]) * time_step);
        out.real(" prop_time  2 : ", static_cast<float>(prop.valuet[1]) * time_step);
        out.real(" prop_time  3 : ", static_cast<float>(prop.valuet[2]) * time_step);
        break;
      case kv_prop_real:
        out.real(" prop_real 1 : ", prop.valuer[0]);
        out.real(" prop_real 2 : ", prop.valuer[1]);
        out.real(" prop_real 3 : ", prop.valuer[2]);
        break;
    }
  }
}

void listing::instance(std::int32_t index) {
  const kv_inst_record_t& inst = kv_record(design.insts, index);
  title(" Instance : ", index);
  out.integer(" object_id  : ", inst.object_id);
  string(" sim_path   : ", inst.sim_path);
  string(" file_path   : ", inst.file_path);
  out.integer(" nb_of_prop  : ", inst.nb_of_property);
  properties(design.kept.property_instance, 46, " Prop instance : name : ", inst.nb_of_property,
             inst.first_prop);
  out.rule('@', 30);
  out.integer(" nb_of_pin  : ", inst.nb_of_pin);
  for (std::int32_t k = 0; k < inst.nb_of_pin; ++k) instance_pin(inst.first_pin_ind + k);
}

void listing::instance_pin(std::int32_t index) {
  const kv_pin_record_t& pin = kv_record(design.pins, index);
  out.rule('@', 30);
  out.integer(" Pin  : ", index);
  out.integer(" object_id  : ", pin.object_id);
  out.integer(" io_type  : ", pin.io_type);
  string(" sim_path   : ", pin.sim_path);
  out.integer(" instance_ind  : ", pin.instance_ind);
  out.integer(" net_ind       : ", pin.net_ind);
  out.integer(" nb_of_prop  : ", pin.nb_of_property);
  properties(design.kept.property_pin, 46, " Prop PIN : name : ", pin.nb_of_property,
             pin.first_prop);
}

void listing::net(std::int32_t index) {
  const kv_net_record_t& net = kv_record(design.nets, index);
  const bool is_bus = net.net_type == kv_net_bus;
  title(" NET : ", index);
  out.integer(" self          : ", net.self);
  out.integer(" object_id     : ", net.object_id);
  out.integer(" net_type      : ", net.net_type);
  out.integer(" net_kind      : ", net.net_kind);
  string(" name         : ", net.name);
  string(" sim_path     : ", net.sim_path);
  if (is_bus) {
    out.integer(" net_bus_start : ", net.net_bus_start);
    out.integer(" net_bus_end   : ", net.net_bus_end);
    out.integer(" netind_start  : ", net.netind_start);
  } else {
    out.integer(" bus           : ", net.bus);
    out.integer(" posinbus      : ", net.posinbus);
    out.integer(" first_sub_net : ", net.first_sub_net);
    out.integer(" father_net    : ", net.father_net);
    out.integer(" next_sub_net  : ", net.next_sub_net);
  }
  out.integer(" nb_of_prop    : ", net.nb_of_property);
  properties(design.kept.property_net, 29, " Prop NET : name : ", net.nb_of_property,
             net.first_prop);
  net_children(index);
  net_pins(" nb_pin_in  : ", "  PIN_IN : ", 26, index, net.nb_pin_in, net.first_pin_in_ind,
           &kv_pin_record_t::next_pin_in_ind);
  net_pins(" nb_pin_out  : ", "  PIN_OUT : ", 27, index, net.nb_pin_out, net.first_pin_out_ind,
           &kv_pin_record_t::next_pin_out_ind);
  // The first two halfwords of the part that differs by type: of a net that is no bus, they hold
  // its initial state.
  out.integer(" net_bus_start : ",
              is_bus ? net.net_bus_start : static_cast<std::uint8_t>(net.state_init));
  out.integer(" net_bus_end   : ", is_bus ? net.net_bus_end : 0);
}

void listing::net_children(std::int32_t index) {
  const kv_net_record_t& net = kv_record(design.nets, index);
  out.rule('@', 30);
  out.integer(" nb_of_child  : ", net.nb_of_child);
  std::int32_t child_index = net.first_child;
  for (std::int32_t c = 1; c <= net.nb_of_child; ++c) {
    const kv_net_child_record_t& child = kv_record(design.net_childs, child_index);
    out.rule('@', 30);
    out.integers("  NET_CHILD : ", index, c);
    out.integer(" object_id  : ", child.object_id);
    out.integer(" net_kind   : ", child.net_kind);
    out.integer(" next_child : ", child.next_child);
    string(" sim_path   : ", child.sim_path);
    string("  name     : ", child.name);
    child_index = child.next_child;
  }
}

void listing::net_pins(std::string_view count_label, std::string_view pin_label, int rule,
                       std::int32_t net_index, std::int32_t count, std::int32_t first,
                       std::int32_t kv_pin_record_t::*next) {
  out.rule('@', rule);
  out.integer(count_label, count);
  std::int32_t pin_index = first;
  for (std::int32_t p = 1; pin_index != 0; ++p) {  // the chain may be longer than its counter
    const kv_pin_record_t& pin = kv_record(design.pins, pin_index);
    out.rule('@', rule);
    out.integers(pin_label, net_index, p);
    out.integer(" object_id  : ", pin.object_id);
    string(" sim_path   : ", pin.sim_path);
    pin_index = pin.*next;
  }
}

void listing::macro(std::int32_t index) {
  const kv_macro_record_t& macro = kv_record(design.macros, index);
  title(" MACRO : ", index);
  out.integer(" object_id  : ", macro.object_id);
  string(" sim_path   : ", macro.sim_path);
  string(" file_path   : ", macro.file_path);
  out.integer(" nb_of_prop  : ", macro.nb_of_property);
  properties(design.kept.property_instance, 46, " Prop MACRO : name : ", macro.nb_of_property,
             macro.first_prop);
  out.rule('#', 31);
  out.integer(" nb_of_pin  : ", macro.nb_of_pin);
  for (std::int32_t k = 0; k < macro.nb_of_pin; ++k) macro_pin(macro.first_pin_ind + k);
}

void listing::macro_pin(std::int32_t index) {
  const kv_pinm_record_t& pin = kv_record(design.pinms, index);
  out.rule('#', 31);
  out.integer(" Pin  : ", index);
  out.integer(" object_id  : ", pin.object_id);
  string(" sim_path   : ", pin.sim_path);
  out.integer(" macro_ind  : ", pin.macro_ind);
  out.integer(" net_ind       : ", pin.net_ind);
  out.integer(" nb_of_prop  : ", pin.nb_of_property);
  properties(design.kept.property_pin, 46, " Prop PIN : name : ", pin.nb_of_property,
             pin.first_prop);
}

}  // namespace

bool kv_write_listing_head(const kv_design_t& design, std::FILE* file, std::string_view path) {
  listing list{design, kv_listing_text_t(file)};
  list.header(path);
  return list.out.finish();
}

bool kv_write_listing_body(const kv_design_t& design, std::FILE* file) {
  listing list{design, kv_listing_text_t(file)};
  for (std::int32_t i = 1; i <= design.insts.count; ++i) list.instance(i);
  for (std::int32_t i = 1; i <= design.nets.count; ++i) list.net(i);
  for (std::int32_t i = 1; i <= design.macros.count; ++i) list.macro(i);
  list.out.text("# KIVO generate DATA : END : OK  \n");
  return list.out.finish();
}
