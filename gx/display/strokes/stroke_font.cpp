// The glyph set: one line of text a character, decoded once.
//
// A point is two signs, x then y, each in steps of 50 grid units: 0..9, then a (500) to k (1000).
// A blank ends a stroke. Most points lie on multiples of 100, so that a text of 10 pixels, the
// usual size, has every stroke on whole pixels. Corners are cut by 200, which is still a pixel in a
// text of 5. Letters with a tail have their bowl raised, since nothing goes below the baseline.
#include "gx/display/strokes/stroke_font.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "gx/display/strokes/stroke_signs.h"
#include "gx/text/at.h"

namespace {
constexpr char first_glyph = '!';
constexpr char last_glyph = '~';
constexpr std::size_t nb_of_glyphs = last_glyph - first_glyph + 1;
constexpr std::size_t max_strokes = 4;
constexpr int grid_step = 50;

constexpr std::array<std::string_view, nb_of_glyphs> drawings = {
    /* ! */ "0k06 0300",
    /* " */ "5k5g bkbg",
    /* # */ "204k 80ak 08c8 0ccc",
    /* $ */ "cg8k4k0g0e4a8ac6c4804004 6k60",
    /* % */ "00ck 0g0k4k4g0g 80c0c48480",
    /* & */ "c04g4i6k8k8i0604408080c6",
    /* ' */ "6k6g",
    /* ( */ "8k4g4480",
    /* ) */ "4k8g8440",
    /* * */ "6g64 0ec6 06ce",
    /* + */ "6g64 0aca",
    /* , */ "646200",
    /* - */ "0aca",
    /* . */ "4060624240",
    /* / */ "00ck",
    /* 0 */ "4080c4cg8k4k0g0440 04cg",
    /* 1 */ "0g6k60 00c0",
    /* 2 */ "0g4k8kcgce00c0",
    /* 3 */ "0kck6c8cc8c4804004",
    /* 4 */ "a0ak06c6",
    /* 5 */ "ck0k0c8cc8c4804004",
    /* 6 */ "ak6k0e044080c4c68a4a06",
    /* 7 */ "0kck40",
    /* 8 */ "4a0e0g4k8kcgce8a4a06044080c4c68a",
    /* 9 */ "2060c6cg8k4k0g0e4a8ace",
    /* : */ "4a6a6c4c4a 4262644442",
    /* ; */ "4a6a6c4c4a 646200",
    /* < */ "ci0ac2",
    /* = */ "0ccc 08c8",
    /* > */ "0ica02",
    /* ? */ "0g4k8kcgce6866 6062",
    /* @ */ "c020020i2kakcic666484c6ece",
    /* A */ "006kc0 28a8",
    /* B */ "000k8kcgce8a0a 8ac6c48000",
    /* C */ "cg8k4k0g044080c4",
    /* D */ "000k6kcec66000",
    /* E */ "ck0k00c0 0aaa",
    /* F */ "ck0k00 0aaa",
    /* G */ "cg8k4k0g044080c4ca6a",
    /* H */ "000k c0ck 0aca",
    /* I */ "2kak 6k60 20a0",
    /* J */ "ckc4804004",
    /* K */ "000k ck08 4cc0",
    /* L */ "0k00c0",
    /* M */ "000k8agkg0",
    /* N */ "000kc0ck",
    /* O */ "4080c4cg8k4k0g0440",
    /* P */ "000k8kcgce8a0a",
    /* Q */ "4080c4cg8k4k0g0440 66c0",
    /* R */ "000k8kcgce8a0a 6ac0",
    /* S */ "cg8k4k0g0e4a8ac6c4804004",
    /* T */ "0kck 6k60",
    /* U */ "0k044080c4ck",
    /* V */ "0k60ck",
    /* W */ "0k008ag0gk",
    /* X */ "00ck 0kc0",
    /* Y */ "0k6ack 6a60",
    /* Z */ "0kck00c0",
    /* [ */ "8k4k4080",
    /* \ */ "0kc0",
    /* ] */ "4k8k8040",
    /* ^ */ "0e6kce",
    /* _ */ "00c0",
    /* ` */ "4k8g",
    /* a */ "ca8e4e0a044080c4 cec0",
    /* b */ "0k00 0a4e8ecac4804004",
    /* c */ "cc8e4e0a044080c2",
    /* d */ "ckc0 ca8e4e0a044080c4",
    /* e */ "06c6ca8e4e0a044080c0",
    /* f */ "ck8k6g60 2eae",
    /* g */ "cec48020 ca8e4e0a0a4686c8",
    /* h */ "0k00 0a4e8ecac0",
    /* i */ "6k7k 2e6e60 20a0",
    /* j */ "8k9k 4e8e84602004",
    /* k */ "0k00 ae04 48a0",
    /* l */ "4k4480a0",
    /* m */ "000e 0c2e6e8c80 8caeeegcg0",
    /* n */ "000e 0a4e8ecac0",
    /* o */ "4080c4ca8e4e0a0440",
    /* p */ "000e 0a4e8ecac8864608",
    /* q */ "cec0 ca8e4e0a084686c8",
    /* r */ "000e 0a4e8eca",
    /* s */ "ce4e0c0a88c6c28000",
    /* t */ "6k6480c0 2eae",
    /* u */ "0e044080c4 cec0",
    /* v */ "0e60ce",
    /* w */ "0e408ac0ge",
    /* x */ "00ce 0ec0",
    /* y */ "0e66 ce2000",
    /* z */ "0ece00c0",
    /* { */ "ak8k6i6c2a686280a0",
    /* | */ "6k60",
    /* } */ "2k4k6i6caa68624020",
    /* ~ */ "0a2c4c88a8ca",
};

constexpr int step_of(char sign) {
  if (sign >= '0' && sign <= '9') return sign - '0';
  if (sign >= 'a' && sign <= 'k') return sign - 'a' + 10;
  return -1;
}

// Every drawing: whole points on the grid, 1..4 strokes of 2 points or more.
constexpr bool is_sound(std::string_view drawing) {
  std::size_t strokes = 0, signs = 0;
  for (std::size_t i = 0; i <= drawing.size(); ++i) {
    if (i < drawing.size() && drawing[i] != ' ') {
      if (step_of(drawing[i]) < 0) return false;
      ++signs;
    } else {
      if (signs < 4 || signs % 2 != 0) return false;
      ++strokes;
      signs = 0;
    }
  }
  return strokes >= 1 && strokes <= max_strokes;
}
constexpr bool all_sound() {
  for (const auto drawing : drawings)
    if (!is_sound(drawing)) return false;
  return true;
}
static_assert(all_sound());

constexpr bool all_signs_sound() {
  for (const auto& sign : gx_stroke_signs)
    if (sign.drawing.empty() ? sign.like == ' ' : !is_sound(sign.drawing)) return false;
  for (const auto& mark : gx_mark_signs)
    if (!is_sound(mark.drawing)) return false;
  return gx_marked_letters.size() % 3 == 0;
}
static_assert(all_signs_sound());

using line_t = std::vector<gx_grid_point_t>;

std::vector<line_t> lines_of(std::string_view drawing) {
  std::vector<line_t> lines;
  while (!drawing.empty()) {
    const auto stroke = drawing.substr(0, drawing.find(' '));
    drawing.remove_prefix(std::min(stroke.size() + 1, drawing.size()));
    auto& line = lines.emplace_back();
    for (std::size_t i = 0; i + 1 < stroke.size(); i += 2)
      line.push_back({static_cast<std::int16_t>(step_of(stroke[i]) * grid_step),
                      static_cast<std::int16_t>(step_of(stroke[i + 1]) * grid_step)});
  }
  return lines;
}

std::string_view drawing_of(char32_t letter) {
  return gx_at(drawings, static_cast<int>(letter) - first_glyph);
}

// The letter makes room for its mark: below the lowest line, or above the highest.
std::vector<line_t> marked_lines(char32_t letter, char32_t mark) {
  std::vector<line_t> lines = lines_of(drawing_of(letter));
  if (letter == U'i') lines.erase(lines.begin());  // its dot
  const bool is_below = mark == U',', is_high = letter <= U'Z' || letter == U'd' || letter == U't';
  for (auto& line : lines)
    for (auto& point : line) {
      const int steps = point.y / grid_step;
      const int y = is_below ? 4 + steps * 4 / 5 : is_high ? steps * 3 / 4 : steps;
      point.y = static_cast<std::int16_t>(y * grid_step);
    }
  const auto* const found =
      std::ranges::find(gx_mark_signs, mark, [](const auto& sign) { return sign.mark; });
  if (found != std::end(gx_mark_signs))
    std::ranges::move(lines_of(found->drawing), std::back_inserter(lines));
  return lines;
}

class glyph_t {
 public:
  explicit glyph_t(std::vector<line_t> lines) : lines_(std::move(lines)) {
    strokes_.assign(lines_.begin(), lines_.end());
  }
  std::span<const gx_stroke_t> strokes() const { return strokes_; }

