// The words of one line of a description, and the values they hold.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "gxmake/description.h"

// Blanks separate words; quotes keep blanks inside a word and are dropped; "#" at the start of a
// word begins a comment. Nothing when a quote is not closed.
std::optional<std::vector<std::string>> gxm_split_words(std::string_view line);

// Values; nothing when the word is not one. Lengths are grid steps in the text, design units here.
std::optional<std::int32_t> gxm_length(std::string_view word);
std::optional<gx_pointreal_t> gxm_point(std::string_view word);  // x,y
std::optional<int> gxm_integer(std::string_view word, int least, int most);
std::optional<gxm_range_t> gxm_range(std::string_view word);  // start:end
std::optional<std::uint8_t> gxm_color_named(std::string_view word);
// x,y or .,y or x,. or PART.PIN or PART or NET@x,y; the corner stays `straight`.
std::optional<gxm_stop_t> gxm_stop(std::string_view word);
// NAME=VALUE
struct gxm_assignment_t {
  std::string name, value;
};
std::optional<gxm_assignment_t> gxm_assignment(std::string_view word);
