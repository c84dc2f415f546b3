// Appending the objects of a sheet to the store.
#include "expand/run/save_records.h"

#include <charconv>
#include <cstring>

#include "expand/debug.h"
#include "expand/messages.h"
#include "expand/run/pin_chains.h"
#include "expand/sheet/sheet_texts.h"
#include "expand/sheet/values.h"
#include "gx/text/at.h"

namespace {

void save_value(kv_design_t& design, const kv_kept_t& kept, std::string_view text) {
  switch (kept.type) {
    case kv_prop_string:
      kv_save_prop_str(design, text);
      break;
    case kv_prop_int:
      kv_save_prop_int(design, kept.number[0], kept.number[1], kept.number[2]);
      break;
    case kv_prop_time:
      kv_save_prop_time(design, kept.number[0], kept.number[1], kept.number[2]);
      break;
    case kv_prop_real:
      kv_save_prop_real(design, kept.real[0], kept.real[1], kept.real[2]);
      break;
  }
}

// Saves the kept properties of an object ("Net"), which then follow one another in the store.
template <typename Record>
void save_kept(kv_flatten_t& run, const kv_sheet_t& sheet, std::int32_t first,
               const kv_prop_list_t& list, std::string_view object, Record& record) {
  record.nb_of_property = static_cast<std::int8_t>(list.count);
  record.first_prop = list.count > 0 ? run.design.props.count + 1 : 0;
  const kv_kept_t* kept = sheet.kept.data() + first;
  const auto save = [&](const kv_prop_type_record_t& entry, const kv_kept_t& value,
                        std::string_view text) {
    save_value(run.design, value, text);
    if (value.error)
      kv_tell(kv_message::value_invalid, run.path.view(), object, gx_view(entry.name), text);
  };
  for (const auto& entry : list) {
    const std::string_view text = sheet.view(kept->text);
    if (kept->decode_at_visit) {
      kv_kept_t here = *kept;
      kv_decode_kept(here, text, {run.setup, run.design, run.expand_level, run.macro_level});
      save(entry, here, text);
    } else {
      save(entry, *kept, text);
    }
    ++kept;
  }
}

// What instances and macros have in common.
template <typename Record>
void fill_instance(kv_flatten_t& run, const kv_sheet_t& sheet, const kv_sheet_inst_t& inst,
                   std::int32_t index, std::int8_t timing_index, Record& record) {
  record.self = index;
  record.object_id = inst.object_id;
  record.timing_index = timing_index;
  record.sim_path = kv_save_string(run.design, run.path.view());
  record.file_path = kv_save_string(run.design, sheet.file_path);
  record.nb_of_pin = static_cast<std::int16_t>(inst.nb_of_pin);
  save_kept(run, sheet, inst.kept, run.setup.property_instance, "Instance", record);
}

void check_pin_type(const kv_sheet_pin_t& pin, std::string_view path) {
  if (pin.type_state == kv_sheet_pin_t::type_missing) {
    kv_tell(kv_message::pintype_missing, path);
  } else if (pin.type_state == kv_sheet_pin_t::type_invalid) {
    kv_tell(kv_message::pintype_invalid, path);
  }
}

// What pins and macro pins have in common; the flat net, nullptr when the pin is on none.
template <typename Record>
const kv_flat_t* fill_pin(kv_flatten_t& run, const kv_sheet_t& sheet, const kv_sheet_pin_t& pin,
                          std::int32_t index, const kv_flat_t* flats, const char* operation,
                          Record& record) {
  record.self = index;
  record.object_id = pin.object_id;
  record.sim_path = kv_save_string(run.design, run.path.view());
  record.pin_start = pin.pin_start;
  record.pin_end = pin.pin_end;
  record.pin_net_start = pin.pin_net_start;
  save_kept(run, sheet, pin.kept, run.setup.property_pin, "Pin", record);
  const kv_flat_t* flat = pin.group >= 0 ? flats + pin.group : nullptr;
  if (flat == nullptr || flat->net == 0) {
    kv_debug(" %s  : error : net of pin  : %d\n", operation, pin.object_id);
    kv_tell(kv_message::pin_without_net, run.path.view());
    return nullptr;
  }
  record.net_ind = flat->net;
  const kv_net_record_t& net = run.design.nets[flat->net];
  if (net.net_type == kv_net_bus && pin.position >= 0) {
    record.pin_net_start =
        static_cast<std::int16_t>(net.net_bus_start + flat->position + pin.position);
  }
  if (pin.range_error) kv_tell(kv_message::pin_beyond_bus, run.path.view());
  return flat;
}

void chain_pin(kv_design_t& design, const kv_sheet_pin_t& pin, const kv_flat_t& flat,
               std::int32_t index, std::string_view path) {
  const kv_net_record_t& net = design.nets[flat.net];
  if (pin.position < 0) return;  // its first bit lies outside the bus, as was reported
  const kv_chained chained =
      net.net_type != kv_net_bus
          ? kv_chain_pin(design, index, flat.net, 1)
          : kv_chain_pin(design, index, net.netind_start + flat.position + pin.position, pin.width);
  if (chained == kv_chained::not_all) {
    kv_tell(kv_message::pin_off_chain, path);
  } else if (chained == kv_chained::uncounted) {
    kv_tell(kv_message::pins_uncounted, kv_text(design, net.sim_path));
  }
}

void kv_save_pin(kv_flatten_t& run, const kv_sheet_t& sheet, const kv_sheet_pin_t& pin,
                 std::int32_t inst_ind, std::int32_t index, const kv_flat_t* flats) {
  const kv_path_step step(run, sheet.view(pin.suffix));
  auto& record = run.design.pins[index];
  record.io_type = pin.io_type;
  record.instance_ind = inst_ind;
  check_pin_type(pin, run.path.view());
  const kv_flat_t* flat = fill_pin(run, sheet, pin, index, flats, "KV_SAVE_PIN", record);
  if (flat != nullptr) chain_pin(run.design, pin, *flat, index, run.path.view());
}

void kv_save_pinm(kv_flatten_t& run, const kv_sheet_t& sheet, const kv_sheet_pin_t& pin,
                  std::int32_t macro_ind, std::int32_t index, const kv_flat_t* flats) {
  const kv_path_step step(run, sheet.view(pin.suffix));
  auto& record = run.design.pinms[index];
  record.macro_ind = macro_ind;
  fill_pin(run, sheet, pin, index, flats, "KV_SAVE_PINM", record);
}

// Name or path of a bus member: that of the bus, "_" and the position.
class member_text {
 public:
  explicit member_text(std::string_view bus) : stem_len_(bus.size() + 1) {
    std::memcpy(chars_.data(), bus.data(), bus.size());
    chars_[bus.size()] = '_';
  }
  std::string_view at(std::int32_t position) {
    char* end =
        std::to_chars(chars_.data() + stem_len_, chars_.data() + chars_.size(), position).ptr;
    return {chars_.data(), static_cast<std::size_t>(end - chars_.data())};
  }

