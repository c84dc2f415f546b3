// Comparisons of the text records; none of them stops the program.
#include "gx/text/string_compare.h"

#include <algorithm>

#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"

namespace {
// A side of a comparison; a length that no text has makes every comparison false.
struct side_t {
  std::string_view text;
  std::int32_t len;
};

template <typename Record>
side_t side(const Record& record) {
  return {gx_view(record), record.len};
}
side_t side(std::string_view text) {
  return {text, static_cast<std::int32_t>(std::min(text.size(), std::size_t{INT32_MAX}))};
}

bool same_characters(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(),
                    [](char x, char y) { return gx_upper_case(x) == gx_upper_case(y); });
}

bool sound(const side_t& s) {
  return s.len >= 0 && s.len <= gx_max_string_length &&
         s.len == static_cast<std::int32_t>(s.text.size());
}

bool both_sound(const char* operation, const side_t& a, const side_t& b) {
  if (sound(a) && sound(b)) return true;
  const std::string_view head_a = a.text.substr(0, 10), head_b = b.text.substr(0, 10);
  gx_trace("!!! error in ", operation, " \n len : ", a.len, "  \"", head_a, "\"  len : ", b.len,
           "  \"", head_b, "\"");
  return false;
}

bool iden(const char* operation, const side_t& a, const side_t& b) {
  return both_sound(operation, a, b) && a.len == b.len && same_characters(a.text, b.text);
}

bool equal(const char* operation, const side_t& head, const side_t& text) {
  return both_sound(operation, head, text) && head.len <= text.len &&
         same_characters(head.text, text.text.substr(0, head.text.size()));
}
}  // namespace

char gx_upper_case(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

std::string gx_upper(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), gx_upper_case);
  return result;
}

bool gx_is_blank(std::string_view text) {
  return text.find_first_not_of(' ') == std::string_view::npos;
}

bool gx_iden(std::string_view a, std::string_view b) {
  return a.size() == b.size() && same_characters(a, b);
}
bool gx_equal(std::string_view head, std::string_view text) {
  return head.size() <= text.size() && same_characters(head, text.substr(0, head.size()));
}

bool gx_string_iden_string(const gx_string_record_t& a, const gx_string_record_t& b) {
  return iden("gx_string_iden_string", side(a), side(b));
}
bool gx_const_iden_string(std::string_view text, const gx_string_record_t& string) {
  return iden("gx_const_iden_string", side(text), side(string));
}
bool gx_iden_string(std::string_view chars, const gx_string_record_t& string) {
  return iden("gx_iden_string", side(chars), side(string));
}
bool gx_name_iden_string(const gx_name_record_t& name, const gx_string_record_t& string) {
  return iden("gx_name_iden_string", side(name), side(string));
}
bool gx_name_iden_name(const gx_name_record_t& a, const gx_name_record_t& b) {
  return iden("gx_name_iden_name", side(a), side(b));
}
bool gx_const_iden_name(std::string_view text, const gx_name_record_t& name) {
  return iden("gx_const_iden_name", side(text), side(name));
}
bool gx_value_iden_value(const gx_value_record_t& a, const gx_value_record_t& b) {
  return iden("gx_value_iden_value", side(a), side(b));
}
bool gx_const_iden_value(std::string_view text, const gx_value_record_t& value) {
  return iden("gx_const_iden_value", side(text), side(value));
}
bool gx_const_equal_string(std::string_view text, const gx_string_record_t& string) {
  return equal("gx_const_equal_string", side(text), side(string));
}
bool gx_equal_string(std::string_view chars, const gx_string_record_t& string) {
  return equal("gx_equal_string", side(chars), side(string));
}
bool gx_name_equal_string(const gx_name_record_t& name, const gx_string_record_t& string) {
  return equal("gx_name_equal_string", side(name), side(string));
}
bool gx_string_equal_name(const gx_string_record_t& string, const gx_name_record_t& name) {
  return equal("gx_string_equal_name", side(string), side(name));
}
bool gx_value_equal_string(const gx_value_record_t& value, const gx_string_record_t& string) {
  return equal("gx_value_equal_string", side(value), side(string));
}
bool gx_string_equal_value(const gx_string_record_t& string, const gx_value_record_t& value) {
  return equal("gx_string_equal_value", side(string), side(value));
}

bool gx_is_less_than(const gx_string_record_t& a, const gx_string_record_t& b) {
  const std::string_view x = gx_view(a), y = gx_view(b);
  return std::lexicographical_compare(x.begin(), x.end(), y.begin(), y.end(), [](char p, char q) {
    return static_cast<unsigned char>(gx_upper_case(p)) <
           static_cast<unsigned char>(gx_upper_case(q));
  });
}

std::int32_t gx_length(const char* text) {
  std::int32_t len = 0;
  while (len <= gx_max_string_length && text[len] != 0) ++len;
  if (len <= gx_max_string_length) return len;
  gx_debug(" !!! error in  gx_length : > max :%d \n \"%.10s\" \n", len, text);
  gx_set_status(gx_code::invalid_string);
}
