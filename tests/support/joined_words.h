// A list of words as one line.
#pragma once

#include <string>
#include <vector>

inline std::string joined_words(const std::vector<std::string>& words) {
  std::string all;
  for (const auto& word : words) all += (all.empty() ? "" : " ") + word;
  return all;
}
