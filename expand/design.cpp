#include "expand/design.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "expand/debug.h"
#include "gx/text/strings.h"

namespace {

template <typename Design, typename Visit>
void each_array(Design& design, Visit visit) {
  const auto all = [&](auto&... array) { (visit(array), ...); };
  all(design.chars, design.strings, design.props, design.pins, design.insts, design.nets,
      design.net_childs, design.pinms, design.macros);
}

std::string upper_case(std::string_view name) {
  std::string upper(name);
  std::transform(upper.begin(), upper.end(), upper.begin(), gx_upper_case);
  return upper;
}

// Room for `len` characters (1..100), all in one block; `index` becomes that of the first. A string
// that would reach the last position of its block starts the next one; the rest of the block it
// leaves is zero, so that the same strings always give the same characters.
char* reserve_chars(kv_blocked_t<char>& chars, std::int32_t len, std::int32_t& index) {
  char* place = chars.add_in_block(len);
  if (place == nullptr) {
    const std::int32_t end = chars.count;  // from 0
    const std::int32_t start = std::max(end, (end + len) / kv_block_size * kv_block_size);
    if (len >= chars.limit() - start) throw chars.full(start + len);
    while (chars.count < start) chars.add();
    chars.reach();
    place = chars.add_in_block(len);
  }
  index = chars.count - len + 1;
  return place;
}

template <typename Fill>
std::int32_t save_prop(kv_design_t& design, kv_prop_type type, Fill fill) {
  kv_prop_record_t& record = design.props.add();
  record.prop_type = type;
  fill(record);
  return design.props.count;
}

}  // namespace

void kv_empty_design(kv_design_t& design) {
  if (!design.memory) design.memory = std::make_shared<kv_block_memory>();
  each_array(design, [&](auto& array) {
    array.share(design.memory);
    array.set_count(0);
  });
}

void kv_limit_design(kv_design_t& design, std::int32_t limit) {
  each_array(design, [limit](auto& array) { array.set_limit(limit); });
}

void kv_debug_full(const kv_store_full_t& full) {
  const std::string name(full.name);
  kv_debug(" KV_SAVE_%s  : error of max_%s_cur  : %d   %d\n", upper_case(name).c_str(),
           name.c_str(), full.index, full.limit);
}

void kv_bad_index(std::string_view name, std::int32_t index, std::int32_t count) {
  kv_debug(" KV_PTRTO_%s_REC  : error : index  : %d   max_%s_cur : %d\n", upper_case(name).c_str(),
           index, std::string(name).c_str(), count);
  kv_error_stop();
}

const char* kv_chars_of(const kv_design_t& design, std::int32_t string_index) {
  const kv_string_record_t& record = kv_record(design.strings, string_index);
  if (record.len == 0) return "";
  if (!design.chars.holds(record.index)) {
    kv_debug(" KV_PTRTO_CHARS  : error : index  : %d   max_char_cur : %d\n", record.index,
             design.chars.count);
    kv_error_stop();
  }
  return &design.chars[record.index];
}

std::string_view kv_text(const kv_design_t& design, std::int32_t string_index) {
  if (string_index == 0) return {};
  return {kv_chars_of(design, string_index),
          static_cast<std::size_t>(kv_record(design.strings, string_index).len)};
}

std::int32_t kv_save_string(kv_design_t& design, std::string_view text) {
  if (text.size() > kv_max_string) {
    kv_debug(" KV_SAVE_STRING  : error of string length  : %d   \"%.*s\"\n",
             static_cast<int>(text.size()), kv_max_string, text.data());
    std::printf("!! A name or path is too long ( %d > %d ) : \"%.*s\"\n",
                static_cast<int>(text.size()), kv_max_string, kv_max_string, text.data());
    kv_error_stop();
  }
  kv_string_record_t& record = design.strings.add();
  record.len = static_cast<std::int8_t>(text.size());
  if (text.empty()) {
    record.index = design.chars.count;
  } else {
    std::memcpy(reserve_chars(design.chars, record.len, record.index), text.data(), text.size());
  }
  return design.strings.count;
}

std::int32_t kv_save_prop_str(kv_design_t& design, std::string_view text) {
  const std::int32_t value = kv_save_string(design, text);
  return save_prop(design, kv_prop_string, [=](kv_prop_record_t& prop) { prop.valuec = value; });
}

std::int32_t kv_save_prop_int(kv_design_t& design, std::int32_t v1, std::int32_t v2,
                              std::int32_t v3) {
  return save_prop(design, kv_prop_int, [=](kv_prop_record_t& prop) {
    prop.valuei[0] = static_cast<std::int16_t>(v1);
    prop.valuei[1] = static_cast<std::int16_t>(v2);
    prop.valuei[2] = static_cast<std::int16_t>(v3);
  });
}

std::int32_t kv_save_prop_time(kv_design_t& design, std::int32_t v1, std::int32_t v2,
                               std::int32_t v3) {
  return save_prop(design, kv_prop_time, [=](kv_prop_record_t& prop) {
    prop.valuet[0] = v1;
    prop.valuet[1] = v2;
    prop.valuet[2] = v3;
  });
}

std::int32_t kv_save_prop_real(kv_design_t& design, float v1, float v2, float v3) {
  return save_prop(design, kv_prop_real, [=](kv_prop_record_t& prop) {
    prop.valuer[0] = v1;
    prop.valuer[1] = v2;
    prop.valuer[2] = v3;
  });
}
