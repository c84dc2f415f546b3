// A directory of its own for one test, with the files of a design in it; removed at the end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// The whole file; empty when it cannot be read.
inline std::string read_file(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void write_file(const std::filesystem::path& path, std::string_view text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream out(path, std::ios::binary);
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
  if (!out.flush()) throw std::runtime_error("cannot write " + path.string());
}

// The lines without their newlines; a last line without one counts.
using lines_t = std::vector<std::string>;

inline lines_t split_lines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const auto end = text.find('\n');
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return lines;
}

class scratch_directory {
 public:
  scratch_directory() {
    std::string name = (std::filesystem::temp_directory_path() / "kivo_test.XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::runtime_error("cannot make " + name);
    path_ = name;
  }
  ~scratch_directory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  scratch_directory(const scratch_directory&) = delete;
  scratch_directory& operator=(const scratch_directory&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path file(std::string_view name) const { return path_ / name; }
  std::string read(std::string_view name) const { return read_file(file(name)); }
  lines_t lines(std::string_view name) const { return split_lines(read(name)); }
  void write(std::string_view name, std::string_view text) const { write_file(file(name), text); }

 private:
  std::filesystem::path path_;
};
