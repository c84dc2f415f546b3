// Reading a sheet into the arrays that a visit stamps.
#include "expand/sheet_analysis.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "expand/debug.h"
#include "expand/net_join.h"
#include "expand/values.h"
#include "gx/db/link_file.h"
#include "gx/db/objects_of.h"
#include "gx/db/queries.h"
#include "gx/text/at.h"
#include "gx/text/kept_text.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"

namespace {

constexpr std::int16_t max_timing_index = 120;
constinit const kv_design_t no_design;  // of values that are the same everywhere

kv_prop_type type_of_letter(std::string_view prop_type) {
  switch (prop_type.empty() ? ' ' : gx_upper_case(prop_type.front())) {
    case 'I':
      return kv_prop_int;
    case 'T':
      return kv_prop_time;
    case 'R':
      return kv_prop_real;
    case 'S':
      return kv_prop_string;
    default:
      kv_debug(" KV_SAVE_PROP  : error : type of property invalid\n");
      kv_error_stop();
  }
}

// The work of one analysis; `sheet` is what it yields.
class analysis {
 public:
  analysis(const gx_file_gene_recf_t& file, const kv_setup_t& setup,
           std::vector<kv_global_net_record_t>& globals)
      : file_(file), setup_(setup), globals_(globals), nets_(file, net_ids(file)) {}

  kv_sheet_t run(std::string_view file_path) {
    sheet.file_path = file_path;
    sheet.text.reserve(static_cast<std::size_t>(file_.object_id_max) * 8);
    find_deleted();
    take_nets();
    sort_instances();
    take_ports();
    join_nets();
    check_ports();
    for (const int inst : global_insts_) take_global(inst);
    check_globals();
    take_symbols();
    return std::move(sheet);
  }

 private:
  static std::vector<gx_object_id_t> net_ids(const gx_file_gene_recf_t& file) {
    std::vector<gx_object_id_t> ids;
    for (const int id : lb_nets(file)) ids.push_back(static_cast<gx_object_id_t>(id));
    return ids;
  }

  // --- texts
  kv_text_t keep_text(std::initializer_list<std::string_view> parts) {
    kv_text_t piece{static_cast<std::int32_t>(sheet.text.size()), 0};
    for (const auto part : parts) sheet.text += part;
    piece.len = static_cast<std::int32_t>(sheet.text.size()) - piece.at;
    return piece;
  }
  kv_text_t keep_suffix(std::string_view name, std::string_view prefix, int id) {
    return name.empty() ? keep_text({"/", prefix, std::to_string(id)}) : keep_text({"/", name});
  }

  // --- properties to keep; `find(name)` gives the value's text
  template <typename Find>
  std::int32_t keep_props(const kv_prop_list_t& list, Find find) {
    const auto first = static_cast<std::int32_t>(sheet.kept.size());
    for (const auto& entry : list) {
      kv_kept_t kept;
      const std::string text = gx_plain_text(find(gx_view(entry.name)));
      kept.type = type_of_letter(gx_view(entry.prop_type));
      kept.text = keep_text({text});
      kept.decode_at_visit = kept.type != kv_prop_string && kv_depends_on_macro(text, setup_);
      if (!kept.decode_at_visit) kv_decode_kept(kept, text, {setup_, no_design, 1, 0});
      sheet.kept.push_back(kept);
    }
    return first;
  }
  std::int32_t keep_inst_props(int inst) {
    return keep_props(setup_.property_instance, [&](std::string_view name) {
      return gx_prop_text(gx_find_inst_prop(file_, inst, name));
    });
  }

  kv_init_t init_of(const gx_object_property_rec_t* property) {
    kv_init_t init;
    if (property == nullptr) return init;
    const std::string_view text = gx_view(property->nvalue);
    const kv_state_t state = kv_statechar_state(text);
    init.what = state.error_found ? kv_init_t::invalid : kv_init_t::valid;
    init.state = state.state;
    init.fixed = state.fixed;
    init.text = keep_text({text});
    return init;
  }

  void find_deleted() {
    for (int id = 1; id <= file_.object_id_max; ++id) {
      if (!gx_is_deleted(*gx_object(file_, id))) continue;
      sheet.deleted_object = id;
      return;
    }
  }

