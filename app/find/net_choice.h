// Which flat nets a command means: those of a path, or that of the selected net.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "app/find/expanded.h"
#include "app/language/command.h"

// Those of a path, in any of the forms that FINd PATh takes; when it is "" that of the one selected
// net of the sheet in view, or of selected segments. Nothing after the refusal (`keyword`, the
// words, the line that says why).
std::optional<std::vector<std::int32_t>> kv_wanted_nets(std::string_view keyword,
                                                        const kv_command_t& command,
                                                        const kv_expanded_t& expanded,
                                                        std::string_view path);
inline auto kv_wanted_nets(std::string_view keyword, const kv_command_t& command,
                           const kv_expanded_t& expanded) {
  return kv_wanted_nets(keyword, command, expanded, command.word(3));
}

// Whether a net of a sheet is selected, whole or in part.
bool kv_is_chosen_net(const gx_file_gene_recf_t& file, int net);