 private:
  std::array<char, kv_max_string + 12> chars_;
  std::size_t stem_len_;
};

}  // namespace

std::int32_t kv_save_inst(kv_flatten_t& run, const kv_sheet_t& sheet, const kv_sheet_inst_t& inst,
                          std::int8_t timing_index, const kv_flat_t* flats) {
  const std::int32_t index = run.design.insts.append(1);
  auto& record = run.design.insts[index];
  fill_instance(run, sheet, inst, index, timing_index, record);
  if (inst.nb_of_pin == 0) return index;
  record.first_pin_ind = run.design.pins.append(inst.nb_of_pin);
  for (std::int32_t i = 0; i < inst.nb_of_pin; ++i) {
    const auto& pin = gx_at(sheet.pins, inst.first_pin + i);
    kv_save_pin(run, sheet, pin, index, record.first_pin_ind + i, flats);
  }
  return index;
}

std::int32_t kv_save_macro(kv_flatten_t& run, const kv_sheet_t& sheet, const kv_sheet_inst_t& inst,
                           std::int8_t timing_index, const kv_flat_t* flats) {
  const std::int32_t index = run.design.macros.append(1);
  auto& record = run.design.macros[index];
  fill_instance(run, sheet, inst, index, timing_index, record);
  if (inst.nb_of_pin == 0) return index;
  record.first_pin_ind = run.design.pinms.append(inst.nb_of_pin);
  for (std::int32_t i = 0; i < inst.nb_of_pin; ++i) {
    const auto& pin = gx_at(sheet.pins, inst.first_pin + i);
    kv_save_pinm(run, sheet, pin, index, record.first_pin_ind + i, flats);
  }
  return index;
}