  // --- nets
  void take_nets() {
    for (const int id : net_ids(file_)) {
      kv_sheet_net_t net;
      const std::string_view name = gx_prop_text(gx_find_net_prop(file_, id, "NET"));
      net.object_id = static_cast<gx_object_id_t>(id);
      net.suffix = keep_suffix(name, "N_", id);
      if (!name.empty()) net.name = {net.suffix.at + 1, net.suffix.len - 1};
      net.init = init_of(gx_find_net_prop(file_, id, "INIT"));
      sheet.nets.push_back(net);
      net_names_.push_back(name);
    }
  }

  void join_nets() {
    std::vector<kv_port_name_t> port_names;
    for (std::size_t i = 0; i < sheet.ports.size(); ++i) {
      if (port_nets_[i] < 0) continue;
      port_names.push_back({port_nets_[i], sheet.view(sheet.ports[i].bare_name)});
    }
    kv_net_groups_t joined = nets_.join(net_names_, port_names);
    for (const std::int32_t master : joined.master_of_group) take_group(master);
    sheet.joins = std::move(joined.joins);
    for (std::size_t i = 0; i < sheet.nets.size(); ++i) {
      sheet.nets[i].group = joined.group_of_net[i];
    }
  }

  void take_group(std::int32_t master) {
    kv_sheet_group_t group;
    auto& net = gx_at(sheet.nets, master);
    const auto* record = gx_object_as<gx_object_net_rec_t>(file_, net.object_id);
    group.master = master;
    if (record->is_bus != 0) {
      if (record->bus_end > record->bus_start) {
        group.bus_start = record->bus_start;
        group.bus_end = record->bus_end;
        group.width = record->bus_end - record->bus_start + 1;
      } else {
        group.width = -1;
      }
    }
    net.kept = keep_props(setup_.property_net, [&](std::string_view name) {
      return gx_prop_text(gx_find_net_prop(file_, net.object_id, name));
    });
    sheet.groups.push_back(group);
  }

  std::int32_t group_at(int pinpropfam) const {
    const std::int32_t net = nets_.net_at(pinpropfam);
    return net >= 0 ? gx_at(sheet.nets, net).group : -1;
  }

  // --- ports and globals are told from the instances that are stored
  void sort_instances() {
    for (const int inst : lb_instances(file_)) sort_instance(inst);
  }

  void sort_instance(int inst) {
    switch (kv_role_of(file_, inst)) {
      case kv_inst_role::port:
        return port_insts_.push_back(inst);
      case kv_inst_role::global:
        return global_insts_.push_back(inst);
      case kv_inst_role::part:
        return plain_insts_.push_back(inst);
    }
  }

  void take_ports() {
    for (const int inst : port_insts_) {
      const gx_pin_pair_t pin = gx_first_pin(file_, inst);
      const auto* property = gx_find_prop_of_two(file_, pin.pinpropfam, pin.pin, "NET");
      const std::string_view name = gx_prop_text(property);
      if (name.empty()) {
        sheet.port_reports.push_back({kv_message::port_unnamed, {std::to_string(inst)}});
        sheet.ends_at_port = true;
        return;
      }
      const std::int32_t net = nets_.net_at(pin.pinpropfam);
      kv_sheet_port_t port;
      port.name = keep_text({name});
      port.bare_name =
          is_bus_pin(pin.pinpropfam, net) ? keep_text({kv_bare_name(name)}) : port.name;
      const auto* pin_record = gx_object_as<gx_object_pinpropfam_rec_t>(file_, pin.pinpropfam);
      port.is_range = pin_record != nullptr && pin_record->pin_start != pin_record->pin_end;
      port.io_type = port_type(gx_prop_text(gx_find_inst_prop(file_, inst, "CLASS")));
      sheet.ports.push_back(port);
      port_nets_.push_back(net);
    }
  }

  static kv_io_type port_type(std::string_view value) {
    if (gx_iden(value, "PORTIN")) return kv_io_in;
    return gx_iden(value, "PORTOUT") ? kv_io_out : kv_io_io;
  }

  bool is_bus_pin(int pinpropfam, std::int32_t net) const {
    const auto* pin = gx_object_as<gx_object_pinpropfam_rec_t>(file_, pinpropfam);
    if (pin != nullptr && pin->pin_start != pin->pin_end) return true;
    if (net < 0) return false;
    const int id = gx_at(sheet.nets, net).object_id;
    return gx_object_as<gx_object_net_rec_t>(file_, id)->is_bus != 0;
  }

