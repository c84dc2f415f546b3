#include "app/find/aside.h"

#include "app/state.h"
#include "expand/messages.h"
#include "expand/run/run.h"
#include "gx/text/strings.h"

namespace {

void fill_list(kv_prop_list_t& list, std::string_view name) {
  if (list.count > 0) return;
  list.entry[0] = {gx_string(name), gx_string("S")};
  list.count = 1;
}

}  // namespace

void kv_keep_something(kv_setup_t& setup) {
  fill_list(setup.property_instance, "INST");
  fill_list(setup.property_pin, "PIN");
  fill_list(setup.property_net, "NET");
}

std::unique_ptr<kv_expansion_aside_t> kv_expand_aside(std::string& fault) {
  auto aside = std::make_unique<kv_expansion_aside_t>();
  aside->setup = kv_sext;
  kv_keep_something(aside->setup);
  if (aside->setup.primitive.count == 0) {
    aside->setup.primitive.entry[0].name = gx_string("CLASS");
    aside->setup.primitive.count = 1;
  }
  std::string first_error;
  const kv_message_catcher catcher([&](const kv_told_t& told) {
    const kv_message_kind kind = kv_row_of(told.code).kind;
    const bool is_error = kind == kv_message_kind::error || kind == kv_message_kind::refusal;
    if (first_error.empty() && is_error) first_error = kv_words_of(told);
  });
  std::int16_t level = 0;
  std::int32_t macro = 0;
  const kv_run_t run{.setup = aside->setup,
                     .design = aside->design,
                     .sheets = kv_pext.arrayof_file,
                     .expand_level = level,
                     .macro_level = macro,
                     .to_the_end = true,
                     .origins = &aside->origins};
  if (kv_expand(run) != kv_run_result::done) {
    fault = first_error.empty() ? "the design cannot be expanded" : first_error;
    return nullptr;
  }
  aside->paths = std::make_unique<const kv_memory_paths_t>(kv_memory_netlist_t(aside->design));
  return aside;
}
