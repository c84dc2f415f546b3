#include "gx/display/strokes/dashes.h"

#include <array>

#include "gx/display/strokes/stroke_layers.h"
#include "gx/text/at.h"

namespace {
struct dash_list_t {
  std::size_t length;
  std::array<char, 6> dashes;
};
constexpr std::array<dash_list_t, gx_nb_of_dash_lists> dash_lists = {{
    {0, {}},
    {2, {6, 6}},
    {2, {3, 6}},
    {4, {12, 6, 3, 6}},
    {6, {12, 6, 3, 6, 3, 6}},
    {0, {}},
    {2, {6, 6}},
    {2, {3, 10}},
    {4, {12, 6, 2, 6}},
    {6, {12, 6, 2, 6, 2, 6}},
}};
}  // namespace

std::span<const char> gx_dash_list(int list) {
  const auto& found = gx_at(dash_lists, list);
  return {found.dashes.data(), found.length};
}
