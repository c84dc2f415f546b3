// Reading a sheet into the arrays that a visit stamps.
#include "expand/sheet/sheet_analysis.h"

#include <algorithm>

#include "expand/sheet/net_join.h"
#include "expand/sheet/sheet_parts.h"
#include "expand/sheet/sheet_texts.h"
#include "gx/db/objects_of.h"
#include "gx/db/queries.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"

namespace {

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
    kv_take_parts(file_, setup_, nets_, plain_insts_, sheet);
    return std::move(sheet);
  }

 private:
  static std::vector<gx_object_id_t> net_ids(const gx_file_gene_recf_t& file) {
    std::vector<gx_object_id_t> ids;
    for (const int id : lb_nets(file)) ids.push_back(static_cast<gx_object_id_t>(id));
    return ids;
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
      net.suffix = kv_keep_suffix(sheet, name, "N_", id);
      if (!name.empty()) net.name = {net.suffix.at + 1, net.suffix.len - 1};
      net.init = kv_keep_init(sheet, gx_find_net_prop(file_, id, "INIT"));
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
    net.kept = kv_keep_properties(sheet, setup_, setup_.property_net, [&](std::string_view name) {
      return gx_prop_text(gx_find_net_prop(file_, net.object_id, name));
    });
    sheet.groups.push_back(group);
  }

  // --- ports and globals are separated from the instances that are stored
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
      port.name = kv_keep_text(sheet, {name});
      port.bare_name =
          is_bus_pin(pin.pinpropfam, net) ? kv_keep_text(sheet, {kv_bare_name(name)}) : port.name;
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
    global.name = kv_keep_text(sheet, {name});
    global.run_global = run_global(name);
    global.object_id = static_cast<gx_object_id_t>(inst);
    global.net = nets_.net_at(pin.pinpropfam);
    global.group = global.net >= 0 ? gx_at(sheet.nets, global.net).group : -1;
    global.usable = global.group >= 0;
    global.init = kv_keep_init(sheet, gx_find_prop_of_two(file_, pin.pinpropfam, pin.pin, "INIT"));
    const auto* record = gx_object_as<gx_object_pinpropfam_rec_t>(file_, pin.pinpropfam);
    if (record != nullptr && record->pin_start != record->pin_end) {
      report_global(global, {kv_message::global_on_bus_pin,
                             {std::to_string(pin.pinpropfam), std::string(name)}});
      global.usable = false;
    } else if (global.usable) {
      global.position = kv_position_on(gx_at(sheet.groups, global.group), record->pin_net_start);
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

  const gx_file_gene_recf_t& file_;
  const kv_setup_t& setup_;
  std::vector<kv_global_net_record_t>& globals_;
  kv_net_table nets_;
  std::vector<std::string_view> net_names_;
  std::vector<std::int32_t> port_nets_;  // per port, -1: on no net
  std::vector<int> port_insts_, global_insts_, plain_insts_;
  kv_sheet_t sheet;
};

}  // namespace

kv_sheet_t kv_analyse_sheet(const gx_file_gene_recf_t& file, std::string_view file_path,
                            const kv_setup_t& setup, std::vector<kv_global_net_record_t>& globals) {
  return analysis(file, setup, globals).run(file_path);
}

std::string_view kv_bare_name(std::string_view name) { return name.substr(0, name.find('[')); }
