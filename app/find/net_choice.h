// Which flat nets a command means: those of a path, or that of the selected net.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "app/find/expanded.h"
#include "app/language/command.h"

// By word 3, else by the one selected net of the sheet in view, or the net of selected segments.
// Nothing after the refusal (`keyword`, the words, the line that says why).
std::optional<std::vector<std::int32_t>> kv_wanted_nets(std::string_view keyword,
                                                        const kv_command_t& command,
                                                        const kv_expanded_t& expanded);
