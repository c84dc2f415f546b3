#include "app/values/value_records.h"

#include <limits>

#include "app/language/answers.h"

namespace {
constexpr double none = std::numeric_limits<double>::quiet_NaN();
}  // namespace

double kv_recorded_x(const kv_results_t& results, double x) {
  return results.plot().has_scale ? x : none;
}

void kv_record_value(const kv_results_t& results, double x, const kv_value_record_t& record) {
  const rs_value_t value = record.value != nullptr ? *record.value : rs_value_t{none, none};
  const double at = kv_recorded_x(results, x);
  if (results.plot().header.is_complex) {
    kv_record("value", {{"path", record.path},
                        {"parameter", record.parameter},
                        {"value", value.re},
                        {"imaginary", value.im},
                        {"unit", record.unit},
                        {"at", at}});
  } else {
    kv_record("value", {{"path", record.path},
                        {"parameter", record.parameter},
                        {"value", value.re},
                        {"unit", record.unit},
                        {"at", at}});
  }
}
