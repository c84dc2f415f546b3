// What is joined with what on a sheet of xschem.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "import/xschem/placed.h"

// A wire or a pin belongs to a bundle: a list of nets.
struct gxi_xschem_bundle_t {
  std::vector<int> nets{};  // of the sheet; never empty when wires or pins are on it
  // Where only ports of XSPICE are: of each net what a deck has around it, "~@"; else empty.
  std::vector<std::string> around{};
};

struct gxi_xschem_nets_t {
  std::vector<gxi_net_t> nets{};
  std::vector<gxi_xschem_bundle_t> bundles{};
  std::vector<std::vector<int>> bundle_of_pin{};  // by component and pin
  std::vector<int> bundle_of_wire{};              // by wire
  // Of each label and port: whether its net has its name, as it does unless two labels met.
  std::vector<bool> names_its_net{};
  std::map<std::string, int> by_name{};  // in capitals

  // The nets of that name, made when the sheet has none yet.
  std::vector<int> named(std::string_view label, const gxm_source_t& source);
};

// `wires` are the N records. Labels that meet on one net are reported in `messages`; the first
// counts.
gxi_xschem_nets_t gxi_xschem_join(const std::vector<gxi_xschem_placed_t>& components,
                                  const std::vector<const gxi_xschem_shape_t*>& wires,
                                  std::string_view file, gxm_messages_t& messages);
