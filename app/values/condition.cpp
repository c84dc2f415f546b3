#include "app/values/condition.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "gx/text/strings.h"
#include "results/engineering.h"
#include "results/names.h"
#include "results/overview.h"

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

// Calls `take` with each crossing between rows of the plot, from a row on, until it says false.
template <typename Take>
void each_crossing(const kv_results_t& results, const kv_crossing_t& crossing,
                   std::uint64_t first_row, Take take) {
  const rs_plot_t& plot = results.plot();
  if (first_row >= plot.nb_rows) return;
  const std::uint32_t both[] = {0, crossing.variable};
  const bool is_complex = plot.header.is_complex;
  const double sign = crossing.rises ? 1 : -1;
  rs_row_reader_t reader(results.file, plot, first_row, both);
  rs_value_t before[2], here[2];
  reader.next(before);
  for (std::uint64_t row = first_row + 1; row < plot.nb_rows; ++row) {
    reader.next(here);
    const double from = sign * (rs_shown(before[1], is_complex) - crossing.level);
    const double to = sign * (rs_shown(here[1], is_complex) - crossing.level);
    if (from < 0 && to >= 0) {
      const double part = from / (from - to);
      if (!take(before[0].re + part * (here[0].re - before[0].re))) return;
    }
    before[0] = here[0];
    before[1] = here[1];
  }
}

}  // namespace

// By recursive descent; brackets nest as deep as a command line is long at most.
class kv_condition_t::reader_t {
 public:
  reader_t(std::string_view text, kv_condition_t& condition) : text_(text), condition_(condition) {}

  bool read() {
    do {
      const std::size_t steps = condition_.steps_.size();
      if (!comparison()) return false;
      if (steps > 0) add(action_t::both);
    } while (take("&&") || take("&"));
    return at_ == text_.size() || fail("not understood");
  }
  std::string fault;

 private:
  bool fail(std::string_view what) {
    if (fault.empty()) {
      fault = std::string(what) + " : \"" + std::string(text_.substr(std::min(at_, text_.size()))) +
              "\"";
    }
    return false;
  }
  void add(action_t action) { condition_.steps_.push_back({action}); }
  void skip_blanks() {
    while (at_ < text_.size() && text_[at_] == ' ') ++at_;
  }
  bool take(std::string_view sign) {
    skip_blanks();
    if (!text_.substr(at_).starts_with(sign)) return false;
    at_ += sign.size();
    skip_blanks();
    return true;
  }

  bool comparison() {
    constexpr std::array<std::pair<std::string_view, action_t>, 7> signs{
        {{"<=", action_t::at_most},
         {">=", action_t::at_least},
         {"!=", action_t::different},
         {"==", action_t::equal},
         {"<", action_t::less},
         {">", action_t::greater},
         {"=", action_t::equal}}};
    if (!sum()) return false;
    for (const auto& [sign, action] : signs) {
      if (!take(sign)) continue;
      if (!sum()) return false;
      add(action);
      return true;
    }
    return fail("a comparison is wanted");
  }
  bool sum() {
    if (!product()) return false;
    for (;;) {
      if (take("+")) {
        if (!product()) return false;
        add(action_t::add);
      } else if (take("-")) {
        if (!product()) return false;
        add(action_t::subtract);
      } else {
        return true;
      }
    }
  }
  bool product() {
    if (!term()) return false;
    for (;;) {
      if (take("*")) {
        if (!term()) return false;
        add(action_t::multiply);
      } else if (take("/")) {
        if (!term()) return false;
        add(action_t::divide);
      } else {
        return true;
      }
    }
  }
  bool term() {
    if (take("-")) {
      if (!term()) return false;
      add(action_t::negate);
      return true;
    }
    if (take("(")) return sum() && (take(")") || fail("a \")\" is wanted"));
    skip_blanks();
    if (at_ == text_.size()) return fail("a value is wanted");
    if (is_digit(text_[at_]) || text_[at_] == '.') return number();
    return is_letter(text_[at_]) ? name() : fail("a value is wanted");
  }
  // With its exponent and its suffix.
  bool number() {
    std::size_t end = at_;
    while (end < text_.size() && (is_digit(text_[end]) || text_[end] == '.')) ++end;
    const bool has_exponent =
        end + 1 < text_.size() && (text_[end] | 0x20) == 'e' &&
        (is_digit(text_[end + 1]) || text_[end + 1] == '-' || text_[end + 1] == '+');
    if (has_exponent) {
      end += 2;
      while (end < text_.size() && is_digit(text_[end])) ++end;
    }
    while (end < text_.size() && is_letter(text_[end])) ++end;
    const auto number = rs_read_number(text_.substr(at_, end - at_));
    if (!number) return fail("no number");
    condition_.steps_.push_back({action_t::number, *number});
    at_ = end;
    return true;
  }
  bool name() {
    std::size_t end = at_;
    while (end < text_.size() && (is_letter(text_[end]) || is_digit(text_[end]))) ++end;
    const std::string_view word = text_.substr(at_, end - at_);
    at_ = end;
    if (gx_iden(word, "ABS") && take("(")) {
      if (!sum() || !(take(")") || fail("a \")\" is wanted"))) return false;
      add(action_t::absolute);
      return true;
    }
    const std::string parameter = rs_parameter_name(word);
    auto& parameters = condition_.parameters_;
    const auto known = std::ranges::find(parameters, parameter);
    condition_.steps_.push_back(
        {action_t::parameter, 0, static_cast<std::size_t>(known - parameters.begin())});
    if (known == parameters.end()) parameters.push_back(parameter);
    return true;
  }

