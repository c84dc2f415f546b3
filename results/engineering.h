// Numbers as engineers write them: "1.8 V", "20n", "1meg".
#pragma once

#include <optional>
#include <string>
#include <string_view>

// The number with so many digits, trailing zeros left out, and a suffix for its power of a
// thousand; with a unit "11.4 mV", without one "11.4m" as simulators read it ("meg" for a million).
std::string rs_engineering(double number, int digits, std::string_view unit = {});

// A number as simulators read it: "20n", "1meg", "1.5e-9", "58ns", "0.7V"; letters in either case,
// further ones are a unit. Nothing for another text.
std::optional<double> rs_read_number(std::string_view text);
