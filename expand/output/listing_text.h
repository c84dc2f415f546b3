// Text on its way to a large listing file: appended to a buffer without formatted printing.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string_view>

class kv_listing_text_t {
 public:
  // Does not own the stream.
  explicit kv_listing_text_t(std::FILE* file);

  // Texts and labels are short: 4096 characters at most.
  void text(std::string_view chars);
  void rule(char c, int n);                                               // n copies and a line end
  void integer(std::string_view label, std::int64_t value);               // "%d\n" after the label
  void integers(std::string_view label, std::int64_t a, std::int64_t b);  // "%d  %d\n"
  void real(std::string_view label, float value);               // "%10.3f\n" after the label
  void quoted(std::string_view label, std::string_view value);  // in double quotes, and a line end

  // Writes what is left; false when some text could not be written.
  bool finish();

 private:
  char* room(std::size_t n);  // room for n more characters
  void flush();

  std::FILE* file_;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
  bool ok_ = true;
};
