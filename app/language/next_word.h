// What may follow the words of a command that is being typed.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

struct kv_wanted_word_t {
  std::vector<std::string_view> keywords{};  // as syntax lines have them: "VIEw", "ON"
  bool is_path = false;                      // of the design
  bool is_block = false;                     // of the sheet in view
  bool is_file = false;
};
// By the syntax lines of all commands that begin with these words, which may be abbreviated.
kv_wanted_word_t kv_wanted_word(std::span<const std::string> before);
