// Where the records of an expanded design come from: the sheets as the run saw them, and its visits
// of them. Kept beside the design for the commands that answer why and where; a run that is given
// none keeps nothing. Costs a run 40 bytes a visit of a sheet, and nothing for a record.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "expand/design.h"
#include "expand/sheet/sheets.h"
#include "netlist/netlist.h"

// One visit. Its records are those between the counts before and after: nets and children of its
// own alone, leaf instances and macros also of the visits below it.
struct kv_visit_t {
  const kv_sheet_t* sheet = nullptr;
  std::int32_t above = -1;  // the visit of the sheet that holds its block; -1 at the top
  std::int32_t macro = 0;   // its block, 0 at the top; macros before it come from earlier visits
  std::int32_t nets_before = 0, children_before = 0, insts_before = 0;
  std::int32_t insts_after = 0, macros_after = 0;
};

struct kv_origins_t {
  std::uint64_t run = 0;  // another number for every run of the process; 0: none has filled it
  std::shared_ptr<kv_sheets_t> sheets;
  std::vector<kv_visit_t> visits;  // in the order of the walk
};

// The visit that saved a record of the design, an index into `visits`; -1 when there is none.
std::int32_t kv_visit_of_net(const kv_origins_t& origins, std::int32_t net);
std::int32_t kv_visit_of_child(const kv_origins_t& origins, std::int32_t child);
// The visit of the sheet of a block; -1 when it has none.
std::int32_t kv_visit_inside(const kv_origins_t& origins, std::int32_t macro);

// Where a record of the design is drawn.
struct kv_place_t {
  std::int32_t visit = -1;  // of the sheet; -1: nowhere
  int object_id = 0;        // on it
};
kv_place_t kv_place_of(const kv_memory_netlist_t& netlist, const kv_origins_t& origins,
                       kv_object_t object);

// The simulation path of the sheet: "" at the top.
std::string_view kv_visit_path(const kv_memory_netlist_t& netlist, const kv_origins_t& origins,
                               std::int32_t visit);
