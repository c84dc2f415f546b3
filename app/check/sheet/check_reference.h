// The reference file of a sheet check: which symbols the sheet uses. It is written beside the old
// one, which it replaces only when it is complete.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "platform/files.h"

class kv_reference_file {
 public:
  // Opens the file of the sheet at that path and writes its first line.
  explicit kv_reference_file(std::string_view sheet_path);
  ~kv_reference_file();
  kv_reference_file(const kv_reference_file&) = delete;
  kv_reference_file& operator=(const kv_reference_file&) = delete;

  bool is_open() const { return static_cast<bool>(file_); }
  const std::string& path() const { return path_; }
  void add_symbol(int symbol, std::string_view symbol_path);
  // Puts the new file in place; false when any of it could not be written (the old one stays).
  bool finish();

 private:
  std::string path_, new_path_;
  x_file file_;
};
