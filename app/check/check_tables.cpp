// Finding duplicates in the tables of a sheet check, by sorting.
#include "app/check/check_tables.h"

#include <algorithm>
#include <numeric>

#include "gx/text/strings.h"

namespace {

bool less_without_case(std::string_view a, std::string_view b) {
  return std::ranges::lexicographical_compare(
      a, b, [](char x, char y) { return gx_upper_case(x) < gx_upper_case(y); });
}

}  // namespace

std::optional<std::string_view> kv_first_duplicate(std::span<const std::string_view> names) {
  std::vector<std::size_t> order(names.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(
      order, [&](std::size_t a, std::size_t b) { return less_without_case(names[a], names[b]); });
  // Equal names stand together, each group in the order of the table.
  auto first = names.size();
  for (std::size_t i = 1; i < order.size(); ++i) {
    if (gx_iden(names[order[i - 1]], names[order[i]])) first = std::min(first, order[i - 1]);
  }
  if (first == names.size()) return std::nullopt;
  return names[first];
}
