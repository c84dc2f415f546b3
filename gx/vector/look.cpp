// Colours, papers, numbers and texts of pictures in files.
#include "gx/vector/look.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "gx/text/at.h"
#include "gx/text/strings.h"

namespace {
using palette_t = std::array<gx_rgb_t, gx_nb_of_inks>;

// black, red, green, blue, cyan, yellow, magenta, white
constexpr palette_t screen_inks{{{0, 0, 0},
                                 {255, 0, 0},
                                 {0, 255, 0},
                                 {0, 0, 255},
                                 {0, 255, 255},
                                 {255, 255, 0},
                                 {255, 0, 255},
                                 {255, 255, 255}}};
// As dark as is needed to be read on white; white is black there.
constexpr palette_t print_inks{{{0, 0, 0},
                                {192, 0, 0},
                                {0, 112, 0},
                                {0, 0, 192},
                                {0, 96, 128},
                                {128, 80, 0},
                                {144, 0, 144},
                                {0, 0, 0}}};

struct named_paper_t {
  std::string_view name;
  gx_paper_t size;
};
constexpr named_paper_t papers[] = {
    {"A5", {210, 148}},          {"A4", {297, 210}},
    {"A3", {420, 297}},          {"A2", {594, 420}},
    {"A1", {841, 594}},          {"A0", {1189, 841}},
    {"letter", {279.4, 215.9}},  {"legal", {355.6, 215.9}},
    {"tabloid", {431.8, 279.4}}, {"fit", {}},
};

constexpr int dashed[] = {12, 12}, dotted[] = {6, 12}, chain[] = {24, 12, 6, 12},
              double_chain[] = {24, 12, 6, 12, 6, 12};

// The character at `at`, which moves to the next one; it stays where the bytes are no UTF-8.
char32_t utf8_character(std::string_view text, std::size_t& at) {
  const auto byte = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
  };
  const unsigned first = byte(at);
  const std::size_t more = first < 0x80 ? 0 : first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
  char32_t code = more == 0 ? first : first & (0x3FU >> more);
  for (std::size_t i = 1; i <= more; ++i) {
    if ((byte(at + i) & 0xC0U) != 0x80U) return 0;
    code = code << 6 | (byte(at + i) & 0x3FU);
  }
  constexpr std::array<char32_t, 4> least{0, 0x80, 0x800, 0x10000};
  const bool is_sound = first < 0x80 || (first >= 0xC2 && first < 0xF5);
  if (!is_sound || code < least[more] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
    return 0;
  at += more + 1;
  return code;
}

void append_utf8(std::string& out, char32_t code) {
  const auto put = [&](char32_t byte) {
    out += static_cast<char>(static_cast<unsigned char>(byte));
  };
  if (code < 0x80) return put(code);
  const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
  constexpr std::array<char32_t, 4> mark{0, 0xC0, 0xE0, 0xF0};
  put(gx_at(mark, more) | code >> (6 * more));
  for (int i = more - 1; i >= 0; --i) put(0x80 | (code >> (6 * i) & 0x3F));
}
}  // namespace

std::optional<gx_colours> gx_colours_of(std::string_view name) {
  if (name == "screen") return gx_colours::screen;
  if (name == "print") return gx_colours::print;
  if (name == "mono") return gx_colours::mono;
  return std::nullopt;
}

gx_rgb_t gx_ink(gx_colours colours, int color) {
  if (color < 0 || color >= gx_nb_of_inks) color = gx_nb_of_inks - 1;
  if (colours == gx_colours::mono) return {0, 0, 0};
  return gx_at(colours == gx_colours::screen ? screen_inks : print_inks, color);
}

gx_rgb_t gx_paper_color(gx_colours colours) {
  return colours == gx_colours::screen ? gx_rgb_t{0, 0, 0} : gx_rgb_t{255, 255, 255};
}

std::optional<gx_paper_t> gx_paper_of(std::string_view name) {
  const auto* const found = std::ranges::find_if(
      papers, [&](const named_paper_t& paper) { return gx_iden(paper.name, name); });
  if (found == std::end(papers)) return std::nullopt;
  return found->size;
}

std::span<const int> gx_dashes(int style) {
  switch (style) {
    case 1:
      return dashed;
    case 2:
      return dotted;
    case 3:
      return chain;
    case 4:
      return double_chain;
    default:
      return {};
  }
}

void gx_append_units(std::string& out, std::int64_t design_units) {
  char digits[24];
  const auto put = [&](std::int64_t v) {
    out.append(digits, std::to_chars(digits, digits + sizeof digits, v).ptr);
  };
  if (design_units < 0) out += '-';
  const std::int64_t size = std::abs(design_units);
  put(size / gx_vector_scale);
  const std::int64_t rest = size % gx_vector_scale;
  if (rest == 0) return;
  out += rest < 10 ? ".0" : ".";
  put(rest % 10 == 0 ? rest / 10 : rest);
}

void gx_append_number(std::string& out, double number) {
  gx_append_units(out, std::llround(number * gx_vector_scale));
}

std::u32string gx_characters(std::string_view text) {
  std::u32string characters;
  for (std::size_t at = 0; at < text.size();) {
    const auto before = at;
    characters += utf8_character(text, at);
    if (at != before) continue;
    characters.assign(text.size(), 0);
    std::ranges::transform(text, characters.begin(),
                           [](char c) { return static_cast<unsigned char>(c); });
    break;
  }
  return characters;
}

std::string gx_xml(std::string_view text) {
  std::string xml;
  xml.reserve(text.size());
  for (const char32_t code : gx_characters(text)) {
    switch (code) {
      case '&':
        xml += "&amp;";
        break;
      case '<':
        xml += "&lt;";
        break;
      case '>':
        xml += "&gt;";
        break;
      case '"':
        xml += "&quot;";
        break;
      case '\'':
        xml += "&#39;";
        break;
      default:
        if (code < 0x20 || (code >= 0x7F && code < 0xA0) || (code & 0xFFFE) == 0xFFFE)
          xml += ' ';
        else
          append_utf8(xml, code);
    }
  }
  return xml;
}
