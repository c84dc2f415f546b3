// References to positional arguments and variables in a command: $ARG1..$ARG30, $VAR1..$VAR30.
#pragma once

#include <array>
#include <string_view>

#include "gx/text/records.h"

// The values of $ARG1..$ARG30 or $VAR1..$VAR30; an empty entry has length 0.
using kv_array_param_t = std::array<gx_string_record_t, 30>;

struct kv_substitution_t {
  gx_string_record_t text;
  bool valid = true;  // false: a number outside 1..30 stopped the scan; the rest is as it was
};

// Replaces every `letters` ("$ARG" or "$VAR", either case) with one or two digits by the value of
// that number. A value is not scanned again; the text is cut at 199 characters.
kv_substitution_t kv_substitute(const gx_string_record_t& text, std::string_view letters,
                                const kv_array_param_t& values);

// What a word says that should name a variable as a target.
enum class kv_target { not_a_variable, no_digit, other_shape, out_of_range, variable };
struct kv_target_t {
  kv_target kind = kv_target::not_a_variable;
  int number = 0;  // 1..30 of a variable
};
kv_target_t kv_variable_target(std::string_view word);
