// What the name of a variable stands for: the voltage of a net, or a value of a device. The names
// of ngspice, Xyce and LTspice are read by one rule (docs/results.md).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "results/raw_header.h"

enum class rs_meaning : std::uint8_t {
  net,     // the voltage of the net `path`
  device,  // `parameter` of what `path` is or begins with
  other    // the scale, an expression, a sweep
};

struct rs_name_t {
  rs_meaning meaning = rs_meaning::other;
  std::string path;       // as the simulator writes it: "r:x2:x", "m.xr.x2.mp1"
  std::string parameter;  // of a device, in small letters: "id", "gm", "i"
};
rs_name_t rs_read_name(const rs_variable_t& variable);

// The names that a path consists of, from the top down: separated by ":", ".", "/" or "#".
std::vector<std::string_view> rs_path_names(std::string_view path);

// The one name of a parameter that simulators call differently: "id" for "ids", "vth" for "vt",
// "vdsat" for "vdss"; small letters.
std::string rs_parameter_name(std::string_view parameter);

// The unit of a parameter ("id", "gm") or of a type of variables ("voltage"); "" when it has none.
std::string_view rs_unit_of(std::string_view name);
