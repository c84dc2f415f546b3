// The status bits of the expanded records.
#include "expand/run/record_status.h"

namespace {

std::int16_t* status_of(std::int32_t index, kv_record_kind kind) {
  switch (kind) {
    case kv_record_kind::inst:
      return &kv_ptrto_inst_rec(index).status;
    case kv_record_kind::pin:
      return &kv_ptrto_pin_rec(index).status;
    case kv_record_kind::net:
      return &kv_ptrto_net_rec(index).status;
  }
  return nullptr;
}

}  // namespace

bool kv_inq_record_flag(std::int32_t index, kv_record_kind kind, kv_record_flag flag) {
  const auto* bits = status_of(index, kind);
  return bits != nullptr && (*bits & flag) != 0;
}

void kv_set_record_flag(std::int32_t index, kv_record_kind kind, kv_record_flag flag, bool on) {
  auto* bits = status_of(index, kind);
  if (bits == nullptr) return;
  *bits = static_cast<std::int16_t>(on ? *bits | flag : *bits & ~flag);
}