  // Gives each equipotential its port. Ports of one name are one port; the first of two different
  // ones stays.
  void check_ports() {
    for (std::size_t i = 0; i < sheet.ports.size(); ++i) {
      if (port_nets_[i] < 0) continue;
      auto& port = sheet.ports[i];
      port.net = port_nets_[i];
      port.group = gx_at(sheet.nets, port.net).group;
      auto& group = gx_at(sheet.groups, port.group);
      if (group.port < 0) {
        group.port = static_cast<std::int32_t>(i);
        continue;
      }
      const auto first = sheet.view(gx_at(sheet.ports, group.port).bare_name);
      const auto second = sheet.view(port.bare_name);
      if (!gx_iden(first, second)) {
        sheet.port_reports.push_back({kv_message::ports_joined, two_on_one(group, first, second)});
      }
      port.group = -1;
    }
  }

  std::vector<std::string> two_on_one(const kv_sheet_group_t& group, std::string_view first,
                                      std::string_view second) const {
    const int master = gx_at(sheet.nets, group.master).object_id;
    return {std::to_string(master), std::string(first), std::string(second)};
  }

  void take_global(int inst) {
    const gx_pin_pair_t pin = gx_first_pin(file_, inst);
    const std::string_view name = gx_prop_text(gx_find_inst_prop(file_, inst, "GLOBAL"));
    kv_sheet_global_t global;
    global.name = keep_text({name});
    global.run_global = run_global(name);
    global.object_id = static_cast<gx_object_id_t>(inst);
    global.net = nets_.net_at(pin.pinpropfam);
    global.group = global.net >= 0 ? gx_at(sheet.nets, global.net).group : -1;
    global.usable = global.group >= 0;
    global.init = init_of(gx_find_prop_of_two(file_, pin.pinpropfam, pin.pin, "INIT"));
    const auto* record = gx_object_as<gx_object_pinpropfam_rec_t>(file_, pin.pinpropfam);
    if (record != nullptr && record->pin_start != record->pin_end) {
      report_global(global, {kv_message::global_on_bus_pin,
                             {std::to_string(pin.pinpropfam), std::string(name)}});
      global.usable = false;
    } else if (global.usable) {
      global.position = position_on(gx_at(sheet.groups, global.group), record->pin_net_start);
    }
    sheet.globals.push_back(global);
  }

  void report_global(kv_sheet_global_t& global, kv_report_t report) {
    global.report = static_cast<std::int32_t>(sheet.global_reports.size());
    sheet.global_reports.push_back(std::move(report));
  }

  // Two globals of different names on one equipotential: the first stays.
  void check_globals() {
    std::vector<std::int32_t> first_of(sheet.groups.size(), -1);
    for (std::size_t i = 0; i < sheet.globals.size(); ++i) {
      auto& global = sheet.globals[i];
      if (!global.usable) continue;
      auto& group = gx_at(sheet.groups, global.group);
      if (group.width > 0) continue;  // each member of a bus may have its own
      auto& first = gx_at(first_of, global.group);
      if (first < 0) {
        first = static_cast<std::int32_t>(i);
        continue;
      }
      const auto& other = gx_at(sheet.globals, first);
      if (other.run_global == global.run_global) continue;
      report_global(global, {kv_message::globals_joined,
                             two_on_one(group, sheet.view(other.name), sheet.view(global.name))});
      global.usable = false;
      global.is_second = true;
    }
  }

  std::int32_t run_global(std::string_view name) {
    const auto at = std::find_if(globals_.begin(), globals_.end(),
                                 [&](const auto& global) { return gx_iden(global.nvalue, name); });
    if (at == globals_.end()) {
      globals_.push_back({std::string(name), 0});
      return static_cast<std::int32_t>(globals_.size()) - 1;
    }
    return static_cast<std::int32_t>(at - globals_.begin());
  }

  // The member of a bus that bit `bit` is; a bit outside the declared range is taken as a
  // position; -1 when that does not exist either.
  static std::int32_t position_on(const kv_sheet_group_t& group, std::int16_t bit) {
    if (group.width <= 0) return 0;
    if (bit >= group.bus_start && bit <= group.bus_end) return bit - group.bus_start;
    return bit >= 0 && bit < group.width ? bit : -1;
  }

