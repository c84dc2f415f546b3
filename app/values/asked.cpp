#include "app/values/asked.h"

#include <algorithm>

#include "app/find/find_path.h"
#include "app/find/net_choice.h"
#include "app/language/answers.h"
#include "app/sheet/command_viewport.h"
#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/db/queries.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "results/engineering.h"

namespace {

constexpr std::size_t most_devices = 1000;

// The leaf instance of an instance on the sheet in view; 0 when it is none.
std::int32_t flat_instance(const kv_expanded_t& design, const gx_file_gene_recf_t& file, int id) {
  const std::int32_t visit = kv_visit_at(design, gx_view(kv_pext.cur_sim_path));
  if (visit < 0) return 0;
  const std::string key =
      kv_path_key(std::string(kv_visit_path(design.netlist, design.origins, visit)) + "/" +
                  lb_inst_name(file, id));
  for (const auto object : design.paths.find({&key, 1}, SIZE_MAX)) {
    if (object.what == kv_named::inst && design.netlist.object_id(object) == id) {
      return object.index;
    }
  }
  return 0;
}

std::vector<std::int32_t> selected_devices(const kv_expanded_t& design) {
  std::vector<std::int32_t> devices;
  const auto view = kv_edit_view();
  if (!view.has_sheet()) return devices;
  for (const int id : lb_instances(view.file())) {
    if (gx_inq_object_deleted(view.file(), id) || !gx_inq_object_selected(view.file(), id))
      continue;
    if (const auto inst = flat_instance(design, view.file(), id); inst != 0)
      devices.push_back(inst);
  }
  return devices;
}

}  // namespace

kv_results_t* kv_results_for(std::string_view keyword, const kv_command_t& command, int first) {
  std::string fault;
  kv_results_t* const results = kv_results_now(fault);
  if (results != nullptr) return results;
  kv_refuse(keyword, command, fault.empty() ? std::string(kv_no_results) : "# !! Error : " + fault,
            first);
  return nullptr;
}

std::optional<double> kv_read_x(std::string_view keyword, const kv_command_t& command,
                                const kv_results_t& results, std::string_view word) {
  const auto x = rs_read_number(word);
  if (x && kv_place_at(results, *x)) return x;
  if (!results.plot().has_scale) {
    kv_refuse(keyword, command, "# !! Error : This plot has no scale ? ", 3);
  } else if (!x) {
    kv_refuse(keyword, command, "# !! Error : Number invalid ? ", 3);
  } else {
    kv_refuse(keyword, command, "# !! Error : Not from " + kv_range_text(results) + " ? ", 3);
  }
  return std::nullopt;
}

std::optional<kv_asked_t> kv_read_asked(std::string_view keyword, const kv_command_t& command,
                                        const kv_results_t& results, int first) {
  kv_asked_t asked{{}, results.x, results.place};
  int n = first;
  const auto is_at = [&](int word) {
    return command.count() == word + 1 && gx_iden("AT", command.word(word));
  };
  if (n <= command.count() && !is_at(n)) asked.path = command.word(n++);
  if (n > command.count()) return asked;
  if (!is_at(n)) {
    kv_refuse(keyword, command, kv_bad_count, 3);
    return std::nullopt;
  }
  const auto x = kv_read_x(keyword, command, results, command.word(n + 1));
  if (!x) return std::nullopt;
  asked.x = *x;
  asked.place = *kv_place_at(results, *x);
  return asked;
}

std::string kv_range_text(const kv_results_t& results) {
  const auto text = [&](double x) { return rs_engineering(x, 6, results.scale_unit()); };
  return text(results.least_x()) + " to " + text(results.greatest_x());
}

std::string kv_at_text(const kv_results_t& results, double x) {
  return results.plot().has_scale ? " at " + rs_engineering(x, 6) : "";
}

std::string kv_value_text(const kv_results_t& results, const rs_value_t& value,
                          std::string_view unit, int digits) {
  std::string text = rs_engineering(value.re, digits, unit);
  if (!results.plot().header.is_complex) return text;
  text += value.im < 0 ? " -j " : " +j ";
  return text + rs_engineering(value.im < 0 ? -value.im : value.im, digits, unit);
}

std::string_view kv_unit_of(const kv_results_t& results, const kv_device_value_t& value) {
  const auto unit = rs_unit_of(results.variables[value.variable].type);
  return unit.empty() ? rs_unit_of(value.parameter) : unit;
}

std::vector<std::int32_t> kv_wanted_devices(std::string_view keyword, const kv_command_t& command,
                                            const kv_results_t& results, std::string_view path) {
  const kv_expanded_t design = kv_design_of(results);
  std::vector<std::int32_t> devices;
  if (path.empty()) {
    devices = selected_devices(design);
    if (devices.empty()) kv_refuse(keyword, command, "# !! Error : No DEVICE selected ? ", 3);
    return devices;
  }
  kv_drawings_t drawings;
  for (const auto& found : kv_search_path(drawings, path, most_devices).found) {
    const std::string key = kv_path_key(found.path);
    for (const auto object : design.paths.find({&key, 1}, SIZE_MAX)) {
      if (object.what == kv_named::inst) devices.push_back(object.index);
    }
  }
  std::ranges::sort(devices);
  devices.erase(std::unique(devices.begin(), devices.end()), devices.end());
  if (devices.empty()) kv_refuse(keyword, command, "# !! Error : Device NOT FOUND ? ", 3);
  return devices;
}

std::vector<std::int32_t> kv_wanted_value_nets(std::string_view keyword,
                                               const kv_command_t& command,
                                               const kv_results_t& results, std::string_view path) {
  const kv_expanded_t design = kv_design_of(results);
  const auto nets = kv_wanted_nets(keyword, command, design, path);
  std::vector<std::int32_t> wanted;
  if (!nets) return wanted;
  for (const std::int32_t net : *nets) {
    if (!design.netlist.is_bus(net)) {
      wanted.push_back(net);
      continue;
    }
    const std::int32_t first = design.netlist.first_member(net);
    for (std::int32_t i = 0; first != 0 && i < design.netlist.width(net); ++i) {
      wanted.push_back(first + i);
    }
  }
  return wanted;
}
