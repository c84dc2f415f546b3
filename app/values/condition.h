// A condition over the values of a device: "vds-vdsat<0.05", "region=2", "abs(id) > 1m".
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

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
