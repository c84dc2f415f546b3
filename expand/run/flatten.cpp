// One visit of a sheet.
#include "expand/run/flatten.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "expand/debug.h"
#include "expand/messages.h"
#include "expand/run/save_records.h"
#include "gx/text/at.h"
#include "gx/text/messages/session_state.h"
#include "gx/text/strings.h"

kv_path_step::kv_path_step(kv_flatten_t& run, std::string_view piece)
    : run_(run), len_before_(run.path.len) {
  if (piece.size() > run.path.chars.size() - static_cast<std::size_t>(len_before_)) {
    kv_end_at_long_path(run, run.path.view(), piece);
    return;
  }
  piece.copy(run.path.chars.data() + len_before_, piece.size());
  run.path.len += static_cast<std::int32_t>(piece.size());
}

void kv_end_at_long_path(kv_flatten_t& run, std::string_view path, std::string_view piece) {
  if (run.end) return;
  kv_tell(kv_message::path_too_long, std::string(path).append(piece));
  run.end = kv_run_result::path_too_long;
}

namespace {

constexpr int most_errors = 30;

// One visit under way. Where flat nets of the sheets above begin may move while sheets below are
// visited, so they are reached by index.
struct visit_t {
  kv_flatten_t& run;
  kv_sheet_t& sheet;
  const kv_entry_t& entry;
  std::size_t flats;
  std::int16_t level;
  std::int8_t timing_index;

