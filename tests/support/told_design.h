// A drawing on its way to files, as lines of text: to be compared whole.
#pragma once

#include <string>

#include "import/drawing/drawing.h"

inline std::string told(gx_pointreal_t p) {
  return std::to_string(p.x) + "," + std::to_string(p.y);
}

inline std::string told(const std::vector<gxi_property_t>& properties) {
  std::string text;
  for (const auto& one : properties)
    text += " " + one.name + "=" + one.value + (one.look ? "!" : "");
  return text;
}

inline std::string told(const gxm_source_t& source) {
  return source.line > 0 ? " of " + std::string(source.file) + ":" + std::to_string(source.line)
                         : "";
}

inline std::string told(const gxi_sheet_t& sheet) {
  std::string text = "sheet" + told(sheet.source) + "\n";
  constexpr const char* kinds[] = {"part", "port", "global"};
  for (const auto& shape : sheet.shapes) text += "shape at " + told(shape.points.at(0)) + "\n";
  for (const auto& one : sheet.texts)
    text += "text " + one.value + " at " + told(one.look.at) + "\n";
  for (const auto& net : sheet.nets) {
    text += "net '" + net.name + (net.name_look ? "'!" : "'") + " port=" + net.port +
            " global=" + net.global + told(net.properties) + told(net.source);
    for (const auto& wire : net.segments) text += " " + told(wire.from) + "-" + told(wire.to);
    text += "\n";
  }
  for (const auto& one : sheet.instances) {
    text += std::string(kinds[static_cast<int>(one.kind)]) + " " + one.name +
            (one.name_look ? "!" : "") + " of " + std::to_string(one.symbol) + " at " +
            told(one.at) + (one.drawn ? " nets" : " undrawn nets");
    for (const int net : one.nets) text += " " + std::to_string(net);
    text += told(one.properties) + told(one.source) + "\n";
  }
  return text;
}

inline std::string told(const gxi_cell_t& cell) {
  std::string text = "cell " + cell.name + " symbol " + cell.symbol.name +
                     told(cell.symbol.properties) + " defaults" + told(cell.symbol.defaults) +
                     told(cell.symbol.source) + "\n";
  for (const auto& shape : cell.symbol.shapes) {
    text += "drawn";
    for (const auto& point : shape.points) text += " " + told(point);
    text += "\n";
  }
  for (const auto& one : cell.symbol.texts)
    text += "written " + one.value + " at " + told(one.look.at) + "\n";
  for (const auto& pin : cell.symbol.pins)
    text += "pin " + pin.name + " " + pin.type + " at " + told(pin.at) +
            (pin.name_look ? " named at " + told(pin.name_look->at) : "") + told(pin.properties) +
            "\n";
  return text + (cell.sheet ? told(*cell.sheet) : std::string());
}

inline std::string told(const gxi_design_t& design) {
  std::string text;
  for (const auto& cell : design.cells) text += told(cell);
  for (const auto& warning : design.warnings) text += warning + "\n";
  return text;
}