 private:
  std::vector<line_t> lines_;
  std::vector<gx_stroke_t> strokes_;
};

struct font_t {
  std::unordered_map<char32_t, glyph_t> glyphs;
  glyph_t box{lines_of("22a2ai2i22")};

  font_t() {
    for (char32_t code = first_glyph; code <= last_glyph; ++code)
      glyphs.emplace(code, glyph_t(lines_of(drawing_of(code))));
    for (const auto& sign : gx_stroke_signs)
      glyphs.emplace(sign.code, glyph_t(lines_of(sign.drawing.empty()
                                                     ? drawing_of(static_cast<char32_t>(sign.like))
                                                     : sign.drawing)));
    for (auto rest = gx_marked_letters; !rest.empty(); rest.remove_prefix(3))
      glyphs.emplace(rest[0], glyph_t(marked_lines(rest[1], rest[2])));
  }
};
}  // namespace

std::span<const gx_stroke_t> gx_glyph(char32_t code) {
  static const font_t font;
  constexpr char32_t first_sign = 0xA1, last_code = 0x10FFFF;
  const auto found = font.glyphs.find(code);
  if (found != font.glyphs.end()) return found->second.strokes();
  return code >= first_sign && code <= last_code ? font.box.strokes()
                                                 : std::span<const gx_stroke_t>();
}

gx_point16_t gx_turned(int x, int y, int rotation) {
  const auto px = static_cast<std::int16_t>(x), py = static_cast<std::int16_t>(y);
  const auto minus = [](std::int16_t v) { return static_cast<std::int16_t>(-v); };
  if (rotation == 1) return {minus(py), minus(px)};
  if (rotation == 3) return {py, px};
  return {px, minus(py)};
}