  kv_flat_t& flat(std::int32_t group) const {
    return run.flats[flats + static_cast<std::size_t>(group)];
  }
  const kv_sheet_group_t& group(std::int32_t g) const { return gx_at(sheet.groups, g); }
  // A name without the "/" of its path.
  std::string_view name(kv_text_t suffix) const { return sheet.view(suffix).substr(1); }
};

bool must_stop(const kv_flatten_t& run) {
  return run.end || (!run.to_the_end && gx_session.errors_in_all - run.errors_before > most_errors);
}

void tell_report(const kv_report_t& report) {
  const std::vector<std::string_view> values(report.values.begin(), report.values.end());
  kv_tell_message({report.code, {}, values});
}

// Sets the state of the flat net of a group: of every member that a bus of the sheet stands for.
void set_state(kv_design_t& design, const kv_flat_t& flat, const kv_init_t& init) {
  if (flat.net == 0) return;
  const auto& net = design.nets[flat.net];
  if (net.net_type != kv_net_bus) {
    kv_set_initial_state(design, flat.net, init);
    return;
  }
  const std::int32_t first = net.netind_start + flat.position;
  for (std::int32_t i = 0; i < flat.width; ++i) kv_set_initial_state(design, first + i, init);
}

// --- ports

// The flat net that a pin of the sheet above brings to a group of this sheet; false when their
// ranges do not match.
bool bring_down(const kv_design_t& design, const kv_sheet_pin_t& pin, const kv_flat_t& above,
                const kv_sheet_port_t& port, const kv_sheet_group_t& group, kv_flat_t& flat) {
  const bool above_is_bus = design.nets[above.net].net_type == kv_net_bus;
  const std::int32_t width = group.width > 0 ? group.width : 1;
  if (pin.range_error || pin.width != width || (group.width > 0 && !above_is_bus)) return false;
  if (port.is_range && group.width <= 0) return false;
  flat.net = above.net;
  flat.by_port = true;
  if (above_is_bus && group.width > 0) {
    flat.position = above.position + pin.position;
    flat.width = group.width;
  } else if (above_is_bus) {
    flat.net = design.nets[above.net].netind_start + above.position + pin.position;
  }
  return true;
}

void tell_port(const visit_t& visit, const kv_sheet_port_t& port, kv_message what) {
  std::string path(visit.run.path.view());
  kv_tell(what, path.append("/").append(visit.sheet.view(port.bare_name)));
}

void process_ports(const visit_t& visit) {
  if (visit.entry.inst == nullptr) return;
  kv_sheet_t& above = *visit.entry.sheet;
  const std::int32_t* pin_of_port = kv_pins_of_ports(above, *visit.entry.inst, visit.sheet);
  for (const auto& port : visit.sheet.ports) {
    const std::int32_t place = *pin_of_port++;
    if (place < 0) {
      tell_port(visit, port, kv_message::port_without_pin);
      continue;
    }
    if (port.group < 0) continue;
    const auto& pin = gx_at(above.pins, visit.entry.inst->first_pin + place);
    if (pin.group < 0) continue;  // reported when the pin was saved
    const auto& flat_above =
        visit.run.flats[visit.entry.flats + static_cast<std::size_t>(pin.group)];
    if (flat_above.net == 0) continue;
    if (!bring_down(visit.run.design, pin, flat_above, port, visit.group(port.group),
                    visit.flat(port.group))) {
      tell_port(visit, port, kv_message::port_misfit);
    }
  }
}

// --- nets

void save_flat_net(const visit_t& visit, std::int32_t group_ind) {
  const auto& group = visit.group(group_ind);
  const auto& master = gx_at(visit.sheet.nets, group.master);
  const std::string_view name = visit.sheet.view(master.name);
  const kv_path_step step(visit.run, visit.sheet.view(master.suffix));
  if (visit.run.end) return;
  kv_flat_t& flat = visit.flat(group_ind);
  flat.by_master = true;
  if (group.width > 0) {
    flat.net = kv_save_bus(visit.run, visit.sheet, master, name, group);
    flat.width = group.width;
    return;
  }
  flat.net = kv_save_net(visit.run, visit.sheet, master, name);
  if (group.width == 0) return;
  kv_debug(" KV_SAVE_BUS  : error : range of bus  : %d\n", master.object_id);
  kv_tell(kv_message::bus_invalid, visit.run.path.view());
}

using named_members_t = std::vector<std::int32_t>;  // of buses, by the globals of a visit

// The flat net of a global, saved where the run meets the global first.
std::int32_t save_global_net(const visit_t& visit, const kv_sheet_global_t& global) {
  kv_flatten_t& run = visit.run;
  const std::string_view name = visit.sheet.view(global.name);
  const auto& master = gx_at(visit.sheet.nets, visit.group(global.group).master);
  // Its path does not lie under the sheet's.
  const kv_path_t here = run.path;
  run.path.len = 0;
  std::int32_t net = 0;
  {
    const kv_path_step slash(run, "/");
    const kv_path_step step(run, name);
    net = kv_save_net(run, visit.sheet, master, name);
  }
  run.path = here;
  run.design.nets[net].net_kind = kv_kind_global;
  return net;
}

// A plain flat net that a global takes is stored under the global's name; its path stays.
void make_global(kv_design_t& design, std::int32_t net, std::string_view name,
                 std::int32_t& global_net) {
  auto& record = design.nets[net];
  record.net_kind = kv_kind_global;
  record.name = kv_save_string(design, name);
  if (global_net == 0) global_net = net;
}

// Whether a flat net is that of a global of another name; reported when it is. `by_sheet`: what
// named it is on this sheet, not on another.
bool is_of_other_global(const visit_t& visit, const kv_net_record_t& net, std::string_view name,
                        bool by_sheet) {
  const std::string_view other = kv_text(visit.run.design, net.name);
  if (net.net_kind != kv_kind_global || gx_iden(other, name)) return false;
  kv_tell(by_sheet ? kv_message::globals_meet : kv_message::globals_meet_below, {}, other, name);
  return true;
}

// A global on a member of a bus names that member, whatever other nets have its name; the member,
// 0 when it is another global's.
std::int32_t name_member(const visit_t& visit, std::int32_t member, std::string_view name,
                         named_members_t& named) {
  auto& net = visit.run.design.nets[member];
  const bool by_sheet = std::find(named.begin(), named.end(), member) != named.end();
  if (is_of_other_global(visit, net, name, by_sheet)) return 0;
  if (net.net_kind != kv_kind_global) {
    kv_name_sub_net(visit.run.design, member, name);
    named.push_back(member);
  }
  return member;
}

std::int32_t process_global_on_bus(const visit_t& visit, const kv_sheet_global_t& global,
                                   named_members_t& named) {
  if (visit.flat(global.group).net == 0) save_flat_net(visit, global.group);
  const kv_flat_t flat = visit.flat(global.group);
  if (flat.net == 0) return 0;
  const std::string_view name = visit.sheet.view(global.name);
  if (global.position < 0) {
    kv_tell(kv_message::global_beyond_bus, {}, name);
    return 0;
  }
  const std::int32_t first = visit.run.design.nets[flat.net].netind_start;
  return name_member(visit, first + flat.position + global.position, name, named);
}

std::int32_t process_global_on_net(const visit_t& visit, const kv_sheet_global_t& global,
                                   std::int32_t& global_net, named_members_t& named) {
  const std::string_view name = visit.sheet.view(global.name);
  kv_flat_t& flat = visit.flat(global.group);
  if (flat.net == 0) {
    if (global_net == 0) global_net = save_global_net(visit, global);
    flat.net = global_net;
    return flat.net;
  }
  const auto& net = visit.run.design.nets[flat.net];
  if (net.bus != 0) return name_member(visit, flat.net, name, named);
  if (net.net_kind != kv_kind_global) {
    make_global(visit.run.design, flat.net, name, global_net);
  } else {
    is_of_other_global(visit, net, name, false);
  }
  return flat.net;
}

void process_globals(const visit_t& visit) {
  named_members_t named;
  for (const auto& global : visit.sheet.globals) {
    if (global.report >= 0) {
      tell_report(gx_at(visit.sheet.global_reports, global.report));
    }
    if (!global.usable || visit.run.end) continue;
    const bool on_bus = visit.group(global.group).width > 0;
    auto& global_net = gx_at(visit.run.sheets.globals, global.run_global).net_ind;
    const std::int32_t net = on_bus ? process_global_on_bus(visit, global, named)
                                    : process_global_on_net(visit, global, global_net, named);
    if (net != 0 && global.init.what == kv_init_t::valid)
      kv_set_initial_state(visit.run.design, net, global.init);
    if (global.init.what == kv_init_t::invalid) {
      kv_tell(kv_message::init_of_global, {}, visit.sheet.view(global.name),
              visit.sheet.view(global.init.text));
    }
  }
}

void process_init(const visit_t& visit, const kv_sheet_net_t& net) {
  if (net.init.what == kv_init_t::valid) {
    set_state(visit.run.design, visit.flat(net.group), net.init);
    return;
  }
  const std::string_view value = visit.sheet.view(net.init.text);
  const kv_flat_t& flat = visit.flat(net.group);
  if (flat.by_port) {
    const auto& port = gx_at(visit.sheet.ports, visit.group(net.group).port);
    kv_tell(kv_message::init_of_port, {}, visit.sheet.view(port.name), value);
  } else {
    kv_tell(kv_message::init_of_net, {}, visit.name(net.suffix), value);
  }
}

// The flat net of an equipotential that no port or global of this sheet gave one: that of the
// global it meets in a sheet below, else its master.
void find_flat_net(const visit_t& visit, std::int32_t group_ind) {
  const std::int32_t tied = visit.group(group_ind).tied_global;
  if (tied < 0) {
    save_flat_net(visit, group_ind);
    return;
  }
  auto& global = gx_at(visit.run.sheets.globals, tied);
  if (global.net_ind == 0) {
    save_flat_net(visit, group_ind);
    const std::int32_t net = visit.flat(group_ind).net;
    if (!visit.run.end) make_global(visit.run.design, net, global.nvalue, global.net_ind);
  } else {
    visit.flat(group_ind).net = global.net_ind;
  }
}

// Every net of the sheet: the master of an equipotential that has no flat net yet becomes one, the
// other nets are children of the flat net.
void process_nets(const visit_t& visit) {
  const auto& nets = visit.sheet.nets;
  for (std::size_t i = 0; i < nets.size() && !must_stop(visit.run); ++i) {
    const auto& net = nets[i];
    if (visit.flat(net.group).net == 0) find_flat_net(visit, net.group);
    const kv_flat_t flat = visit.flat(net.group);
    const bool is_master = visit.group(net.group).master == static_cast<std::int32_t>(i);
    if (!(is_master && flat.by_master) && flat.net != 0) {
      const kv_path_step step(visit.run, visit.sheet.view(net.suffix));
      kv_save_net_child(visit.run, flat.net, net, visit.sheet.view(net.name),
                        flat.by_port ? kv_kind_port : kv_kind_child);
    }
    if (net.init.what != kv_init_t::none) process_init(visit, net);
  }
}

// --- instances

// False when the instances of the symbol are left out.
bool check_symbol(const visit_t& visit, kv_sheet_symbol_t& symbol) {
  const std::string_view path = visit.sheet.view(symbol.path);
  const kv_component_t& component = kv_component_of(visit.run.sheets, visit.sheet, symbol);
  if (!symbol.version_valid) kv_tell(kv_message::symbol_version_invalid, {}, path);
  if (!component.symbol_found) {
    kv_tell(kv_message::symbol_missing, {}, path);
    return false;
  }
  if (symbol.version_valid && symbol.version != component.symbol_version)
    kv_tell(kv_message::symbol_not_current, {}, path);
  return true;
}

std::int8_t timing_of(const visit_t& visit, const kv_sheet_inst_t& inst) {
  if (inst.timing_state != kv_sheet_inst_t::timing_ok) {
    const bool is_too_big = inst.timing_state == kv_sheet_inst_t::timing_too_big;
    kv_tell(is_too_big ? kv_message::timing_too_big : kv_message::timing_invalid,
            visit.run.path.view(), visit.sheet.view(inst.timing_text));
  }
  return inst.timing_index >= 0 ? inst.timing_index : visit.timing_index;
}

void process_macro(const visit_t& visit, kv_sheet_inst_t& inst, kv_sheet_symbol_t& symbol,
                   std::int8_t timing_index) {
  kv_flatten_t& run = visit.run;
  const std::int32_t macro =
      kv_save_macro(run, visit.sheet, inst, timing_index, run.flats.data() + visit.flats);
  if (run.end) return;
  kv_sheet_t* below = kv_get_sheet_for_expand(run.sheets, visit.sheet, symbol);
  if (below == nullptr) {
    kv_tell(kv_message::no_sheet_below, run.path.view());
    return;
  }
  const std::int32_t macro_here = run.macro_level;
  run.macro_level = macro;
  kv_process_inst_of_sheet(run, *below, {&visit.sheet, &inst, visit.flats},
                           static_cast<std::int16_t>(visit.level + 1), timing_index);
  run.macro_level = macro_here;
  run.expand_level = visit.level;
}

void process_inst(const visit_t& visit, kv_sheet_inst_t& inst, kv_sheet_symbol_t& symbol) {
  kv_flatten_t& run = visit.run;
  const kv_path_step step(run, visit.sheet.view(inst.suffix));
  if (run.end) return;
  const std::int8_t timing_index = timing_of(visit, inst);
  if (!inst.is_primitive) {
    process_macro(visit, inst, symbol, timing_index);
    return;
  }
  kv_save_inst(run, visit.sheet, inst, timing_index, run.flats.data() + visit.flats);
  if (visit.level == 1) kv_tell(kv_message::processing, run.path.view());
}

void process_instances(const visit_t& visit) {
  for (auto& symbol : visit.sheet.symbols) {
    if (must_stop(visit.run)) return;
    if (!check_symbol(visit, symbol)) continue;
    for (std::int32_t i = 0; i < symbol.nb_of_inst && !must_stop(visit.run); ++i) {
      process_inst(visit, gx_at(visit.sheet.insts, symbol.first_inst + i), symbol);
    }
  }
}

// All of a sheet. A store that gets full ends the run; the sheet that did not fit is reported.
void process_objects(const visit_t& visit) {
  try {
    process_ports(visit);
    process_globals(visit);
    process_nets(visit);
    process_instances(visit);
  } catch (const kv_store_full_t& full) {
    kv_debug_full(full);
    kv_tell(kv_message::design_too_large, visit.run.path.view(), std::to_string(full.limit),
            full.name);
    visit.run.end = kv_run_result::design_too_large;
  }
}

// Keeps where the records of a visit begin and end, for its life.
class kept_visit_t {
 public:
  kept_visit_t(kv_flatten_t& run, const kv_sheet_t& sheet) : run_(run), above_(run.visit) {
    if (run.visits == nullptr) return;
    const kv_design_t& d = run.design;
    run.visit = static_cast<std::int32_t>(run.visits->size());
    run.visits->push_back({.sheet = &sheet,
                           .above = above_,
                           .macro = run.macro_level,
                           .nets_before = d.nets.count,
                           .children_before = d.net_childs.count,
                           .insts_before = d.insts.count});
  }
  ~kept_visit_t() {
    if (run_.visits == nullptr) return;
    auto& visit = gx_at(*run_.visits, run_.visit);
    visit.insts_after = run_.design.insts.count;
    visit.macros_after = run_.design.macros.count;
    run_.visit = above_;
  }
  kept_visit_t(const kept_visit_t&) = delete;
  kept_visit_t& operator=(const kept_visit_t&) = delete;

