// The debug trace of the package. Lines go to gx_session.debugfile; while none is open they are
// lost.
#pragma once

#include <charconv>
#include <concepts>
#include <initializer_list>
#include <string_view>

// printf into the debug file.
[[gnu::format(printf, 1, 2)]] void gx_debug(const char* format, ...);

// The text followed by a line end.
void gx_debug_line(std::string_view text);

// The parts joined, texts and integers, as one line: gx_trace("net_id invalid !! :", id).
class gx_trace_part {
 public:
  template <typename Text>
  requires std::convertible_to<const Text&, std::string_view> gx_trace_part(const Text& text)
      : text_(text) {}
  template <std::integral Number>
  gx_trace_part(Number number) {
    text_ = {digits_, std::to_chars(digits_, digits_ + sizeof digits_, number).ptr};
  }
  gx_trace_part(const gx_trace_part&) = delete;  // the text may lie in it
  gx_trace_part& operator=(const gx_trace_part&) = delete;
  std::string_view text() const { return text_; }

 private:
  char digits_[24];
  std::string_view text_;
};
void gx_trace_parts(std::initializer_list<gx_trace_part> parts);
template <typename... Part>
void gx_trace(const Part&... part) {
  gx_trace_parts({gx_trace_part(part)...});
}
