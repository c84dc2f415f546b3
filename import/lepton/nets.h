// What is joined with what on a sheet of Lepton EDA: by place, by name, and by the sheets below.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "import/lepton/parts.h"

struct gxi_lepton_wire_t {
  const gxi_lepton_net_t* net = nullptr;
  std::string_view file{};
  gxi_lepton_point_t shift{};  // of its page
};

// A name of a net, and where it comes from: `net=`, `netname=`.
struct gxi_lepton_name_t {
  std::string name{};
  bool of_link = false, of_wire = false;
};

struct gxi_lepton_nets_t {
  std::vector<gxi_net_t> nets{};
  std::vector<std::vector<gxi_lepton_name_t>> names{};  // of each net; the first is its NET
  std::vector<int> of_wire{};
  std::vector<std::vector<int>> of_pin{};     // by component and pin
  std::vector<std::vector<int>> of_hidden{};  // by component and hidden link
};

// Pins of one component that the sheets below it join, by component.
using gxi_lepton_joined_t = std::vector<std::vector<std::pair<std::size_t, std::size_t>>>;

// The place of a pin's tip on the sheet.
gx_pointreal_t gxi_lepton_tip(const gxi_lepton_placed_t& placed, std::size_t pin);

gxi_lepton_nets_t gxi_lepton_join(const std::vector<gxi_lepton_placed_t>& components,
                                  const std::vector<gxi_lepton_wire_t>& wires,
                                  const gxi_lepton_joined_t& joined, bool netname_wins);
