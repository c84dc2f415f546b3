// Appending one object of a sheet, with its strings and kept properties, to the store. The object
// is saved under run.path; all return the new index.
#pragma once

#include <cstdint>
#include <string_view>

#include "expand/run/flatten_state.h"

std::int32_t kv_save_inst(kv_flatten_t& run, const kv_sheet_t& sheet, const kv_sheet_inst_t& inst,
                          std::int8_t timing_index, const kv_flat_t* flats);
std::int32_t kv_save_macro(kv_flatten_t& run, const kv_sheet_t& sheet, const kv_sheet_inst_t& inst,
                           std::int8_t timing_index, const kv_flat_t* flats);

// The net that has the id and the kept properties of `master`, under run.path.
std::int32_t kv_save_net(kv_flatten_t& run, const kv_sheet_t& sheet, const kv_sheet_net_t& master,
                         std::string_view name);
// A bus with its members after it; the bus's range is above its start.
std::int32_t kv_save_bus(kv_flatten_t& run, const kv_sheet_t& sheet, const kv_sheet_net_t& master,
                         std::string_view name, const kv_sheet_group_t& range);
// Chains a further net of an equipotential to its flat net.
void kv_save_net_child(kv_flatten_t& run, std::int32_t flat_net, const kv_sheet_net_t& net,
                       std::string_view name, std::int16_t net_kind);

// Makes a member of a bus a net named of its own: by the global that is on it.
void kv_name_sub_net(kv_design_t& design, std::int32_t member, std::string_view name);

// Sets the state a net starts with.
void kv_set_initial_state(kv_design_t& design, std::int32_t net, const kv_init_t& init);
