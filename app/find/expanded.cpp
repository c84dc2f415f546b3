#include "app/find/expanded.h"

#include <algorithm>

#include "app/sheet/walk.h"
#include "app/state.h"
#include "expand/store.h"
#include "gx/db/objects_of.h"
#include "gx/db/queries.h"

std::optional<kv_expanded_t> kv_expanded() {
  const auto& origins = kv_sext.origins;
  if (origins.visits.empty() || kv_sext.strings.count == 0) return std::nullopt;
  if (kv_pext.paths == nullptr || kv_pext.paths_of_run != origins.run) {
    kv_pext.paths = std::make_shared<const kv_memory_paths_t>(kv_memory_netlist_t(kv_sext));
    kv_pext.paths_of_run = origins.run;
  }
  return kv_expanded_t{kv_sext, origins, *kv_pext.paths};
}

std::optional<kv_object_t> kv_object_at(const kv_expanded_t& expanded, kv_named what,
                                        std::string_view path) {
  const std::string key = kv_path_key(path);
  std::optional<kv_object_t> found;
  for (const auto hit : expanded.paths.find({&key, 1}, SIZE_MAX)) {
    if (hit.what != what) continue;
    if (expanded.paths.path(hit) == path) return hit;
    if (!found) found = hit;
  }
  return found;
}

std::int32_t kv_visit_at(const kv_expanded_t& expanded, std::string_view sheet_path) {
  if (sheet_path.ends_with('/')) sheet_path.remove_suffix(1);
  if (sheet_path.empty()) return 0;
  std::string key = kv_path_key(sheet_path);
  if (!key.starts_with('/')) key.insert(0, 1, '/');
  for (const auto hit : expanded.paths.find({&key, 1}, SIZE_MAX))
    if (hit.what == kv_named::macro) return kv_visit_inside(expanded.origins, hit.index);
  return -1;
}

std::int32_t kv_flat_net_of(const kv_expanded_t& expanded, std::int32_t visit, int net_id) {
  const auto& [netlist, origins, paths] = expanded;
  const auto after = static_cast<std::size_t>(visit) + 1;
  const bool is_last = after == origins.visits.size();
  const auto& here = expanded.visit(visit);
  const std::int32_t children_after =
      is_last ? netlist.count(kv_named::net_child) : origins.visits[after].children_before;
  for (std::int32_t child = here.children_before + 1; child <= children_after; ++child)
    if (netlist.object_id({kv_named::net_child, child}) == net_id) return paths.net_of_child(child);
  // The members of a bus have its object, too, and come after it.
  const std::int32_t nets_after =
      is_last ? netlist.count(kv_named::net) : origins.visits[after].nets_before;
  for (std::int32_t net = here.nets_before + 1; net <= nets_after; ++net)
    if (netlist.object_id({kv_named::net, net}) == net_id) return net;
  return 0;
}

std::optional<kv_way_t> kv_way_of_visit(const kv_expanded_t& expanded, kv_drawings_t& drawings,
                                        std::int32_t visit) {
  kv_way_t way;
  for (; visit > 0; visit = expanded.visit(visit).above) {
    const kv_object_t macro{kv_named::macro, expanded.visit(visit).macro};
    way.push_back({expanded.netlist.object_id(macro), {}, {}});
  }
  std::ranges::reverse(way);
  const auto* sheet = drawings.top();
  for (auto& step : way) {
    if (sheet == nullptr || gx_object_as<gx_object_instance_rec_t>(*sheet, step.inst) == nullptr)
      return std::nullopt;
    step.name = lb_inst_name(*sheet, step.inst);
    step.directory = kv_sheet_directory(*sheet, step.inst);
    sheet = drawings.below(*sheet, step.inst);
  }
  return way;
}
