#include "app/session/installation.h"

#include <cstdlib>
#include <string>
#include <system_error>

#include "gx/text/strings.h"
#include "gx/text/text_files.h"

namespace {

namespace fs = std::filesystem;

bool is_folder(const fs::path& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

// That of the program itself, where a link leads to it; empty when there is none.
fs::path folder_of(const fs::path& program) {
  std::error_code error;
  return fs::canonical(program, error).parent_path();
}

}  // namespace

void kv_find_installation(const fs::path& program) {
  const fs::path folder = folder_of(program);
  if (folder.empty()) return;
  const fs::path installed = folder.parent_path() / "share" / "velmoran";
  if (kv_environment("VELMORAN").empty() && !is_folder(gx_view(gx_get_velmoran())) &&
      is_folder(installed / "kivo")) {
    setenv("VELMORAN", installed.c_str(), 1);
  }
  std::string path = kv_environment("PATH");
  for (const fs::path& place : {folder, folder / "tools"}) {
    if (is_folder(place)) path += (path.empty() ? "" : ":") + place.string();
  }
  setenv("PATH", path.c_str(), 1);
}

fs::path kv_window_program(const fs::path& program) {
  constexpr char name[] = "kivo-window";
  const fs::path folder = folder_of(program);
  std::error_code error;
  if (fs::path beside = folder / name; fs::exists(beside, error)) return beside;
  return folder.parent_path() / "libexec" / "kivo" / name;
}

std::string kv_environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}