std::int32_t kv_save_net(kv_flatten_t& run, const kv_sheet_t& sheet, const kv_sheet_net_t& master,
                         std::string_view name) {
  const std::int32_t index = run.design.nets.append(1);
  auto& record = run.design.nets[index];
  record.self = index;
  record.object_id = master.object_id;
  record.name = kv_save_string(run.design, name);
  record.sim_path = kv_save_string(run.design, run.path.view());
  save_kept(run, sheet, master.kept, run.setup.property_net, "Net", record);
  return index;
}

std::int32_t kv_save_bus(kv_flatten_t& run, const kv_sheet_t& sheet, const kv_sheet_net_t& master,
                         std::string_view name, const kv_sheet_group_t& range) {
  const std::int32_t index = kv_save_net(run, sheet, master, name);
  const std::int32_t first_member = run.design.nets.append(range.width);
  auto& bus = run.design.nets[index];
  bus.net_type = kv_net_bus;
  bus.net_kind = kv_kind_bus;
  bus.net_bus_start = range.bus_start;
  bus.net_bus_end = range.bus_end;
  bus.netind_start = first_member;

  const std::string_view path = run.path.view();
  member_text names(name), paths(path);
  for (std::int32_t position = 0; position < range.width; ++position) {
    const std::string_view member_name = names.at(position), member_path = paths.at(position);
    if (member_path.size() > kv_max_string || member_name.size() > kv_max_string) {
      kv_end_at_long_path(run, path, member_path.substr(path.size()));
      return index;
    }
    auto& member = run.design.nets[first_member + position];
    member.self = first_member + position;
    member.object_id = master.object_id;
    member.net_kind = kv_kind_bus;
    member.name = kv_save_string(run.design, member_name);
    member.sim_path = kv_save_string(run.design, member_path);
    member.nb_of_property = bus.nb_of_property;
    member.first_prop = bus.first_prop;
    member.bus = index;
    member.posinbus = static_cast<std::int16_t>(position);
  }
  return index;
}

void kv_save_net_child(kv_flatten_t& run, std::int32_t flat_net, const kv_sheet_net_t& net,
                       std::string_view name, std::int16_t net_kind) {
  const std::int32_t index = run.design.net_childs.append(1);
  auto& record = run.design.net_childs[index];
  record.self = index;
  record.object_id = net.object_id;
  record.net_kind = net_kind;
  record.sim_path = kv_save_string(run.design, run.path.view());
  record.name = kv_save_string(run.design, name);
  auto& father = run.design.nets[flat_net];
  if (father.last_child == 0) {
    father.first_child = index;
  } else {
    run.design.net_childs[father.last_child].next_child = index;
  }
  father.last_child = index;
  ++father.nb_of_child;
}

void kv_name_sub_net(kv_design_t& design, std::int32_t member, std::string_view name) {
  auto& net = design.nets[member];
  auto& father = design.nets[net.bus];
  net.net_kind = kv_kind_global;
  net.net_type = kv_net_sub;
  net.father_net = net.bus;
  net.name = kv_save_string(design, name);
  if (father.last_sub_net == 0) {
    father.first_sub_net = member;
  } else {
    design.nets[father.last_sub_net].next_sub_net = member;
  }
  father.last_sub_net = member;
}

void kv_set_initial_state(kv_design_t& design, std::int32_t net, const kv_init_t& init) {
  auto& record = design.nets[net];
  record.state_init = init.state;
  for (kv_signal_state_rec* state : {&record.cur_state, &record.old_state}) {
    state->state = init.state;
    state->fixed = init.fixed ? 1 : 0;
  }
}
