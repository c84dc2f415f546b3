// From the text of a kept property to the three numbers the store holds.
#pragma once

#include <cstdint>
#include <string_view>

#include "expand/design.h"
#include "expand/setup.h"

// first, second (middle) and third value
template <typename Number>
struct kv_values_t {
  Number value1 = 0, value2 = 0, value3 = 0;
  bool error_found = false;
  int num_values = 0;
};

// What an expression may refer to: the PARAMeter list, and the kept properties of the macro whose
// sheet is being flattened.
struct kv_scope_t {
  const kv_setup_t& setup;
  const kv_design_t& design;
  std::int16_t expand_level = 1;  // 1 = top sheet: no macro
  std::int32_t macro_level = 0;   // macro index
};

kv_values_t<std::int32_t> kv_decode_3_valuei(std::string_view text, const kv_scope_t& scope);
kv_values_t<std::int32_t> kv_decode_3_valuet(std::string_view text, const kv_scope_t& scope);
kv_values_t<float> kv_decode_3_valuer(std::string_view text, const kv_scope_t& scope);

// A value that depends on the enclosing macro (an expression with a name that is no parameter)
// must be decoded at each visit; any other gives the same values everywhere in a run.
bool kv_depends_on_macro(std::string_view text, const kv_setup_t& setup);

struct kv_state_t {
  std::int8_t state = 0;  // 4 * strength + level, 0..19
  bool fixed = false;
  bool error_found = false;
};
kv_state_t kv_statechar_state(std::string_view word);
