// Writing the reference file of a sheet check.
#include "app/check/sheet/check_reference.h"

#include <algorithm>
#include <utility>

kv_reference_file::kv_reference_file(std::string_view sheet_path)
    : path_(std::string(sheet_path) + ".ref"), new_path_(path_ + ".new") {
  file_ = x_create_new_file(new_path_);
  if (!file_) return;
  std::fprintf(file_.get(), "#    \"%.*s\"\n", static_cast<int>(sheet_path.size()),
               sheet_path.data());
}

kv_reference_file::~kv_reference_file() {
  if (!file_) return;
  file_.reset();
  std::remove(new_path_.c_str());
}

void kv_reference_file::add_symbol(int symbol, std::string_view symbol_path) {
  // The paths are in one column after ids of one to four digits.
  const auto digits = static_cast<int>(std::to_string(symbol).size());
  std::fprintf(file_.get(), " C_%d%*c\"%.*s\" \n", symbol, std::max(1, 5 - digits), ' ',
               static_cast<int>(symbol_path.size()), symbol_path.data());
}

bool kv_reference_file::finish() {
  const bool written = std::ferror(file_.get()) == 0;
  const bool closed = x_close(std::move(file_));
  if (written && closed && std::rename(new_path_.c_str(), path_.c_str()) == 0) return true;
  std::remove(new_path_.c_str());
  return false;
}
