// What pictures in files share: colours, papers, line widths, dashes, numbers and texts.
//
// Lengths are written in hundredths of the design's units with two decimals, so that a step of the
// snap grid is 50.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Colours of the screen; darker ones on white paper; black on white.
enum class gx_colours : std::uint8_t { screen, print, mono };
std::optional<gx_colours> gx_colours_of(std::string_view name);

inline constexpr int gx_nb_of_inks = 8;

// Red, green, blue, 0..255. Colours outside 0..7 are taken as 7, as on the screen.
using gx_ink_t = std::array<int, 3>;
gx_ink_t gx_ink(gx_colours colours, int color);
gx_ink_t gx_paper_color(gx_colours colours);

// Millimetres, the longer side first; 0 by 0 is as large as the sheet: a step of the snap grid is a
// tenth of an inch.
struct gx_paper_t {
  double longer = 0, shorter = 0;
};
// A5 to A0, letter, legal, tabloid, "fit"; in any letters.
std::optional<gx_paper_t> gx_paper_of(std::string_view name);
inline constexpr std::string_view gx_paper_names = "A5 A4 A3 A2 A1 A0 letter legal tabloid fit";

inline constexpr int gx_vector_scale = 100;            // design units in one unit of a file
inline constexpr std::int32_t gx_thin_line = 200;      // width of a line of width 1, design units
inline constexpr std::int32_t gx_title_height = 3000;  // of the title above a sheet, design units
inline constexpr std::int32_t gx_title_room = 6000;    // kept free for it

// Dashes of a line style, in files' units; none for a solid line and for styles that do not exist.
std::span<const int> gx_dashes(int style);

// A text is drawn in a font whose letters are all as wide, `gx_font_advance` of the font's size.
// The size for a stroke text of a height, and how much wider its letters are than the font's.
inline constexpr double gx_font_advance = 0.6;
inline constexpr double gx_font_size = 1.4;     // of the height
inline constexpr double gx_text_advance = 1.2;  // of the height: a letter of the stroke font
inline constexpr double gx_text_stretch = gx_text_advance / (gx_font_size * gx_font_advance);

// Appends a length of the design, or a number, with at most two decimals and no more than needed.
void gx_append_units(std::string& out, std::int64_t design_units);
void gx_append_number(std::string& out, double number);

// For XML and HTML: UTF-8, with & < > " ' as entities; control characters become blanks.
std::string gx_xml(std::string_view text);
