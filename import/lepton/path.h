// The steps of a path: what a drawing of Lepton EDA shares with SVG.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "import/lepton/file.h"

// M, L, C and Z in either case, with any number of places after each; relative ones become
// absolute. False, and why, where the text is no such path or goes beyond `furthest`.
bool gxi_lepton_path(std::string_view text, std::int32_t furthest,
                     std::vector<gxi_lepton_step_t>& path, std::string& why);

// The lines that it draws, curves in short pieces.
std::vector<std::vector<gxi_lepton_point_t>> gxi_lepton_lines(
    const std::vector<gxi_lepton_step_t>& path);
