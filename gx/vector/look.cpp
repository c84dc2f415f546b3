// Colours, papers, numbers and texts of pictures in files.
#include "gx/vector/look.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "gx/text/at.h"
#include "gx/text/characters.h"
#include "gx/text/strings.h"

namespace {
using palette_t = std::array<gx_ink_t, gx_nb_of_inks>;

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
}  // namespace

std::optional<gx_colours> gx_colours_of(std::string_view name) {
  if (name == "screen") return gx_colours::screen;
  if (name == "print") return gx_colours::print;
  if (name == "mono") return gx_colours::mono;
  return std::nullopt;
}

gx_ink_t gx_ink(gx_colours colours, int color) {
  if (color < 0 || color >= gx_nb_of_inks) color = gx_nb_of_inks - 1;
  if (colours == gx_colours::mono) return {0, 0, 0};
  return gx_at(colours == gx_colours::screen ? screen_inks : print_inks, color);
}

gx_ink_t gx_paper_color(gx_colours colours) {
  return colours == gx_colours::screen ? gx_ink_t{0, 0, 0} : gx_ink_t{255, 255, 255};
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
          gx_append_utf8(xml, code);
    }
  }
  return xml;
}
