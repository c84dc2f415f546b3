#include "app/values/bits.h"

std::optional<std::uint64_t> kv_number_of_bits(const std::vector<rs_value_t>& values, bool falls,
                                               double low, double high) {
  if (values.size() > 64) return std::nullopt;
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const double part = (values[i].re - low) / (high - low);
    const bool is_high = part > 2.0 / 3;
    if (!is_high && !(part < 1.0 / 3)) return std::nullopt;
    const std::size_t place = falls ? values.size() - 1 - i : i;
    if (is_high) number |= std::uint64_t{1} << place;
  }
  return number;
}
