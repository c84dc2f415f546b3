// A condition over the values of a device: "vds-vdsat<0.05", "region=2", "abs(id) > 1m".
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/values/results_now.h"

// Numbers as simulators write them, parameters by name, + - * / and brackets, abs(...); one of
// < > <= >= = != between two of them, parts joined by "&".
class kv_condition_t {
 public:
  // False when the text is no condition; `fault` then says what is wrong where.
  bool read(std::string_view text, std::string& fault);

  // The parameters it asks for, in small letters.
  const std::vector<std::string>& parameters() const { return parameters_; }
  // Whether it holds; `values` are those of the parameters, in their order. Never for a value that
  // is no number.
  bool holds(const std::vector<double>& values) const;

 private:
  // What a stack machine does, one after another.
  enum class action_t : char {
    number,
    parameter,
    add,
    subtract,
    multiply,
    divide,
    negate,
    absolute,
    less,
    greater,
    at_most,
    at_least,
    equal,
    different,
    both
  };
  struct step_t {
    action_t action = action_t::number;
    double number = 0;
    std::size_t parameter = 0;
  };
  class reader_t;

  std::vector<step_t> steps_;
  std::vector<std::string> parameters_;
};

// --- where a value crosses a level
struct kv_crossing_t {
  kv_variable_t variable = 0;
  bool rises = true;
  double level = 0;
};
// The x of the next crossing after that of the results, or of the last one before it.
std::optional<double> kv_next_crossing(const kv_results_t& results, const kv_crossing_t& crossing);
std::optional<double> kv_previous_crossing(const kv_results_t& results,
                                           const kv_crossing_t& crossing);

// The middle between the least and the greatest value over the plot, which is read once.
double kv_middle_of(const kv_results_t& results, kv_variable_t variable);
