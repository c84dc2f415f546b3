// The string helpers of the library, and the date.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include "gx/text/date.h"
#include "kvi/state.h"

namespace {

constexpr std::int32_t longest = 199;  // characters of a string

std::string_view view(const kvi_string_record_t* string) {
  if (!string || !string->charp || string->len < 0) return {};
  return {string->charp, static_cast<std::size_t>(string->len)};
}
std::string_view view(const kvi_gx_string_t* string) {
  if (!string || string->len < 0) return {};
  const auto len = std::min<std::size_t>(static_cast<std::size_t>(string->len), longest);
  return {string->chars, len};
}
bool same_letters(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char c, char d) { return kvi_upper_case(c) == kvi_upper_case(d); });
}

}  // namespace

void kvi_set_string(kvi_string_record_t& string, std::string_view text) {
  kvi_copy_string(static_cast<std::int32_t>(text.size()), text.data(), &string);
}

void kvi_get_date(std::int16_t* day, std::int16_t* month, std::int16_t* year, std::int16_t* hour,
                  std::int16_t* minute) {
  const gx_date_t date = gx_get_date();
  *day = date.day;
  *month = date.month;
  *year = date.year;
  *hour = date.hour;
  *minute = date.minute;
}

std::int32_t kvi_equal_string(std::int32_t len1, const char* chars1, std::int32_t len2,
                              const char* chars2) {
  if (len1 < 0 || len1 > 200 || len1 != len2) return 0;
  if (len1 == 0) return 1;
  return chars1 && chars2 && std::memcmp(chars1, chars2, static_cast<std::size_t>(len1)) == 0;
}

char* kvi_writestr(std::int32_t len, const char* chars) {
  if (!chars) {
    kvi_debug(" !!! ERROR in KVI_WRITESTR : str_in.charp = NIL ");
    return nullptr;
  }
  if (len < 0) {
    kvi_debug((" !!! ERROR in KVI_WRITESTR : str_in.len < =" + std::to_string(len) + " ").c_str());
    return nullptr;
  }
  if (len > 200) {
    kvi_debug((" !!! ERROR in KVI_WRITESTR : str_in.len > gx_max_string_length:200(" +
               std::to_string(len) + ") ")
                  .c_str());
    len = longest;
  }
  const auto size = static_cast<std::size_t>(len);
  char* copy = static_cast<char*>(std::malloc(size + 1));
  if (!copy) return nullptr;
  std::memcpy(copy, chars, size);
  copy[size] = 0;
  return copy;
}

void kvi_copy_string(std::int32_t len, const char* chars, kvi_string_record_t* string) {
  if (!string->charp) string->charp = static_cast<char*>(std::malloc(KVI_STRING_SIZE));
  string->len = string->charp && chars && len > 0 ? std::min(len, longest) : 0;
  if (!string->charp) return;
  if (string->len > 0) std::memmove(string->charp, chars, static_cast<std::size_t>(string->len));
  string->charp[string->len] = 0;
}

void kvi_copy_const(const char* text, kvi_string_record_t* string) {
  kvi_set_string(*string, text ? std::string_view(text) : std::string_view());
}

void kvi_copy_string_kv_kvi(std::int32_t string_index, kvi_string_record_t* string) {
  kvi_set_string(*string, kvi_text(string_index));
}

void kvi_copy_string_kv_gx(std::int32_t string_index, kvi_gx_string_t* string) {
  const std::string_view text = kvi_text(string_index);
  string->len = static_cast<std::int32_t>(text.size());
  std::copy(text.begin(), text.end(), string->chars);
  string->chars[text.size()] = 0;
}

void kvi_coprec_gx_kvi(const kvi_gx_string_t* from, kvi_string_record_t* string) {
  kvi_set_string(*string, view(from));
}

void kvi_integer_to_string(std::int32_t value, kvi_string_record_t* string) {
  kvi_set_string(*string, std::to_string(value));
}

void kvi_real_to_string(float value, kvi_string_record_t* string) {
  if (value == 0) return kvi_set_string(*string, "0.0");
  const double size = std::fabs(static_cast<double>(value));
  double whole = std::trunc(size + 0.0001);
  double decimals = std::trunc(std::fabs(size - std::trunc(size + 0.0001)) * 100 + 0.5);
  if (decimals >= 100) {
    ++whole;
    decimals = 0;
  }
  char text[64];
  std::snprintf(text, sizeof text, "%s%.0f.%02.0f", value < 0 ? "-" : "", whole, decimals);
  kvi_set_string(*string, text);
}

std::int32_t kvistring_iden_gxstring(const kvi_string_record_t* string, const kvi_gx_string_t* gx) {
  return same_letters(view(string), view(gx));
}

std::int32_t gxstring_equal_kvistring(const kvi_gx_string_t* gx,
                                      const kvi_string_record_t* string) {
  return same_letters(view(gx), view(string).substr(0, view(gx).size()));
}

char kvi_upper_case(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

char kvi_findchar(const kvi_string_record_t* string, const char* set_of_chars, std::int32_t* pos) {
  const std::string_view text = view(string);
  if (*pos < 1) return 0;
  const auto at = text.find_first_not_of(set_of_chars, static_cast<std::size_t>(*pos - 1));
  if (at == std::string_view::npos) {
    *pos = std::max(*pos, static_cast<std::int32_t>(text.size()) + 1);
    return 0;
  }
  *pos = static_cast<std::int32_t>(at) + 1;
  return text[at];
}

std::int32_t kvi_rd_string_t(const kvi_string_record_t* string, const char* set_of_chars,
                             kvi_string_record_t* token, std::int32_t* pos) {
  const std::string_view text = view(string);
  if (*pos < 1 || *pos > 200 || static_cast<std::size_t>(*pos) > text.size()) {
    kvi_set_string(*token, {});
    return 0;
  }
  const char first = kvi_findchar(string, set_of_chars, pos);
  const auto start = static_cast<std::size_t>(*pos - 1);
  std::size_t end = text.find_first_of(set_of_chars, start);
  if ((first == '"' || first == '\'') && start + 1 < text.size()) {
    const auto quote = text.find(first, start + 1);
    end = quote == std::string_view::npos ? text.find_last_not_of(' ') + 1 : quote + 1;
  }
  end = std::min(end, text.size());
  kvi_set_string(*token, first == 0 ? std::string_view() : text.substr(start, end - start));
  *pos = static_cast<std::int32_t>(end) + 1;
  return 1;
}

std::int32_t kvi_get_arg(std::int32_t n, kvi_string_record_t* word) {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  const std::string words{std::istreambuf_iterator<char>(file), {}};
  std::size_t start = 0;
  for (std::int32_t i = 1; start < words.size(); ++i) {
    const std::size_t end = std::min(words.find('\0', start), words.size());
    if (i == n) {
      kvi_set_string(*word, std::string_view(words).substr(start, end - start));
      return 1;
    }
    start = end + 1;
  }
  kvi_set_string(*word, {});
  return 0;
}
