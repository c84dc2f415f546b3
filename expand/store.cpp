// The writers of the expanded store and its fatal stop. Looking records up is in store_access.cpp.
#include "expand/store.h"

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <string>

#include "expand/debug.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"

namespace {

// Room for `len` characters (1..100), all in one block; `index` becomes that of the first. A string
// that would reach the last position of its block starts the next one; the rest of the block it
// leaves is zero, so that the same strings always give the same characters.
char* reserve_chars(std::int32_t len, std::int32_t& index) {
  auto& chars = kv_sext.chars;
  std::int32_t start = chars.count;  // from 0
  const std::int32_t end = start + len;
  const std::int32_t block = end / kv_block_size;
  if (end > kv_max_records || block >= kv_blocks) kv_array_full("char", end);
  auto& storage = chars.blocks[static_cast<std::size_t>(block)];
  const std::int32_t block_start = block * kv_block_size;
  if (start < block_start || start == 0) {
    if (start > 0) {
      auto& left = chars.blocks[static_cast<std::size_t>(block - 1)];
      std::fill(left.get() + (start - (block_start - kv_block_size)), left.get() + kv_block_size,
                '\0');
    }
    if (!storage) storage = std::make_unique<char[]>(kv_block_size);
    start = block_start;
  }
  chars.count = start + len;
  index = start + 1;
  return storage.get() + (start - block_start);
}

template <typename Fill>
std::int32_t save_prop(kv_prop_type type, Fill fill) {
  kv_prop_record_t& record = kv_sext.props.add("prop");
  record.prop_type = type;
  fill(record);
  return kv_sext.props.count;
}

}  // namespace

void kv_debug(const char* format, ...) {
  if (!kv_debf) return;
  std::va_list args;
  va_start(args, format);
  std::vfprintf(kv_debf, format, args);
  va_end(args);
}

void kv_array_full(std::string_view name, std::int32_t index) {
  std::string upper(name);
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  const std::string lower(name);
  kv_debug(" KV_SAVE_%s  : error of max_%s_cur  : %d   %d\n", upper.c_str(), lower.c_str(), index,
           kv_max_records);
  if (kv_sext.run_goes_on) throw kv_store_full_t{name};
  std::printf("!! The design is too large : more than %d records of the kind '%s'\n",
              kv_max_records, lower.c_str());
  kv_error_stop();
}

void kv_error_stop() {
  kv_debug(" KV_ERROR_STOP  \n");
  if (kv_sext.gx_graphics_used) {
    gx_debug_line(" KV_ERROR_STOP  ");
    gx_release_all();
  }
  std::printf("!!! KV_ERROR_STOP  \n");
  std::fflush(nullptr);
  std::_Exit(EXIT_FAILURE);
}

void kv_empty_store() {
  kv_sext.chars.count = 0;
  kv_sext.strings.count = 0;
  kv_sext.props.count = 0;
  kv_sext.pins.count = 0;
  kv_sext.insts.count = 0;
  kv_sext.nets.count = 0;
  kv_sext.net_childs.count = 0;
  kv_sext.pinms.count = 0;
  kv_sext.macros.count = 0;
}

std::int32_t kv_save_string(std::string_view text) {
  if (text.size() > kv_max_string) {
    kv_debug(" KV_SAVE_STRING  : error of string length  : %d   \"%.*s\"\n",
             static_cast<int>(text.size()), kv_max_string, text.data());
    std::printf("!! A name or path is too long ( %d > %d ) : \"%.*s\"\n",
                static_cast<int>(text.size()), kv_max_string, kv_max_string, text.data());
    kv_error_stop();
  }
  kv_string_record_t& record = kv_sext.strings.add("string");
  record.len = static_cast<std::int8_t>(text.size());
  if (text.empty()) {
    record.index = kv_sext.chars.count;
  } else {
    std::memcpy(reserve_chars(record.len, record.index), text.data(), text.size());
  }
  return kv_sext.strings.count;
}

std::int32_t kv_save_prop_str(std::string_view text) {
  const std::int32_t value = kv_save_string(text);
  return save_prop(kv_prop_string, [value](kv_prop_record_t& prop) { prop.valuec = value; });
}

std::int32_t kv_save_prop_int(std::int32_t v1, std::int32_t v2, std::int32_t v3) {
  return save_prop(kv_prop_int, [=](kv_prop_record_t& prop) {
    prop.valuei[0] = static_cast<std::int16_t>(v1);
    prop.valuei[1] = static_cast<std::int16_t>(v2);
    prop.valuei[2] = static_cast<std::int16_t>(v3);
  });
}

std::int32_t kv_save_prop_time(std::int32_t v1, std::int32_t v2, std::int32_t v3) {
  return save_prop(kv_prop_time, [=](kv_prop_record_t& prop) {
    prop.valuet[0] = v1;
    prop.valuet[1] = v2;
    prop.valuet[2] = v3;
  });
}

std::int32_t kv_save_prop_real(float v1, float v2, float v3) {
  return save_prop(kv_prop_real, [=](kv_prop_record_t& prop) {
    prop.valuer[0] = v1;
    prop.valuer[1] = v2;
    prop.valuer[2] = v3;
  });
}
