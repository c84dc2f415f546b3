#include "expand/origins.h"

#include <algorithm>

#include "gx/text/at.h"

namespace {

const kv_visit_t& at(const kv_origins_t& origins, std::int32_t visit) {
  return gx_at(origins.visits, visit);
}

// The last visit before whose own records that record came; -1 for none. A visit without records
// of its own begins where the next one does, which comes later.
std::int32_t last_before(const kv_origins_t& origins, std::int32_t kv_visit_t::*count,
                         std::int32_t record) {
  const auto end = std::ranges::partition_point(
      origins.visits, [&](const kv_visit_t& visit) { return visit.*count < record; });
  return static_cast<std::int32_t>(end - origins.visits.begin()) - 1;
}

// From a visit up to the one that had not ended when the record was saved.
std::int32_t up_to(const kv_origins_t& origins, std::int32_t visit,
                   std::int32_t kv_visit_t::*count_after, std::int32_t record) {
  while (visit >= 0 && at(origins, visit).*count_after < record) visit = at(origins, visit).above;
  return visit;
}

std::int32_t visit_of_inst(const kv_origins_t& origins, std::int32_t inst) {
  return up_to(origins, last_before(origins, &kv_visit_t::insts_before, inst),
               &kv_visit_t::insts_after, inst);
}

std::int32_t visit_of_macro(const kv_origins_t& origins, std::int32_t macro) {
  return up_to(origins, last_before(origins, &kv_visit_t::macro, macro), &kv_visit_t::macros_after,
               macro);
}

}  // namespace

std::int32_t kv_visit_of_net(const kv_origins_t& origins, std::int32_t net) {
  return last_before(origins, &kv_visit_t::nets_before, net);
}

std::int32_t kv_visit_of_child(const kv_origins_t& origins, std::int32_t child) {
  return last_before(origins, &kv_visit_t::children_before, child);
}

std::int32_t kv_visit_inside(const kv_origins_t& origins, std::int32_t macro) {
  const std::int32_t visit = last_before(origins, &kv_visit_t::macro, macro + 1);
  return visit >= 0 && at(origins, visit).macro == macro ? visit : -1;
}

kv_place_t kv_place_of(const kv_memory_netlist_t& netlist, const kv_origins_t& origins,
                       kv_object_t object) {
  const auto visit = [&] {
    switch (object.what) {
      case kv_named::inst:
        return visit_of_inst(origins, object.index);
      case kv_named::macro:
        return visit_of_macro(origins, object.index);
      case kv_named::net:
        return kv_visit_of_net(origins, object.index);
      case kv_named::net_child:
        return kv_visit_of_child(origins, object.index);
      case kv_named::pin:
        return visit_of_inst(origins, netlist.owner(object).index);
      case kv_named::pinm:
        break;
    }
    return visit_of_macro(origins, netlist.owner(object).index);
  };
  return {visit(), netlist.object_id(object)};
}

std::string_view kv_visit_path(const kv_memory_netlist_t& netlist, const kv_origins_t& origins,
                               std::int32_t visit) {
  const std::int32_t macro = visit >= 0 ? at(origins, visit).macro : 0;
  return netlist.path({kv_named::macro, macro});
}
