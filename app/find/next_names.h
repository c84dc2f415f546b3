// Paths of the design that begin as a typed one does.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct kv_next_name_t {
  std::string path;      // as it was typed, its last name completed
  bool goes_on = false;  // a block, after whose "/" names follow
};
// The blocks, devices and nets that are on the sheet of all names but the last, or the pins of
// the device that these name, whose own names begin with the last one; letters in either case. They
// are looked up in the drawings. Names are divided by "/", "." or ":".
std::vector<kv_next_name_t> kv_next_names(std::string_view typed);
