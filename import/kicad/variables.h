// Variables in texts, "${NAME}": of the project, the title block, the fields of what holds the
// text.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

using gxi_kicad_variables_t = std::map<std::string, std::string, std::less<>>;

// Those of the project file (JSON) beside a sheet; none where there is no such file, or it is no
// JSON.
gxi_kicad_variables_t gxi_kicad_project_variables(const std::filesystem::path& sheet);
gxi_kicad_variables_t gxi_kicad_read_variables(std::string_view json);

// `value_of` answers for a name; what it does not know stays as it is written. Values may have
// variables themselves, a few levels deep.
std::string gxi_kicad_substitute(
    std::string_view text,
    const std::function<std::optional<std::string>(std::string_view name)>& value_of);
