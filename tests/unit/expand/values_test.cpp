#include "expand/sheet/values.h"

#include <string>

#include "expand/sheet/expression.h"
#include "expand/store.h"
#include "gx/text/strings.h"
#include "tests/support/session_case.h"

namespace {

const kv_scope_t top{kv_sext, kv_sext, 1, 0};
const kv_scope_t in_macro{kv_sext, kv_sext, 2, 1};

template <typename Number>
std::string shown(const kv_values_t<Number>& values) {
  char text[100];
  std::snprintf(text, sizeof text, "%g %g %g%s", static_cast<double>(values.value1),
                static_cast<double>(values.value2), static_cast<double>(values.value3),
                values.error_found ? " error" : "");
  return text;
}

// Parameters R1 = 1, 2, 3, Zero = 1, 0, 1 and W = 7; macro 1 keeps W = 5 (integer), T = 2, 3, 4
// steps (time), L = 1.5 (real) and S (string).
class values_session {
 public:
  explicit values_session(std::string_view = "") {
    kv_sext = kv_defref_exp_rec_t{};
    const auto parameter = [](std::string_view name, float a, float b, float c) {
      kv_sext.parameter.entry[static_cast<std::size_t>(kv_sext.parameter.count++)] = {
          gx_string(name), {a, b, c}};
    };
    parameter("R1", 1, 2, 3);
    parameter("Zero", 1, 0, 1);
    parameter("W", 7, 7, 7);
    for (std::string_view name : {"P", "T", "L", "S", "W"}) {
      auto& list = kv_sext.property_instance;
      list.entry[static_cast<std::size_t>(list.count++)].name = gx_string(name);
    }
    kv_sext.time_step = 0.5F;
    const std::int32_t first = kv_save_prop_int(5, 5, 5);
    kv_save_prop_time(2, 3, 4);
    kv_save_prop_real(1.5F, 1.5F, 1.5F);
    kv_save_prop_str("text");
    kv_save_prop_int(9, 9, 9);
    kv_sext.macros.append(1);
    kv_ptrto_macro_rec(1).first_prop = first;
    kv_ptrto_macro_rec(1).nb_of_property = 5;
  }
  ~values_session() { kv_sext = kv_defref_exp_rec_t{}; }
  // "KIND TEXT": the three values; of an integer how many there are, too.
  static lines_t answer(const std::string& line) {
    const auto blank = std::min(line.find(' '), line.size());
    const std::string kind = line.substr(0, blank);
    std::string text = line.substr(std::min(blank + 1, line.size()));
    if (kind == "int") {
      const auto values = kv_decode_3_valuei(text, top);
      return {shown(values) + " of " + std::to_string(values.num_values)};
    }
    if (kind == "real") return {shown(kv_decode_3_valuer(text, top))};
    if (kind == "macro") return {shown(kv_decode_3_valuer(text, in_macro))};
    if (kind == "expression") return {shown(kv_conv_complex_expr(text, top))};
    if (kind == "depends") return {kv_depends_on_macro(text, kv_sext) ? "yes" : "no"};
    if (kind == "time") {  // "STEP:TEXT"
      kv_sext.time_step = std::stof(text);
      return {shown(kv_decode_3_valuet(text.substr(text.find(':') + 1), top))};
    }
    const kv_state_t state = kv_statechar_state(text);
    if (state.error_found) return {"error"};
    return {std::to_string(state.state) + (state.fixed ? " fixed" : "")};
  }
};

TEST(PropertyValues, AreThoseOfTheirTexts) {
  expect_sessions<values_session>("values/expressions.txt");
}

TEST(PropertyValues, AMacroOutsideTheStoreEndsTheProgram) {
  const values_session session;
  EXPECT_EXIT(kv_decode_3_valuer("(P)", (kv_scope_t{kv_sext, kv_sext, 2, 2})),
              ::testing::ExitedWithCode(EXIT_FAILURE), "");
}

}  // namespace
