#include "import/build/sheet_extent.h"

#include <map>

#include "gx/db/place/geometry.h"
#include "gx/text/at.h"
#include "gx/text/kept_text.h"
#include "import/drawing/placement.h"

namespace {

void include(gx_boundsreal_t& box, const gxm_shape_t& shape) {
  for (const auto& p : shape.points) {
    gx_include(box, gx_pointreal_t{p.x - shape.radius, p.y - shape.radius});
    gx_include(box, gx_pointreal_t{p.x + shape.radius, p.y + shape.radius});
  }
}

void include(gx_boundsreal_t& box, const gxi_text_t& text) {
  for (const auto& line : gxi_lines(text.value, text.look)) {
    const auto length = static_cast<std::int32_t>(gx_shown_length(line.text)) * text.look.height;
    gx_include(box, line.at);
    gx_include(box,
               line.rotate == 0
                   ? gx_pointreal_t{line.at.x + length + length / 5, line.at.y - text.look.height}
                   : gx_pointreal_t{line.at.x - text.look.height, line.at.y - length - length / 5});
  }
}

gx_boundsreal_t box_of(const gxi_symbol_t& symbol) {
  gx_boundsreal_t box = gx_empty_bounds;
  for (const auto& shape : symbol.shapes) include(box, shape);
  for (const auto& pin : symbol.pins) gx_include(box, pin.at);
  for (const auto& text : symbol.texts) include(box, text);
  return box;
}

void include(gx_boundsreal_t& box, const gxi_instance_t& instance, const gx_boundsreal_t& symbol) {
  if (!gx_bounds_empty(symbol)) {
    gx_include(box, gxi_on_sheet(instance, gx_pointreal_t{symbol.xmin, symbol.ymin}));
    gx_include(box, gxi_on_sheet(instance, gx_pointreal_t{symbol.xmax, symbol.ymax}));
  }
  gx_include(box, instance.at);
  if (instance.name_look) include(box, {instance.name, *instance.name_look});
  for (const auto& property : instance.properties)
    if (property.look) include(box, {property.value, *property.look});
}

}  // namespace

gx_boundsreal_t gxi_extent(const gxi_design_t& design, const gxi_sheet_t& sheet) {
  gx_boundsreal_t box = gx_empty_bounds;
  for (const auto& shape : sheet.shapes) include(box, shape);
  for (const auto& text : sheet.texts) include(box, text);
  for (const auto& net : sheet.nets) {
    for (const auto& segment : net.segments) {
      gx_include(box, segment.from);
      gx_include(box, segment.to);
    }
    if (net.name_look) include(box, {net.name, *net.name_look});
  }
  std::map<int, gx_boundsreal_t> symbols;
  for (const auto& instance : sheet.instances) {
    const auto [found, is_new] = symbols.try_emplace(instance.symbol);
    if (is_new) found->second = box_of(gx_at(design.cells, instance.symbol).symbol);
    include(box, instance, found->second);
  }
  return gx_bounds_empty(box) ? gx_boundsreal_t{0, 0, 0, 0} : box;
}
