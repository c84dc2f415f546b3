// Names of nets in KiCad: escapes, and the members of buses.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

// "{slash}" and its like are the characters that they stand for.
std::string gxi_kicad_unescaped(std::string_view name);

using gxi_kicad_aliases_t = std::map<std::string, std::vector<std::string>, std::less<>>;

// A bus: "A[0..7]" (a vector, whose members are A0, A1 ... in rising order however it is written),
// "{A B[0..1]}" or "BUS{A B}" (a group; its members have "BUS." before them).
struct gxi_kicad_bus_t {
  bool is_vector = false;
  std::vector<std::string> members{};  // whole names
  std::vector<std::string> local{};    // of a group: without the name before the braces
};

inline constexpr int gxi_kicad_most_members = 4096;

// No members: the name is none of a bus. Aliases in groups are put in; one that contains itself
// ends there.
gxi_kicad_bus_t gxi_kicad_bus(std::string_view name, const gxi_kicad_aliases_t& aliases);
