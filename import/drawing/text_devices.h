// Devices in netlist lines of a drawing: they become instances without a drawing.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "import/drawing/drawing.h"

class gxi_text_devices_t {
 public:
  explicit gxi_text_devices_t(gxi_design_t& design) : design_(design) {}
  // In rows below what is on the sheet. `net` gives the net of a node by its name. Returns the
  // lines that are no devices.
  std::string add(std::string_view netlist, gxi_sheet_t& sheet,
                  const std::function<int(const std::string&)>& net);

 private:
  // Of the letter of a device and its number of nodes.
  int symbol(char letter, std::size_t nodes);

  gxi_design_t& design_;
  std::map<std::string, int> symbols_;
};
