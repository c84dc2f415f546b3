// Files of results as simulators write them, made by hand.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

inline std::string double_bytes(std::initializer_list<double> numbers) {
  std::string bytes;
  for (const double number : numbers) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
  }
  return bytes;
}

// The header of a plot up to its values; a variable is "name\ttype".
inline std::string raw_header(const std::string& plot, const std::string& flags,
                              const std::string& points, const std::vector<std::string>& variables,
                              const std::string& end = "Binary:\n") {
  std::string text = "Title: a test\nDate: today\nPlotname: " + plot + "\nFlags: " + flags +
                     "\nNo. Variables: " + std::to_string(variables.size()) +
                     "\nNo. Points: " + points + "\nVariables:\n";
  for (std::size_t i = 0; i < variables.size(); ++i) {
    text += "\t" + std::to_string(i) + "\t" + variables[i] + "\n";
  }
  return text + end;
}