 private:
  kv_flatten_t& run_;
  std::int32_t above_;
};

}  // namespace

void kv_process_inst_of_sheet(kv_flatten_t& run, kv_sheet_t& sheet, const kv_entry_t& entry,
                              std::int16_t level, std::int8_t timing_index) {
  if (level < 1 || level > kv_max_levels) {
    std::printf("!! Invalid level = %d\n", level);
    kv_tell(kv_message::too_many_levels, {}, run.path.view());
    run.end = kv_run_result::too_many_levels;
    return;
  }
  run.expand_level = level;
  if (run.watch != nullptr && !run.watch->next_sheet(run.design.insts.count)) {
    kv_tell(kv_message::stopped);
    run.end = kv_run_result::stopped;
    return;
  }
  if (level <= 2) kv_tell(kv_message::processing, run.path.view());
  if (sheet.deleted_object != 0) {
    std::printf("!! Invalid  Object ( deleted )  = %d\n", sheet.deleted_object);
    kv_tell(kv_message::object_deleted);
    return;
  }
  if (sheet.file_path.size() > kv_max_string) {
    kv_end_at_long_path(run, sheet.file_path, {});
    return;
  }

  const std::size_t flats = run.flats.size();
  run.flats.resize(flats + sheet.groups.size());
  const visit_t visit{run, sheet, entry, flats, level, timing_index};
  const kept_visit_t kept(run, sheet);
  for (const auto& report : sheet.port_reports) tell_report(report);
  if (!sheet.ends_at_port) process_objects(visit);
  run.flats.resize(flats);
}
