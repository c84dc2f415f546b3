// From names on the sheet in view to the flat netlist of the session.
#pragma once

#include <cstdint>
#include <string_view>

// The flat net of a net of the sheet whose path is `sheet_path` ("/" or "/X1/" ...); 0 when there
// is none. The net, one of its children or one of its pins has the path.
std::int32_t kv_find_net_rel(std::string_view sheet_path, std::string_view net_name);

// The flat pin of a pin of an instance of that sheet; 0 when there is none.
std::int32_t kv_find_pin_rel(std::string_view sheet_path, std::string_view inst_name,
                             std::string_view pin_name);
// The same among the pins of macros.
std::int32_t kv_find_pinm_rel(std::string_view sheet_path, std::string_view inst_name,
                              std::string_view pin_name);
