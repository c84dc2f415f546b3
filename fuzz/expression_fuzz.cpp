// Lines of any bytes as values of kept properties, on the top sheet and in a macro.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

#include "expand/sheet/expression.h"
#include "expand/sheet/values.h"
#include "fuzz/session.h"

namespace {

constexpr std::size_t longest = 96;  // a property's value

void decode(std::string_view text, const kv_scope_t& scope) {
  kv_decode_3_valuei(text, scope);
  kv_decode_3_valuet(text, scope);
  kv_decode_3_valuer(text, scope);
  const auto values = kv_conv_complex_expr(text, scope);
  if (!values.error_found)
    for (const float value : {values.value1, values.value2, values.value3})
      fuzz_expect(!std::isnan(value));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz_prepare(build_design("sheet top\n page 20,20\n"));
  fuzz_start();
  for (const auto* line : {"PARAM R1 1 2 3", "PARAM Zero 1 0 1", "PARAM W 7"}) fuzz_run(line);
  auto& list = kv_sext.property_instance;
  for (const auto* name : {"P", "T", "L", "S"})
    list.entry[static_cast<std::size_t>(list.count++)].name = gx_string(name);
  kv_sext.time_step = 0.5F;
  const std::int32_t first = kv_save_prop_int(5, 5, 5);
  kv_save_prop_time(2, 3, 4);
  kv_save_prop_real(1.5F, 0, -1.5F);
  kv_save_prop_str("text");
  kv_sext.macros.append(1);
  kv_ptrto_macro_rec(1).first_prop = first;
  kv_ptrto_macro_rec(1).nb_of_property = 4;
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const kv_scope_t top{kv_sext, kv_sext, 1, 0}, in_macro{kv_sext, kv_sext, 2, 1};
  std::string text(reinterpret_cast<const char*>(data), size);
  for (char& c : text)
    if (c != '\n' && (c < 32 || c > 126)) c = ' ';
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view line = rest.substr(0, std::min(rest.find('\n'), longest));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    decode(line, top);
    decode(line, in_macro);
    kv_depends_on_macro(line, kv_sext);
    kv_statechar_state(line);
  }
  return 0;
}
