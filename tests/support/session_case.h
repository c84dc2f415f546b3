// Sessions that are texts in a file below tests/cases: a section of it begins with a design, which
// may be none; then "$ LINE" with all that the program answers to it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/support/case_file.h"
#include "tests/support/scratch_directory.h"

// Goes through each section. A session is made of the design, and answer(line) gives lines.
template <typename Session>
void expect_sessions(const std::string& file) {
  const auto sections = sections_of_case(file);
  EXPECT_FALSE(sections.empty()) << file;
  for (const auto& [title, text] : sections) {
    const auto begin = std::min(text.size(), text.starts_with("$ ") ? 0 : text.find("\n$ ") + 1);
    std::string told = text.substr(0, begin);
    Session session(told);
    for (const auto& line : split_lines(std::string_view(text).substr(begin))) {
      if (!line.starts_with("$ ")) continue;
      told += line + "\n";
      for (const auto& answer : session.answer(line.substr(2))) told += answer + "\n";
    }
    EXPECT_EQ(told, text) << title;
  }
}
