// The glyph set: one line of text a character, decoded once.
//
// A point is two signs, x then y, each in steps of 50 grid units: 0..9, then a (500) to k (1000).
// A blank ends a stroke. Most points lie on multiples of 100, so that a text of 10 pixels, the
// usual size, has every stroke on whole pixels. Letters with a tail have their bowl raised, since
// nothing goes below the baseline.
#include "gx/display/stroke_font.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace {
constexpr char first_glyph = '!';
constexpr char last_glyph = '~';
constexpr std::size_t nb_of_glyphs = last_glyph - first_glyph + 1;
constexpr std::size_t max_strokes = 4;

constexpr std::array<std::string_view, nb_of_glyphs> drawings = {
    /* ! */ "0k06 0300",
    /* " */ "5k5g bkbg",
    /* # */ "204k 80ak 08c8 0ccc",
    /* $ */ "cgai2i0g0c2aaac8c4a22204 6k60",
    /* % */ "00ck 0g0k4k4g0g 80c0c48480",
    /* & */ "c02g2i4k8kaiag06022080c6",
    /* ' */ "6k6g",
    /* ( */ "8k4g4480",
    /* ) */ "4k8g8440",
    /* * */ "6g64 0ec6 06ce",
    /* + */ "6g64 0aca",
    /* , */ "646240",
    /* - */ "0aca",
    /* . */ "4060624240",
    /* / */ "00ck",
    /* 0 */ "20020i2kakcic2a020 04cg",
    /* 1 */ "2g6k60 20a0",
    /* 2 */ "0g0i2kakcicc00c0",
    /* 3 */ "0i2kakciccaa4a aac8c2a02002",
    /* 4 */ "a0ak06c6",
    /* 5 */ "ck0k0caccac2a02002",
    /* 6 */ "ciak2k0i0220a0c2caac0c",
    /* 7 */ "0kck40",
    /* 8 */ "2a0c0i2kakciccaa2a080220a0c2c8aa",
    /* 9 */ "0220a0c2ciak2k0i0a28c8",
    /* : */ "4a6a6c4c4a 4262644442",
    /* ; */ "4a6a6c4c4a 646240",
    /* < */ "ci0ac2",
    /* = */ "0ccc 08c8",
    /* > */ "0ica02",
    /* ? */ "0g0i2kakcice6a66 6062",
    /* @ */ "c020020i2kakcic666484c6ece",
    /* A */ "006kc0 28a8",
    /* B */ "000kakciccaa0a aac8c2a000",
    /* C */ "ciak2k0i0220a0c2",
    /* D */ "000k8kcgc48000",
    /* E */ "ck0k00c0 0aaa",
    /* F */ "ck0k00 0aaa",
    /* G */ "ciak2k0i0220a0c2ca8a",
    /* H */ "000k c0ck 0aca",
    /* I */ "2kak 6k60 20a0",
    /* J */ "ckc2a0200206",
    /* K */ "000k ck08 4cc0",
    /* L */ "0k00c0",
    /* M */ "000k6ackc0",
    /* N */ "000kc0ck",
    /* O */ "20020i2kakcic2a020",
    /* P */ "000kakciccaa0a",
    /* Q */ "20020i2kakcic2a020 86c0",
    /* R */ "000kakciccaa0a 6ac0",
    /* S */ "ciak2k0i0c2aaac8c2a02002",
    /* T */ "0kck 6k60",
    /* U */ "0k0220a0c2ck",
    /* V */ "0k60ck",
    /* W */ "0k206ca0ck",
    /* X */ "00ck 0kc0",
    /* Y */ "0k6ack 6a60",
    /* Z */ "0kck00c0",
    /* [ */ "8k4k4080",
    /* \ */ "0kc0",
    /* ] */ "4k8k8040",
    /* ^ */ "0e6kce",
    /* _ */ "00c0",
    /* ` */ "4k8g",
    /* a */ "2eaeccc0 c828060220a0c2",
    /* b */ "0k00 0c2eaeccc2a02002",
    /* c */ "ccae2e0c0220a0c2",
    /* d */ "ckc0 ccae2e0c0220a0c2",
    /* e */ "08c8ccae2e0c0220a0c2",
    /* f */ "ciak8k6i60 2eae",
    /* g */ "cec2a020 ccae2e0c0826a6c8",
    /* h */ "0k00 0c2eaeccc0",
    /* i */ "6k6i 2e6e60 20a0",
    /* j */ "8k8i 4e8e82602002",
    /* k */ "0k00 ae04 48a0",
    /* l */ "2k6k60 20a0",
    /* m */ "000e 0c2e4e6c60 6c8eaeccc0",
    /* n */ "000e 0c2eaeccc0",
    /* o */ "20020c2eaeccc2a020",
    /* p */ "000e 0c2eaeccc8a62608",
    /* q */ "cec0 ccae2e0c0826a6c8",
    /* r */ "000e 0a4eaecc",
    /* s */ "ccae2e0c0a28a8c6c2a02002",
    /* t */ "6k6280a0c2 2eae",
    /* u */ "0e0220a0c2 cec0",
    /* v */ "0e60ce",
    /* w */ "0e206aa0ce",
    /* x */ "00ce 0ec0",
    /* y */ "0e66 ce2000",
    /* z */ "0ece00c0",
    /* { */ "ak8k6i6c4a686280a0",
    /* | */ "6k60",
    /* } */ "2k4k6i6c8a68624020",
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

constexpr std::size_t count_signs() {
  std::size_t count = 0;
  for (const auto drawing : drawings) count += drawing.size();
  return count;
}

struct font_t {
  std::array<gx_grid_point_t, count_signs() / 2> points;
  struct glyph_t {
    std::array<gx_stroke_t, max_strokes> strokes;
    std::size_t nb_of_strokes = 0;
  };
  std::array<glyph_t, nb_of_glyphs> glyphs;

  font_t() {
    std::size_t used = 0;
    for (std::size_t g = 0; g < nb_of_glyphs; ++g) {
      std::string_view rest = drawings[g];
      while (!rest.empty()) {
        const auto stroke = rest.substr(0, rest.find(' '));
        rest.remove_prefix(stroke.size() < rest.size() ? stroke.size() + 1 : rest.size());
        const std::size_t start = used;
        for (std::size_t i = 0; i + 1 < stroke.size(); i += 2)
          points[used++] = {static_cast<std::int16_t>(step_of(stroke[i]) * 50),
                            static_cast<std::int16_t>(step_of(stroke[i + 1]) * 50)};
        auto& glyph = glyphs[g];
        glyph.strokes[glyph.nb_of_strokes++] = gx_stroke_t(&points[start], used - start);
      }
    }
  }
};
}  // namespace

std::span<const gx_stroke_t> gx_glyph(char c) {
  static const font_t font;
  if (c < first_glyph || c > last_glyph) return {};
  const auto& glyph = font.glyphs[static_cast<std::size_t>(c - first_glyph)];
  return {glyph.strokes.data(), glyph.nb_of_strokes};
}
