// What answers about values say, as data (app/language/answers.h).
#pragma once

#include <string_view>

#include "app/values/results_now.h"

// A value of a net, or of a device's parameter ("" for a net), at x; null: the file has none.
struct kv_value_record_t {
  std::string_view path, parameter, unit;
  const rs_value_t* value = nullptr;
};
void kv_record_value(const kv_results_t& results, double x, const kv_value_record_t& record);

// x as a record has it: not a number where the plot has no scale.
double kv_recorded_x(const kv_results_t& results, double x);
