#include "import/kicad/lines.h"

#include <utility>

#include "gx/db/place/geometry.h"
#include "gx/text/at.h"
#include "import/drawing/placement.h"
#include "import/kicad/picture.h"
#include "import/kicad/touching.h"

void gxi_kicad_draw_lines(const gxi_kicad_file_t& records, const gxi_kicad_joined_t& joined,
                          gxi_sheet_t& sheet) {
  const auto ends = [](const gxi_kicad_wire_t& wire) {
    return std::pair(gxi_kicad_on_sheet(wire.from), gxi_kicad_on_sheet(wire.to));
  };
  for (std::size_t i = 0; i < records.wires.size(); ++i) {
    const auto [from, to] = ends(records.wires[i]);
    gx_at(sheet.nets, joined.of_wire[i]).segments.push_back({from, to});
  }
  for (const auto* const lines : {&records.buses, &records.entries})
    for (const auto& line : *lines) {
      const auto [from, to] = ends(line);
      sheet.shapes.push_back({.type = gx_type::line_2d,
                              .points = {from, to},
                              .color = gxi_kicad_colors.bus,
                              .width = static_cast<std::uint8_t>(lines == &records.buses ? 3 : 1)});
    }
  // Dots of wires are the builder's.
  const auto on_bus = gxi_kicad_on_wires(records.buses, records.junctions);
  constexpr int half_a_dot = 6'350, arm = 6'350;
  for (std::size_t i = 0; i < records.junctions.size(); ++i) {
    const auto at = records.junctions[i];
    if (on_bus[i])
      sheet.shapes.push_back(
          {.type = gx_type::rectangle_2d,
           .points = {gxi_kicad_on_sheet({at.x - half_a_dot, at.y - half_a_dot}),
                      gxi_kicad_on_sheet({at.x + half_a_dot, at.y + half_a_dot})},
           .color = gxi_kicad_colors.bus,
           .filled = true});
  }
  for (const auto& at : records.no_connects)
    for (const int way : {-1, 1})
      sheet.shapes.push_back({.type = gx_type::line_2d,
                              .points = {gxi_kicad_on_sheet({at.x - arm, at.y - way * arm}),
                                         gxi_kicad_on_sheet({at.x + arm, at.y + way * arm})},
                              .color = gxi_kicad_colors.mark});
}

void gxi_kicad_cross_out(const gxi_instance_t& instance, const gxi_symbol_t& sign,
                         gxi_sheet_t& sheet) {
  gx_boundsreal_t box = gx_empty_bounds;
  for (const auto& shape : sign.shapes)
    for (const auto& point : shape.points) gx_include(box, gxi_on_sheet(instance, point));
  if (gx_bounds_empty(box)) return;
  for (const bool falls : {false, true})
    sheet.shapes.push_back({.type = gx_type::line_2d,
                            .points = {{box.xmin, falls ? box.ymin : box.ymax},
                                       {box.xmax, falls ? box.ymax : box.ymin}},
                            .color = gxi_kicad_colors.left_out,
                            .width = 2});
}
