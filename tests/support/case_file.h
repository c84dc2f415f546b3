// Cases that are texts: sections, each after a line "=== NAME".
#pragma once

#include <fstream>
#include <map>
#include <string>

// The sections of a file below tests/cases, by name; what is before the first is left out.
inline std::map<std::string, std::string> sections_of_case(const std::string& name) {
  std::map<std::string, std::string> sections;
  std::ifstream file(KIVO_SOURCE_DIR "/tests/cases/" + name);
  std::string section;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("=== "))
      section = line.substr(4);
    else if (!section.empty())
      sections[section].append(line).append("\n");
  }
  return sections;
}
