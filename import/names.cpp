#include "import/names.h"

#include <algorithm>

#include "gx/text/strings.h"

std::string gxi_upper(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), gx_upper_case);
  return result;
}

std::string gxi_names_t::take(const std::string& name, std::size_t longest) {
  std::string unique = name.substr(0, longest);
  for (int& next = next_[gxi_upper(unique)]; !used_.insert(gxi_upper(unique)).second;) {
    const std::string tail = separator_ + std::to_string(next = std::max(next + 1, 2));
    unique = name.substr(0, longest - tail.size()) + tail;
  }
  return unique;
}
