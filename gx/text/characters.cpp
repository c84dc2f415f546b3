// UTF-8 there and back, and readable ASCII for what the keyboard of a GX editor does not have.
#include "gx/text/characters.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "gx/text/at.h"

namespace {

struct letter_t {
  char32_t code;
  std::string_view text;
};

// Sorted by code.
constexpr auto letters = std::to_array<letter_t>({
    {0xA0, " "},      {0xA1, "!"},      {0xA2, "c"},        {0xA3, "GBP"},      {0xA5, "Y"},
    {0xA6, "|"},      {0xA9, "(c)"},    {0xAB, "<<"},       {0xAC, "~"},        {0xAD, "-"},
    {0xAE, "(R)"},    {0xAF, "-"},      {0xB0, "deg"},      {0xB1, "+-"},       {0xB2, "2"},
    {0xB3, "3"},      {0xB4, "'"},      {0xB5, "u"},        {0xB7, "."},        {0xB9, "1"},
    {0xBB, ">>"},     {0xBC, "1/4"},    {0xBD, "1/2"},      {0xBE, "3/4"},      {0xC6, "AE"},
    {0xD0, "D"},      {0xD7, "x"},      {0xD8, "O"},        {0xDE, "Th"},       {0xDF, "ss"},
    {0xE6, "ae"},     {0xF0, "d"},      {0xF7, "/"},        {0xF8, "o"},        {0xFE, "th"},
    {0x141, "L"},     {0x142, "l"},     {0x152, "OE"},      {0x153, "oe"},      {0x391, "alpha"},
    {0x392, "beta"},  {0x393, "gamma"}, {0x394, "delta"},   {0x395, "epsilon"}, {0x396, "zeta"},
    {0x397, "eta"},   {0x398, "theta"}, {0x399, "iota"},    {0x39A, "kappa"},   {0x39B, "lamda"},
    {0x39C, "mu"},    {0x39D, "nu"},    {0x39E, "xi"},      {0x39F, "omicron"}, {0x3A0, "pi"},
    {0x3A1, "rho"},   {0x3A3, "sigma"}, {0x3A4, "tau"},     {0x3A5, "upsilon"}, {0x3A6, "phi"},
    {0x3A7, "chi"},   {0x3A8, "psi"},   {0x3A9, "ohm"},     {0x3B1, "alpha"},   {0x3B2, "beta"},
    {0x3B3, "gamma"}, {0x3B4, "delta"}, {0x3B5, "epsilon"}, {0x3B6, "zeta"},    {0x3B7, "eta"},
    {0x3B8, "theta"}, {0x3B9, "iota"},  {0x3BA, "kappa"},   {0x3BB, "lamda"},   {0x3BC, "u"},
    {0x3BD, "nu"},    {0x3BE, "xi"},    {0x3BF, "omicron"}, {0x3C0, "pi"},      {0x3C1, "rho"},
    {0x3C2, "sigma"}, {0x3C3, "sigma"}, {0x3C4, "tau"},     {0x3C5, "upsilon"}, {0x3C6, "phi"},
    {0x3C7, "chi"},   {0x3C8, "psi"},   {0x3C9, "omega"},   {0x3D1, "theta"},   {0x3D5, "phi"},
    {0x2010, "-"},    {0x2011, "-"},    {0x2012, "-"},      {0x2013, "-"},      {0x2014, "-"},
    {0x2015, "-"},    {0x2018, "'"},    {0x2019, "'"},      {0x201A, ","},      {0x201C, "\""},
    {0x201D, "\""},   {0x201E, "\""},   {0x2022, "*"},      {0x2026, "..."},    {0x2030, "o/oo"},
    {0x2032, "'"},    {0x2033, "\""},   {0x20AC, "EUR"},    {0x2122, "(TM)"},   {0x2126, "ohm"},
    {0x2190, "<-"},   {0x2192, "->"},   {0x2212, "-"},      {0x221A, "sqrt"},   {0x221E, "inf"},
    {0x2248, "~"},    {0x2260, "!="},   {0x2264, "<="},     {0x2265, ">="},
});

static_assert(std::is_sorted(letters.begin(), letters.end(),
                             [](const letter_t& a, const letter_t& b) { return a.code < b.code; }));

// The letters 0xC0..0x17F without their marks; a blank where the table above says it.
constexpr std::string_view plain_letters =
    "AAAAAA CEEEEIIII NOOOOO  UUUUY  aaaaaa ceeeeiiii nooooo  uuuuy y"
    "AaAaAaCcCcCcCcDdDdEeEeEeEeEeGgGgGgGgHhHhIiIiIiIiIi  JjKk LlLlLlLl  NnNnNn   OoOoOo  "
    "RrRrRrSsSsSsSsTtTtTtUuUuUuUuUuUuWwYyYZzZzZz ";

std::string_view ascii_of(char32_t code) {
  const auto found = std::lower_bound(letters.begin(), letters.end(), code,
                                      [](const letter_t& l, char32_t c) { return l.code < c; });
  if (found != letters.end() && found->code == code) return found->text;
  if (code >= 0xC0 && code - 0xC0 < plain_letters.size() && plain_letters[code - 0xC0] != ' ') {
    return plain_letters.substr(code - 0xC0, 1);
  }
  return "?";
}

}  // namespace

char32_t gx_take_character(std::string_view& text) {
  const auto byte = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
  };
  const unsigned first = byte(0);
  const std::size_t more = first < 0xC2 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
  char32_t code = more == 0 ? first : first & (0x3FU >> more);
  bool is_sound = first < 0xF5;
  for (std::size_t i = 1; i <= more; ++i) {
    is_sound = is_sound && (byte(i) & 0xC0U) == 0x80U;
    code = code << 6 | (byte(i) & 0x3FU);
  }
  constexpr std::array<char32_t, 4> least{0, 0x80, 0x800, 0x10000};
  is_sound = is_sound && code >= gx_at(least, more) && code <= 0x10FFFF &&
             (code < 0xD800 || code >= 0xE000);
  text.remove_prefix(is_sound ? more + 1 : 1);
  return is_sound ? code : first;
}

std::u32string gx_characters(std::string_view text) {
  std::u32string characters;
  while (!text.empty()) characters += gx_take_character(text);
  return characters;
}

void gx_append_utf8(std::string& out, char32_t code) {
  const auto put = [&](char32_t byte) {
    out += static_cast<char>(static_cast<unsigned char>(byte));
  };
  if (code < 0x80) return put(code);
  const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
  constexpr std::array<char32_t, 4> mark{0, 0xC0, 0xE0, 0xF0};
  put(gx_at(mark, more) | code >> (6 * more));
  for (int i = more - 1; i >= 0; --i) put(0x80 | (code >> (6 * i) & 0x3F));
}

std::string gx_ascii(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const char32_t code = gx_take_character(text);
    if (code == '\n' || (code >= ' ' && code <= '~'))
      result += static_cast<char>(code);
    else if (code < 0x80)
      result += ' ';
    else
      result += ascii_of(code);
  }
  return result;
}