  // --- instances, symbol by symbol: first along the symbol's own chain, then those that it misses
  void take_symbols() {
    waiting_.resize(static_cast<std::size_t>(file_.object_id_max) + 1);
    chained_.resize(waiting_.size());
    std::vector<std::vector<int>> left(waiting_.size());
    for (const int inst : plain_insts_) {
      gx_at(waiting_, inst) = true;
      const int symbol = gx_object_as<gx_object_instance_rec_t>(file_, inst)->symbol;
      const bool is_symbol = gx_object_as<gx_object_symbol_rec_t>(file_, symbol) != nullptr;
      left[is_symbol ? static_cast<std::size_t>(symbol) : 0].push_back(inst);
    }
    for (const int id : lb_symbols(file_)) {
      take_symbol(id, gx_at(left, id));
      gx_at(left, id).clear();
    }
    // A symbol outside the family, and instances without one (kept at 0).
    for (std::size_t id = 0; id < left.size(); ++id) {
      take_symbol(static_cast<int>(id), left[id]);
    }
  }

  void take_symbol(int id, const std::vector<int>& left) {
    if (left.empty()) return;
    kv_sheet_symbol_t symbol;
    const auto* record = gx_object_as<gx_object_symbol_rec_t>(file_, id);
    if (record != nullptr) {
      const std::string_view path = gx_view(record->path);
      const gx_symbol_path_t parts = gx_get_path_n0version(path);
      symbol.path = keep_text({path});
      symbol.directory = keep_text({path.substr(0, std::min(path.rfind('/'), path.size()))});
      symbol.version_valid = !parts.error;
      symbol.version = parts.version;
    }
    const auto symbol_ind = static_cast<std::int32_t>(sheet.symbols.size());
    symbol.first_inst = static_cast<std::int32_t>(sheet.insts.size());
    const auto take = [&](int inst) {
      if (!gx_at(waiting_, inst)) return;
      gx_at(waiting_, inst) = false;
      take_inst(inst, symbol_ind);
    };
    // The chain may loop in a damaged sheet: no instance is passed twice.
    for (int inst = record != nullptr ? record->instance : 0;;) {
      const auto* chained = gx_object_as<gx_object_instance_rec_t>(file_, inst);
      if (chained == nullptr || chained->symbol != id) break;
      if (gx_at(chained_, inst)) break;
      gx_at(chained_, inst) = true;
      take(inst);
      inst = chained->following_inst;
    }
    for (const int inst : left) take(inst);
    symbol.nb_of_inst = static_cast<std::int32_t>(sheet.insts.size()) - symbol.first_inst;
    sheet.symbols.push_back(symbol);
  }

  void take_inst(int id, std::int32_t symbol) {
    kv_sheet_inst_t inst;
    inst.object_id = static_cast<gx_object_id_t>(id);
    inst.is_primitive = kv_found_primitive(setup_, file_, id);
    inst.symbol = symbol;
    inst.suffix = keep_suffix(gx_prop_text(gx_find_inst_prop(file_, id, "INST")), "I_", id);
    take_timing(inst);
    inst.kept = keep_inst_props(id);
    inst.first_pin = static_cast<std::int32_t>(sheet.pins.size());
    for (const gx_pin_pair_t pin : lb_pins(file_, id)) take_pin(pin);
    inst.nb_of_pin = static_cast<std::int32_t>(sheet.pins.size()) - inst.first_pin;
    sheet.insts.push_back(inst);
  }

  void take_timing(kv_sheet_inst_t& inst) {
    const auto* property = gx_find_inst_prop(file_, inst.object_id, "TIMIND");
    if (property == nullptr) return;
    const std::string_view text = gx_view(property->nvalue);
    const auto number = gx_string_to_int32(text);
    inst.timing_text = keep_text({text});
    inst.timing_index = 0;
    const bool is_integer = text.find_first_not_of("0123456789 ") == std::string_view::npos;
    if (!is_integer) {
      inst.timing_state = kv_sheet_inst_t::timing_no_number;
    } else if (number.error || number.value > max_timing_index) {
      inst.timing_state = kv_sheet_inst_t::timing_too_big;
    } else {
      inst.timing_index = static_cast<std::int8_t>(number.value);
    }
  }

