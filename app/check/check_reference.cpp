// Writing the reference file of a sheet check.
#include "app/check/check_reference.h"

#include <algorithm>

kv_reference_file::kv_reference_file(std::string_view sheet_path)
    : path_(std::string(sheet_path) + ".ref"), new_path_(path_ + ".new") {
  file_ = std::fopen(new_path_.c_str(), "w");
  if (file_ == nullptr) return;
  std::fprintf(file_, "#    \"%.*s\"\n", static_cast<int>(sheet_path.size()), sheet_path.data());
}

kv_reference_file::~kv_reference_file() {
  if (file_ == nullptr) return;
  std::fclose(file_);
  std::remove(new_path_.c_str());
}

void kv_reference_file::add_symbol(int symbol, std::string_view symbol_path) {
  // The paths stand in one column behind ids of one to four digits.
  const auto digits = static_cast<int>(std::to_string(symbol).size());
  std::fprintf(file_, " C_%d%*c\"%.*s\" \n", symbol, std::max(1, 5 - digits), ' ',
               static_cast<int>(symbol_path.size()), symbol_path.data());
}

bool kv_reference_file::finish() {
  const bool written = std::ferror(file_) == 0;
  const bool closed = std::fclose(file_) == 0;
  file_ = nullptr;
  if (written && closed && std::rename(new_path_.c_str(), path_.c_str()) == 0) return true;
  std::remove(new_path_.c_str());
  return false;
}
