#include "import/drawing/names.h"

#include <algorithm>
#include <cctype>

#include "gx/text/characters.h"
#include "gx/text/strings.h"

std::string gxi_names_t::take(const std::string& name, std::size_t longest) {
  std::string unique = name.substr(0, longest);
  for (int& next = next_[gx_upper(unique)]; !used_.insert(gx_upper(unique)).second;) {
    const std::string tail = separator_ + std::to_string(next = std::max(next + 1, 2));
    unique = name.substr(0, longest - tail.size()) + tail;
  }
  return unique;
}

std::string gxi_directory_name(std::string_view text) {
  std::string name = gx_ascii(text);
  std::replace_if(
      name.begin(), name.end(),
      [](char c) {
        return !std::isalnum(static_cast<unsigned char>(c)) &&
               std::string_view("_-+.").find(c) == std::string_view::npos;
      },
      '_');
  if (name.empty() || name.front() == '.' || name.front() == '-') name.insert(0, "_");
  return name;
}