  void take_pin(gx_pin_pair_t ids) {
    const auto& record = *gx_object_as<gx_object_pinpropfam_rec_t>(file_, ids.pinpropfam);
    kv_sheet_pin_t pin;
    pin.object_id = static_cast<gx_object_id_t>(ids.pinpropfam);
    pin.suffix = keep_text({"/", lb_pin_name(file_, ids)});
    take_pin_type(pin, gx_find_prop_of_two(file_, ids.pin, ids.pinpropfam, "PINTYPE"));
    pin.pin_start = record.pin_start;
    pin.pin_end = record.pin_end;
    pin.pin_net_start = record.pin_net_start;
    pin.group = group_at(ids.pinpropfam);
    pin.width =
        std::max(record.pin_end, record.pin_start) - std::min(record.pin_end, record.pin_start) + 1;
    if (pin.group >= 0) take_range(pin, gx_at(sheet.groups, pin.group));
    pin.kept = keep_props(setup_.property_pin, [&](std::string_view name) {
      return gx_prop_text(gx_find_prop_of_two(file_, ids.pinpropfam, ids.pin, name));
    });
    sheet.pins.push_back(pin);
  }

  static void take_range(kv_sheet_pin_t& pin, const kv_sheet_group_t& group) {
    if (group.width <= 0) return;
    pin.position = position_on(group, pin.pin_net_start);
    if (pin.position >= 0 && pin.position + pin.width <= group.width) return;
    pin.range_error = true;
    pin.width = pin.position < 0 ? 0 : std::min(pin.width, group.width - pin.position);
  }

  static void take_pin_type(kv_sheet_pin_t& pin, const gx_object_property_rec_t* property) {
    struct type_word {
      std::string_view head;
      kv_io_type type;
    };
    constexpr std::array<type_word, 4> words{
        {{"IN", kv_io_in}, {"OUT", kv_io_out}, {"IXO", kv_io_ixo}, {"IO", kv_io_io}}};
    pin.io_type = kv_io_out;
    if (property == nullptr) {
      pin.type_state = kv_sheet_pin_t::type_missing;
      return;
    }
    const auto word = std::find_if(words.begin(), words.end(), [&](const type_word& w) {
      return gx_equal(w.head, gx_view(property->nvalue));
    });
    if (word == words.end()) {
      pin.type_state = kv_sheet_pin_t::type_invalid;
    } else {
      pin.io_type = word->type;
    }
  }

  const gx_file_gene_recf_t& file_;
  const kv_setup_t& setup_;
  std::vector<kv_global_net_record_t>& globals_;
  kv_net_table nets_;
  std::vector<std::string_view> net_names_;
  std::vector<std::int32_t> port_nets_;  // per port, -1: on no net
  std::vector<int> port_insts_, global_insts_, plain_insts_;
  std::vector<bool> waiting_, chained_;  // by object id: to be taken, passed in its chain
  kv_sheet_t sheet;
};

}  // namespace

kv_sheet_t kv_analyse_sheet(const gx_file_gene_recf_t& file, std::string_view file_path,
                            const kv_setup_t& setup, std::vector<kv_global_net_record_t>& globals) {
  return analysis(file, setup, globals).run(file_path);
}

kv_inst_role kv_role_of(const gx_file_gene_recf_t& file, int inst) {
  const std::string_view value = gx_prop_text(gx_find_inst_prop(file, inst, "CLASS"));
  if ((value.size() == 6 || value.size() == 7) && gx_equal("PORT", value))
    return kv_inst_role::port;
  const bool is_global = gx_iden(value, "G") && gx_find_inst_prop(file, inst, "GLOBAL") != nullptr;
  return is_global ? kv_inst_role::global : kv_inst_role::part;
}

bool kv_found_primitive(const kv_setup_t& setup, const gx_file_gene_recf_t& file, int inst) {
  return std::any_of(setup.primitive.begin(), setup.primitive.end(), [&](const auto& entry) {
    const auto* property = gx_find_inst_prop(file, inst, gx_view(entry.name));
    return property != nullptr &&
           (entry.nvalue.len == 0 || gx_iden(gx_view(property->nvalue), gx_view(entry.nvalue)));
  });
}

void kv_decode_kept(kv_kept_t& kept, std::string_view text, const kv_scope_t& scope) {
  const auto take = [&](auto& target, const auto& values) {
    target[0] = values.value1;
    target[1] = values.value2;
    target[2] = values.value3;
    kept.error = values.error_found;
  };
  switch (kept.type) {
    case kv_prop_int:
      take(kept.number, kv_decode_3_valuei(text, scope));
      break;
    case kv_prop_time:
      take(kept.number, kv_decode_3_valuet(text, scope));
      break;
    case kv_prop_real:
      take(kept.real, kv_decode_3_valuer(text, scope));
      break;
    case kv_prop_string:
      break;
  }
}

std::string_view kv_bare_name(std::string_view name) { return name.substr(0, name.find('[')); }
