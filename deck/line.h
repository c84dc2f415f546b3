// A line of a deck with places for what differs from one use to the next.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "deck/expression.h"

struct dk_piece_t {
  enum class kind_t : std::uint8_t {
    text,        // as it is
    pin,         // the node of pin number `pin`, from 1
    device,      // a device of the sheet by its name, if there is one
    parameter,   // a word that may be the name of a parameter
    expression,  // names of parameters, "v(x)", "i(x)" in it
  };
  kind_t kind = kind_t::text;
  std::string text{};
  int pin = 0;
  char quote = '\0';  // of an expression: ', " or {
  std::string of{};   // the parameter whose value it is, in "name=value"
};

struct dk_line_t {
  std::string name{};                // of the element, its first letter that of the device
  std::vector<dk_piece_t> pieces{};  // what follows
  std::vector<std::string> given{};  // the parameters that it sets
  bool is_command() const { return name.starts_with('.'); }
};

std::vector<dk_line_t> dk_compile(std::string_view lines);

// Appends a piece of text with what stands for its names. Expressions that are left without a name
// are worked out.
void dk_put(const dk_piece_t& piece, const dk_names_t& names, std::string& out);

// The value of "name=value" in an expression: worked out as far as can be, without quotes.
std::string dk_value(std::string_view text, const dk_names_t& names);