  std::string_view text_;
  kv_condition_t& condition_;
  std::size_t at_ = 0;
};

bool kv_condition_t::read(std::string_view text, std::string& fault) {
  steps_.clear();
  parameters_.clear();
  reader_t reader(text, *this);
  if (!reader.read()) {
    fault = reader.fault;
    return false;
  }
  return true;
}

bool kv_condition_t::holds(const std::vector<double>& values) const {
  std::vector<double> stack;
  const auto two = [&stack](const auto& of) {
    const double right = stack.back();
    stack.pop_back();
    stack.back() = of(stack.back(), right);
  };
  const auto truth = [](bool is_true) { return is_true ? 1.0 : 0.0; };
  // What was calculated or written with few digits is seldom equal to the last bit.
  const auto is_equal = [](double a, double b) {
    return a == b || std::fabs(a - b) <= 1e-9 * std::max(std::fabs(a), std::fabs(b));
  };
  for (const step_t& step : steps_) {
    switch (step.action) {
      case action_t::number:
        stack.push_back(step.number);
        break;
      case action_t::parameter:
        stack.push_back(values[step.parameter]);
        break;
      case action_t::add:
        two([](double a, double b) { return a + b; });
        break;
      case action_t::subtract:
        two([](double a, double b) { return a - b; });
        break;
      case action_t::multiply:
        two([](double a, double b) { return a * b; });
        break;
      case action_t::divide:
        two([](double a, double b) { return a / b; });
        break;
      case action_t::negate:
        stack.back() = -stack.back();
        break;
      case action_t::absolute:
        stack.back() = std::fabs(stack.back());
        break;
      case action_t::less:
        two([&](double a, double b) { return truth(a < b); });
        break;
      case action_t::greater:
        two([&](double a, double b) { return truth(a > b); });
        break;
      case action_t::at_most:
        two([&](double a, double b) { return truth(a <= b); });
        break;
      case action_t::at_least:
        two([&](double a, double b) { return truth(a >= b); });
        break;
      case action_t::equal:
        two([&](double a, double b) { return truth(is_equal(a, b)); });
        break;
      case action_t::different:
        two([&](double a, double b) { return truth(a < b || a > b) * truth(!is_equal(a, b)); });
        break;
      case action_t::both:
        two([&](double a, double b) { return truth(a != 0 && b != 0); });
        break;
    }
  }
  return !stack.empty() && stack.back() != 0;
}

std::optional<double> kv_next_crossing(const kv_results_t& results, const kv_crossing_t& crossing) {
  std::optional<double> found;
  each_crossing(results, crossing, results.place.row, [&](double x) {
    if (x > results.x) found = x;
    return !found;
  });
  return found;
}

std::optional<double> kv_previous_crossing(const kv_results_t& results,
                                           const kv_crossing_t& crossing) {
  std::optional<double> found;
  each_crossing(results, crossing, 0, [&](double x) {
    if (x >= results.x) return false;
    found = x;
    return true;
  });
  return found;
}

double kv_middle_of(const kv_results_t& results, kv_variable_t variable) {
  rs_overview_t overview;
  overview.make(results.file, results.plot(), {&variable, 1});
  const rs_range_t range = overview.whole(0);
  return range.is_empty() ? 0 : (range.low + range.high) / 2;
}
