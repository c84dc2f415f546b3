#include "gx/vector/pdf_letters.h"

#include <algorithm>
#include <array>

#include "gx/text/characters.h"
#include "gx/vector/pdf_file.h"

namespace {
constexpr int courier_width = 600;  // thousandths of the size

struct symbol_t {
  char32_t code;
  unsigned char byte;
  short width;
};
// The letters of Symbol by their codes.
constexpr auto symbols = [] {
  std::array all{std::to_array<symbol_t>({
      // clang-format off
      {0x391, 'A', 722}, {0x392, 'B', 667}, {0x393, 'G', 603}, {0x394, 'D', 612},
      {0x395, 'E', 611}, {0x396, 'Z', 611}, {0x397, 'H', 722}, {0x398, 'Q', 741},
      {0x399, 'I', 333}, {0x39A, 'K', 722}, {0x39B, 'L', 686}, {0x39C, 'M', 889},
      {0x39D, 'N', 722}, {0x39E, 'X', 645}, {0x39F, 'O', 722}, {0x3A0, 'P', 768},
      {0x3A1, 'R', 556}, {0x3A3, 'S', 592}, {0x3A4, 'T', 611}, {0x3A5, 'U', 690},
      {0x3A6, 'F', 763}, {0x3A7, 'C', 722}, {0x3A8, 'Y', 795}, {0x3A9, 'W', 768},
      {0x3B1, 'a', 631}, {0x3B2, 'b', 549}, {0x3B3, 'g', 411}, {0x3B4, 'd', 494},
      {0x3B5, 'e', 439}, {0x3B6, 'z', 494}, {0x3B7, 'h', 603}, {0x3B8, 'q', 521},
      {0x3B9, 'i', 329}, {0x3BA, 'k', 549}, {0x3BB, 'l', 549}, {0x3BC, 'm', 576},
      {0x3BD, 'n', 521}, {0x3BE, 'x', 493}, {0x3BF, 'o', 549}, {0x3C0, 'p', 549},
      {0x3C1, 'r', 549}, {0x3C2, 'V', 439}, {0x3C3, 's', 603}, {0x3C4, 't', 439},
      {0x3C5, 'u', 576}, {0x3C6, 'f', 521}, {0x3C7, 'c', 549}, {0x3C8, 'y', 686},
      {0x3C9, 'w', 686}, {0x2126, 'W', 768}, {0x2190, 0xAC, 987}, {0x2191, 0xAD, 603},
      {0x2192, 0xAE, 987}, {0x2193, 0xAF, 603}, {0x2202, 0xB6, 494}, {0x2206, 'D', 612},
      {0x2208, 0xCE, 713}, {0x220F, 0xD5, 823}, {0x2211, 0xE5, 713}, {0x221A, 0xD6, 549},
      {0x221D, 0xB5, 713}, {0x221E, 0xA5, 713}, {0x2220, 0xD0, 768}, {0x2227, 0xD9, 603},
      {0x2228, 0xDA, 603}, {0x222B, 0xF2, 274}, {0x2248, 0xBB, 549}, {0x2260, 0xB9, 549},
      {0x2261, 0xBA, 549}, {0x2264, 0xA3, 549}, {0x2265, 0xB3, 549}, {0x22C5, 0xD7, 250},
      // clang-format on
  })};
  std::ranges::sort(all, {}, &symbol_t::code);
  return all;
}();

// Those of WinAnsiEncoding from 0x80 on; 0 where it has none.
constexpr std::array<char32_t, 32> win_letters{
    0x20AC, 0,      0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021, 0x2C6,  0x2030, 0x160,
    0x2039, 0x152,  0,      0x17D,  0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0,      0x17E,  0x178};

// The byte of WinAnsiEncoding; 0 when it has none.
unsigned char win_byte(char32_t code) {
  if (code < 0x20 || (code >= 0x7F && code < 0xA0)) return ' ';  // control characters
  if (code <= 0xFF) return static_cast<unsigned char>(code);
  const auto* const at = std::ranges::find(win_letters, code);
  return at == win_letters.end() ? 0
                                 : static_cast<unsigned char>(0x80 + (at - win_letters.begin()));
}

const symbol_t* symbol_of(char32_t code) {
  const auto* const at = std::ranges::lower_bound(symbols, code, {}, &symbol_t::code);
  return at != symbols.end() && at->code == code ? at : nullptr;
}

// Letters of one font, under way.
class shown_t {
 public:
  explicit shown_t(std::string_view size) : size_(size) {}

  void add(char32_t code) {
    if (const unsigned char byte = win_byte(code); byte != 0) {
      bytes_ += static_cast<char>(byte);
      return;
    }
    flush();
    if (const symbol_t* symbol = symbol_of(code)) {
      // In the middle of its place: moved to the left by as much before and after.
      const std::string moved = std::to_string((symbol->width - courier_width) / 2);
      const std::string letter(1, static_cast<char>(symbol->byte));
      out_.append("/G ").append(size_).append(" Tf[").append(moved);
      out_.append(gx_pdf_bracketed(letter)).append(moved).append("]TJ/F ");
      out_.append(size_).append(" Tf");
      return;
    }
    std::string text;
    gx_append_utf8(text, code);
    out_.append("/Span<</ActualText").append(gx_pdf_text(text)).append(">>BDC(?)Tj EMC ");
  }
  std::string end() {
    flush();
    return std::move(out_);
  }

 private:
  void flush() {
    if (!bytes_.empty()) out_.append(gx_pdf_bracketed(bytes_)).append("Tj ");
    bytes_.clear();
  }

  std::string_view size_;
  std::string out_, bytes_;
};
}  // namespace

std::string gx_pdf_shown(std::string_view text, std::string_view size) {
  shown_t shown(size);
  for (const char32_t code : gx_characters(text)) shown.add(code);
  std::string operators = shown.end();
  if (operators.ends_with(' ')) operators.pop_back();
  return operators;
}
