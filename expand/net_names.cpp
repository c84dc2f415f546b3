#include "expand/net_names.h"

#include <algorithm>

#include "expand/store.h"
#include "gx/text/strings.h"

namespace {

bool is_path(const kv_design_t& design, std::int32_t string_index, std::string_view path) {
  return gx_iden(kv_text(design, string_index), path);
}

bool chain_has_path(const kv_design_t& design, std::int32_t first,
                    std::int32_t kv_pin_record_t::*next, std::string_view path) {
  for (std::int32_t pin = first; pin != 0; pin = kv_record(design.pins, pin).*next) {
    if (is_path(design, kv_record(design.pins, pin).sim_path, path)) return true;
  }
  return false;
}

bool child_has_path(const kv_design_t& design, const kv_net_record_t& net, std::string_view path) {
  for (std::int32_t child = net.first_child; child != 0;
       child = kv_record(design.net_childs, child).next_child) {
    const kv_net_child_record_t& record = kv_record(design.net_childs, child);
    if (is_path(design, record.sim_path, path) || is_path(design, record.name, path)) return true;
  }
  return false;
}

// The net that bears the path, itself or by a child or a pin.
std::int32_t net_of_path(const kv_design_t& design, std::string_view path) {
  for (std::int32_t index = 1; index <= design.nets.count; ++index) {
    const kv_net_record_t& net = design.nets[index];
    if (is_path(design, net.sim_path, path) || child_has_path(design, net, path) ||
        chain_has_path(design, net.first_pin_in_ind, &kv_pin_record_t::next_pin_in_ind, path) ||
        chain_has_path(design, net.first_pin_out_ind, &kv_pin_record_t::next_pin_out_ind, path)) {
      return index;
    }
  }
  return 0;
}

// The first record whose path is that of the pin.
template <typename Record>
std::int32_t find_pin(const kv_design_t& design, const kv_blocked_t<Record>& pins,
                      std::string_view sheet_path, std::string_view inst_name,
                      std::string_view pin_name) {
  std::string path(sheet_path);
  path.append(inst_name).append("/").append(pin_name);
  for (std::int32_t pin = 1; pin <= pins.count; ++pin) {
    if (is_path(design, pins[pin].sim_path, path)) return pin;
  }
  return 0;
}

}  // namespace

std::int32_t kv_find_net_rel(std::string_view sheet_path, std::string_view net_name) {
  if (net_name.empty() || sheet_path.empty() || sheet_path.size() + net_name.size() >= 200)
    return 0;
  return net_of_path(kv_sext, std::string(sheet_path) + std::string(net_name));
}

std::int32_t kv_find_pin_rel(std::string_view sheet_path, std::string_view inst_name,
                             std::string_view pin_name) {
  return find_pin(kv_sext, kv_sext.pins, sheet_path, inst_name, pin_name);
}

std::int32_t kv_find_pinm_rel(std::string_view sheet_path, std::string_view inst_name,
                              std::string_view pin_name) {
  return find_pin(kv_sext, kv_sext.pinms, sheet_path, inst_name, pin_name);
}

std::string kv_simulator_name(std::string_view path) {
  if (gx_iden(path, "/GROUND")) return "0";
  if (!path.starts_with('/')) return std::string(path);
  if (path.find('/', 1) == std::string_view::npos) return std::string(path.substr(1));
  std::string name(path);
  std::replace(name.begin(), name.end(), '/', ':');
  return name.substr(2);
}
