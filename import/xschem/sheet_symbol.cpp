#include "import/xschem/sheet_symbol.h"

#include <utility>

namespace {

constexpr int wire_layer = 1;
constexpr double half_pin = 2.5;

gxi_xschem_point_t placed(const gxi_xschem_component_t& component, gxi_xschem_point_t p) {
  if (component.flip) p.x = -p.x;
  for (int turn = 0; turn < component.rotate; ++turn) p = {-p.y, p.x};
  return {component.at.x + p.x, component.at.y + p.y};
}

// The graphics of a symbol on the sheet; texts of its own stay with the sheet.
void draw(const gxi_xschem_component_t& component, const gxi_xschem_file_t& symbol,
          gxi_xschem_file_t& made) {
  for (auto shape : symbol.shapes) {
    if (shape.kind == 'B' && shape.layer == gxi_xschem_pin_layer) continue;
    for (auto& point : shape.points) point = placed(component, point);
    if (component.flip) {
      shape.start = 180 - shape.start - shape.sweep;
    }
    shape.start -= 90.0 * component.rotate;
    made.shapes.push_back(std::move(shape));
  }
}

void add_pin(const gxi_xschem_component_t& component, const gxi_xschem_symbol_t& port,
             gxi_xschem_file_t& made) {
  const gxi_xschem_attributes_t own(component.attributes);
  const auto* const label = own.find("lab");
  const auto name = label != nullptr ? std::string_view(*label) : port.defaults.get("lab");
  if (name.empty() || port.pins.empty()) return;
  const auto at = placed(component, port.pins.front().at);
  gxi_xschem_shape_t pin{.kind = 'B', .line = component.line, .layer = gxi_xschem_pin_layer};
  pin.points = {{at.x - half_pin, at.y - half_pin}, {at.x + half_pin, at.y + half_pin}};
  pin.attributes = "name=\"" + std::string(name) + "\" dir=" +
                   (port.type == "ipin"   ? "in"
                    : port.type == "opin" ? "out"
                                          : "inout");
  if (const auto number = own.get("sim_pinnumber"); !number.empty())
    pin.attributes += " sim_pinnumber=" + std::string(number);
  made.shapes.push_back(std::move(pin));
}

}  // namespace

gxi_xschem_file_t gxi_xschem_symbol_of_sheet(gxi_xschem_library_t& library,
                                             const gxi_xschem_file_t& sheet,
                                             const std::filesystem::path& path) {
  gxi_xschem_file_t made;
  made.version = sheet.version;
  made.global = sheet.global;
  if (gxi_xschem_attributes_t(sheet.global).get("type").empty())
    made.global = "type=subcircuit format=\"@name @pinlist @symname\" template=\"name=x1\"";
  for (auto shape : sheet.shapes) {
    if (shape.kind == 'N') {
      shape.kind = 'L';
      shape.layer = wire_layer;
    }
    made.shapes.push_back(std::move(shape));
  }
  made.texts = sheet.texts;
  for (const auto& component : sheet.components) {
    const auto& symbol = library.symbol(component, path);
    draw(component, symbol.records, made);
    if (symbol.role == gxi_xschem_role_t::port) add_pin(component, symbol, made);
  }
  return made;
}
