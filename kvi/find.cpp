// Objects by their paths, and where they are drawn.
#include <algorithm>
#include <string>

#include "kvi/state.h"

namespace {

// Null while nothing is loaded. One who asks while the file is written again gets answers about
// what was loaded, or none.
const kv_path_index_t<kvi_design_t>* paths() {
  if (kvi_loaded_netlist().count(kv_named::inst) == 0 &&
      kvi_loaded_netlist().count(kv_named::net) == 0)
    return nullptr;
  if (!kvi_state.paths)
    kvi_state.paths =
        std::make_unique<const kv_path_index_t<kvi_design_t>>(kvi_netlist_t(kvi_state.design));
  return kvi_state.paths.get();
}
const kv_hierarchy_t<kvi_design_t>& blocks() {
  if (!kvi_state.blocks)
    kvi_state.blocks =
        std::make_unique<const kv_hierarchy_t<kvi_design_t>>(kvi_netlist_t(kvi_state.design));
  return *kvi_state.blocks;
}

static_assert(static_cast<int>(kv_named::inst) == KVI_INSTANCE);
static_assert(static_cast<int>(kv_named::macro) == KVI_MACRO);
static_assert(static_cast<int>(kv_named::net) == KVI_NET);
static_assert(static_cast<int>(kv_named::pin) == KVI_PIN);
static_assert(static_cast<int>(kv_named::pinm) == KVI_MACRO_PIN);

bool is_kind(std::int32_t kind) {
  return kind == KVI_INSTANCE || kind == KVI_MACRO || kind == KVI_NET || kind == KVI_PIN ||
         kind == KVI_MACRO_PIN;
}

}  // namespace

std::int32_t kvi_find(std::int32_t kind, std::int32_t len, const char* path) {
  if (!is_kind(kind) || !path || len < 1) return 0;
  const auto* index = paths();
  if (!index) return 0;
  std::string key = kv_path_key({path, static_cast<std::size_t>(len)});
  if (!key.starts_with('/')) key.insert(0, 1, '/');
  const auto found = index->find({&key, 1}, SIZE_MAX);
  for (const kv_object_t object : found)
    if (object.what == static_cast<kv_named>(kind)) return object.index;
  if (kind != KVI_NET) return 0;
  for (const kv_object_t object : found)
    if (object.what == kv_named::net_child) return index->net_of_child(object.index);
  return 0;
}

std::int32_t kvi_get_place(std::int32_t kind, std::int32_t index, kvi_place_t* place) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  const kv_object_t object{static_cast<kv_named>(kind), index};
  if (!place || !is_kind(kind) || !netlist.holds(object)) return 0;
  const bool is_pin = object.what == kv_named::pin || object.what == kv_named::pinm;
  const kv_object_t part = is_pin ? netlist.owner(object) : object;
  const bool is_net = object.what == kv_named::net;
  place->object_id = netlist.object_id(object);
  place->macro = is_net ? blocks().block_of(netlist.path(object)) : blocks().parent(part);
  const std::string_view sheet = is_net ? blocks().sheet(place->macro) : netlist.file_path(part);
  place->sheet_len = static_cast<std::int32_t>(sheet.size());
  place->sheet = sheet.empty() ? "" : sheet.data();
  return 1;
}
