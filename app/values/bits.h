// The bits of a bus as a number.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "results/raw_file.h"

// Of the values from the first bit of a bus to its last; the bit of the least index is the last one
// of the number, so of a bus that falls ([7:0]) the first value is the first digit. A value in the
// lower third from `low` to `high` is 0, one in the upper third 1; nothing when there is another,
// and for more than 64 bits.
std::optional<std::uint64_t> kv_number_of_bits(const std::vector<rs_value_t>& values, bool falls,
                                               double low, double high);
