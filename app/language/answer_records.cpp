#include "app/language/answer_records.h"

#include "expand/messages.h"

namespace {
kv_record_taker_t take = nullptr;

void take_message(const kv_told_t& told) {
  const auto& row = kv_row_of(told.code);
  kv_record("message", {{"code", row.name},
                        {"kind", kv_message_kind_name(row.kind)},
                        {"path", told.path},
                        {"values", told.values}});
}
}  // namespace

void kv_record(std::string_view type, std::initializer_list<kv_named_value_t> fields) {
  if (take != nullptr) take(type, {fields.begin(), fields.size()});
}

void kv_set_record_taker(kv_record_taker_t taker) {
  take = taker;
  kv_set_message_reader(taker == nullptr ? nullptr : take_message);
}
