// Keeps texts and values of properties in a sheet's records.
#include "expand/sheet/sheet_texts.h"

#include "expand/debug.h"
#include "expand/sheet/values.h"
#include "gx/text/kept_text.h"
#include "gx/text/strings.h"

namespace {

constinit const kv_design_t no_design;  // of values that are the same everywhere

kv_prop_type type_of_letter(std::string_view prop_type) {
  switch (prop_type.empty() ? ' ' : gx_upper_case(prop_type.front())) {
    case 'I':
      return kv_prop_int;
    case 'T':
      return kv_prop_time;
    case 'R':
      return kv_prop_real;
    case 'S':
      return kv_prop_string;
    default:
      kv_debug(" KV_SAVE_PROP  : error : type of property invalid\n");
      kv_error_stop();
  }
}

}  // namespace

kv_text_t kv_keep_text(kv_sheet_t& sheet, std::initializer_list<std::string_view> parts) {
  kv_text_t piece{static_cast<std::int32_t>(sheet.text.size()), 0};
  for (const auto part : parts) sheet.text += part;
  piece.len = static_cast<std::int32_t>(sheet.text.size()) - piece.at;
  return piece;
}

kv_text_t kv_keep_suffix(kv_sheet_t& sheet, std::string_view name, std::string_view prefix,
                         int id) {
  return name.empty() ? kv_keep_text(sheet, {"/", prefix, std::to_string(id)})
                      : kv_keep_text(sheet, {"/", name});
}

void kv_keep_property(kv_sheet_t& sheet, const kv_setup_t& setup,
                      const kv_prop_type_record_t& entry, std::string_view value) {
  kv_kept_t kept;
  const std::string plain = gx_has_signs(value) ? gx_plain_text(value) : std::string();
  const std::string_view text = plain.empty() ? value : plain;
  kept.type = type_of_letter(gx_view(entry.prop_type));
  kept.text = kv_keep_text(sheet, {text});
  kept.decode_at_visit = kept.type != kv_prop_string && kv_depends_on_macro(text, setup);
  if (!kept.decode_at_visit) kv_decode_kept(kept, text, {setup, no_design, 1, 0});
  sheet.kept.push_back(kept);
}

kv_init_t kv_keep_init(kv_sheet_t& sheet, const gx_object_property_rec_t* property) {
  kv_init_t init;
  if (property == nullptr) return init;
  const std::string_view text = gx_view(property->nvalue);
  const kv_state_t state = kv_statechar_state(text);
  init.what = state.error_found ? kv_init_t::invalid : kv_init_t::valid;
  init.state = state.state;
  init.fixed = state.fixed;
  init.text = kv_keep_text(sheet, {text});
  return init;
}

void kv_decode_kept(kv_kept_t& kept, std::string_view text, const kv_scope_t& scope) {
  const auto take = [&](auto& target, const auto& values) {
    target[0] = values.value1;
    target[1] = values.value2;
    target[2] = values.value3;
    kept.error = values.error_found;
  };
  switch (kept.type) {
    case kv_prop_int:
      take(kept.number, kv_decode_3_valuei(text, scope));
      break;
    case kv_prop_time:
      take(kept.number, kv_decode_3_valuet(text, scope));
      break;
    case kv_prop_real:
      take(kept.real, kv_decode_3_valuer(text, scope));
      break;
    case kv_prop_string:
      break;
  }
}
