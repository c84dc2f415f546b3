// The names of the object types.
#include <array>

#include "gx/db/object_records.h"

namespace {
constexpr std::array<std::string_view, gx_max_type + 1> type_array = {"nil",
                                                                      "main",
                                                                      "page",
                                                                      "component_family",
                                                                      "instance_family",
                                                                      "symbol_family",
                                                                      "net_family",
                                                                      "component",
                                                                      "instance",
                                                                      "symbol",
                                                                      "bodpropfam",
                                                                      "pinpropfam",
                                                                      "net",
                                                                      "vertex_family",
                                                                      "segment",
                                                                      "body",
                                                                      "pin_family",
                                                                      "tag_family",
                                                                      "frame_family",
                                                                      "frame",
                                                                      "pin",
                                                                      "graphics",
                                                                      "property_family",
                                                                      "tag",
                                                                      "vertex_2d",
                                                                      "arc3p_2d",
                                                                      "circle_2d",
                                                                      "grid_2d",
                                                                      "line_2d",
                                                                      "polyline5_2d",
                                                                      "polyline_2d",
                                                                      "rectangle_2d",
                                                                      "property_2d"};
}  // namespace

std::string_view gx_type_name(gx_type type) {
  const auto code = static_cast<std::size_t>(type);
  return code < type_array.size() ? type_array[code] : type_array[0];
}
