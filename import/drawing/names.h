// Names that have to differ from one another; names that differ in letter case alone are the same.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "gx/text/strings.h"

// A name of a directory: letters, digits, "_", "-", "+" and "." kept, the rest "_".
std::string gxi_directory_name(std::string_view text);

// Names given out so far.
class gxi_names_t {
 public:
  explicit gxi_names_t(char separator = '~') : separator_(separator) {}

  // The name itself, or with the separator and 2, 3 ... after it.
  std::string take(const std::string& name, std::size_t longest = std::string::npos);
  bool has(std::string_view name) const { return used_.contains(gx_upper(name)); }

 private:
  char separator_;
  std::unordered_set<std::string> used_;
  std::unordered_map<std::string, int> next_;
};
