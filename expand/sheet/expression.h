// Arithmetic in the text of a property: numbers, the parameters of the PARAMeter list and, where a
// macro's sheet is being flattened, the kept properties of that macro.
#pragma once

#include <string_view>

#include "expand/setup.h"
#include "expand/sheet/values.h"

kv_values_t<float> kv_conv_complex_expr(std::string_view text, const kv_scope_t& scope);
kv_values_t<float> kv_find_parameter_value(std::string_view name, const kv_setup_t& setup);
kv_values_t<float> kv_find_property_inst_value(std::string_view name, const kv_scope_t& scope);
