#include "expand/net_names.h"

#include <string>

#include "expand/store.h"
#include "gx/text/strings.h"
#include "netlist/netlist.h"

namespace {

bool is_path(const kv_memory_netlist_t& netlist, kv_object_t object, std::string_view path) {
  return gx_iden(netlist.path(object), path);
}

// Whether the net has the path, itself or by a child or a pin.
bool has_path(const kv_memory_netlist_t& netlist, std::int32_t net, std::string_view path) {
  if (is_path(netlist, {kv_named::net, net}, path)) return true;
  for (const std::int32_t child : netlist.children(net)) {
    if (is_path(netlist, {kv_named::net_child, child}, path)) return true;
    if (gx_iden(netlist.child_name(child), path)) return true;
  }
  for (const std::int32_t pin : netlist.pins(net))
    if (is_path(netlist, {kv_named::pin, pin}, path)) return true;
  return false;
}

// The first pin of a kind whose path is that.
std::int32_t find_pin(kv_named what, std::string_view sheet_path, std::string_view inst_name,
                      std::string_view pin_name) {
  const kv_memory_netlist_t netlist(kv_sext);
  std::string path(sheet_path);
  path.append(inst_name).append("/").append(pin_name);
  for (std::int32_t pin = 1; pin <= netlist.count(what); ++pin)
    if (is_path(netlist, {what, pin}, path)) return pin;
  return 0;
}

}  // namespace

std::int32_t kv_find_net_rel(std::string_view sheet_path, std::string_view net_name) {
  if (net_name.empty() || sheet_path.empty() || sheet_path.size() + net_name.size() >= 200)
    return 0;
  const kv_memory_netlist_t netlist(kv_sext);
  const std::string path = std::string(sheet_path) + std::string(net_name);
  for (std::int32_t net = 1; net <= netlist.count(kv_named::net); ++net)
    if (has_path(netlist, net, path)) return net;
  return 0;
}

std::int32_t kv_find_pin_rel(std::string_view sheet_path, std::string_view inst_name,
                             std::string_view pin_name) {
  return find_pin(kv_named::pin, sheet_path, inst_name, pin_name);
}

std::int32_t kv_find_pinm_rel(std::string_view sheet_path, std::string_view inst_name,
                              std::string_view pin_name) {
  return find_pin(kv_named::pinm, sheet_path, inst_name, pin_name);
}
