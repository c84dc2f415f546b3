#include "import/drawing/names.h"

#include <algorithm>

#include "gx/text/strings.h"

std::string gxi_names_t::take(const std::string& name, std::size_t longest) {
  std::string unique = name.substr(0, longest);
  for (int& next = next_[gx_upper(unique)]; !used_.insert(gx_upper(unique)).second;) {
    const std::string tail = separator_ + std::to_string(next = std::max(next + 1, 2));
    unique = name.substr(0, longest - tail.size()) + tail;
  }
  return unique;
}
