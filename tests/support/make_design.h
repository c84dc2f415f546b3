// A design for one test, from its description (see examples/README.md).
#pragma once

#include <stdexcept>
#include <vector>

#include "gxmake/builder.h"
#include "gxmake/parser.h"
#include "tests/support/scratch_directory.h"

inline void no_messages(const gxm_messages_t& messages) {
  if (!messages.empty()) throw std::runtime_error(messages.front());
}

// Builds the description; a mistake in it throws the first message.
inline std::vector<gxm_file_t> build_design(std::string_view description) {
  gxm_input_t input;
  gxm_parse_text(description, "test", input);
  no_messages(input.messages);
  gxm_messages_t messages;
  auto files = gxm_build(input.design, {}, messages);
  no_messages(messages);
  return files;
}

// Writes it below the directory: NAME/symbol.gx, NAME/sheet.gx. Symbol paths are relative, so the
// program must run in the directory.
inline void make_design(const scratch_directory& directory, std::string_view description) {
  gxm_write(build_design(description), directory.path());
}

// The same from files, for the designs of examples/.
inline void make_design_of_file(const scratch_directory& directory,
                                const std::filesystem::path& path) {
  gxm_input_t input;
  gxm_parse_file(path, input);
  no_messages(input.messages);
  gxm_messages_t messages;
  const auto files = gxm_build(input.design, {}, messages);
  no_messages(messages);
  gxm_write(files, directory.path());
}
