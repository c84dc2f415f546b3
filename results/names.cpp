#include "results/names.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

std::string lower(std::string_view text) {
  std::string letters(text);
  for (char& c : letters) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return letters;
}

// "@m.xr.x2.mp1[gm]".
rs_name_t device_parameter(std::string_view name) {
  name.remove_prefix(1);
  const auto bracket = name.rfind('[');
  if (bracket == name.npos || !name.ends_with(']'))
    return {rs_meaning::device, std::string(name), ""};
  const std::string_view parameter = name.substr(bracket + 1, name.size() - bracket - 2);
  return {rs_meaning::device, std::string(name.substr(0, bracket)), lower(parameter)};
}

// "v(...)", "i(...)", "id(...)": a letter or two, and what is in the brackets.
rs_name_t in_brackets(std::string_view function, std::string_view inner) {
  if (inner.starts_with('@')) return device_parameter(inner);
  if (inner.find_first_of(",()") != inner.npos) return {};
  const std::string what = lower(function);
  if (what == "v") return {rs_meaning::net, std::string(inner), ""};
  const bool is_current = what.front() == 'i' && what.size() <= 3;
  if (is_current || what == "p" || what == "w") {
    return {rs_meaning::device, std::string(inner), what == "w" ? "p" : what};
  }
  if (what == "n") return {rs_meaning::device, std::string(inner), ""};
  return {};
}

bool is_scale(std::string_view name, std::string_view type) {
  constexpr std::array<std::string_view, 4> names{"time", "frequency", "temp-sweep", "v-sweep"};
  return type == "time" || type == "frequency" || std::ranges::find(names, name) != names.end() ||
         name.ends_with("-sweep");
}

}  // namespace

rs_name_t rs_read_name(const rs_variable_t& variable) {
  const std::string_view name = variable.name;
  const std::string type = lower(variable.type);
  const auto bracket = name.find('(');
  const std::string inner = lower(name.ends_with(')') && bracket != name.npos
                                      ? name.substr(bracket + 1, name.size() - bracket - 2)
                                      : name);
  if (name.empty() || is_scale(inner, type)) return {};
  if (name.starts_with('@')) return device_parameter(name);
  constexpr std::string_view branch = "#branch";
  if (lower(name).ends_with(branch)) {
    return {rs_meaning::device, std::string(name.substr(0, name.size() - branch.size())), "i"};
  }
  if (bracket == 0) return {};
  if (bracket != name.npos && name.ends_with(')')) {
    return in_brackets(name.substr(0, bracket),
                       name.substr(bracket + 1, name.size() - bracket - 2));
  }
  if (name.find_first_of("{}()*+- ") != name.npos && type != "voltage") return {};
  if (type == "voltage") return {rs_meaning::net, std::string(name), ""};
  if (type == "current") return {rs_meaning::device, std::string(name), "i"};
  return {};
}

std::vector<std::string_view> rs_path_names(std::string_view path) {
  std::vector<std::string_view> names;
  while (!path.empty()) {
    const auto end = std::min(path.find_first_of(":./#"), path.size());
    if (end > 0) names.push_back(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return names;
}

std::string rs_parameter_name(std::string_view parameter) {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 3> synonyms{
      {{"ids", "id"}, {"vt", "vth"}, {"vdss", "vdsat"}}};
  std::string name = lower(parameter);
  for (const auto& [other, one] : synonyms) {
    if (name == other) return std::string(one);
  }
  return name;
}

std::string_view rs_unit_of(std::string_view name) {
  using unit_t = std::pair<std::string_view, std::string_view>;
  constexpr std::array types{
      unit_t{"voltage", "V"},     unit_t{"current", "A"},      unit_t{"time", "s"},
      unit_t{"frequency", "Hz"},  unit_t{"power", "W"},        unit_t{"admittance", "S"},
      unit_t{"capacitance", "F"}, unit_t{"resistance", "Ohm"}, unit_t{"charge", "C"},
      unit_t{"impedance", "Ohm"}, unit_t{"temperature", "C"}};
  const std::string small = lower(name);
  for (const auto& [type, unit] : types) {
    if (small == type) return unit;
  }
  // Parameters of devices by how they begin.
  if (small == "p") return "W";
  if (small.starts_with('i') || small == "cd") return "A";
  if (small.starts_with('v') || small == "von") return "V";
  if (small.starts_with('g')) return "S";
  if (small == "r" || small.starts_with("ro")) return "Ohm";
  return small.starts_with("cg") || small.starts_with("cb") || small.starts_with("cd") ? "F" : "";
}
