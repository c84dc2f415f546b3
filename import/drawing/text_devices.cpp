#include "import/drawing/text_devices.h"

#include <algorithm>

#include "gx/text/strings.h"
#include "import/drawing/netlist_text.h"

std::string gxi_text_devices_t::add(std::string_view netlist, gxi_sheet_t& sheet,
                                    const std::function<int(const std::string&)>& net) {
  std::string rest;
  constexpr int row = 40;
  gx_pointreal_t corner{0, 2 * gxm_step};
  for (const auto& instance : sheet.instances) corner.y = std::max(corner.y, instance.at.y);
  corner.y = (corner.y / gxm_step + 10) * gxm_step;
  int place = 0;
  for (auto& device : gxi_netlist_devices(netlist, &rest)) {
    gxi_instance_t instance;
    instance.name = device.name;
    instance.source = sheet.source;
    instance.symbol = symbol(device.name.front(), device.nodes.size());
    instance.drawn = false;
    instance.at = {corner.x + place % row * 2 * gxm_step, corner.y + place / row * 6 * gxm_step};
    ++place;
    for (const auto& node : device.nodes) instance.nets.push_back(net(node));
    if (!device.value.empty()) instance.properties.push_back({"value", device.value, {}});
    instance.deck = std::move(device.line);
    sheet.instances.push_back(std::move(instance));
  }
  return rest;
}

int gxi_text_devices_t::symbol(char letter, std::size_t nodes) {
  const std::string name = std::string("text_") + gx_upper_case(letter) + std::to_string(nodes);
  const auto [found, is_new] = symbols_.emplace(name, static_cast<int>(design_.cells.size()));
  if (!is_new) return found->second;
  auto& made = design_.cells.emplace_back();
  made.name = made.symbol.name = name;
  made.symbol.properties.push_back({"CLASS", name, {}});
  for (std::size_t i = 0; i < nodes; ++i)
    made.symbol.pins.push_back(
        {.name = "N" + std::to_string(i + 1), .at = {0, static_cast<std::int32_t>(i) * gxm_step}});
  return found->second;
}
