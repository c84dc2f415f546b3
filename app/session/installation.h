// Finding what is installed beside the program, for users who set nothing up.
#pragma once

#include <filesystem>
#include <string>

// To be called first in main, with the program's own path. The environment is only completed, never
// overruled: VELMORAN becomes the installed product directory when it is unset or empty and the
// default one does not exist; the helper programs beside this one come last in PATH.
void kv_find_installation(const std::filesystem::path& program);

// The program of the window: beside the program as it was built, or where it is installed.
std::filesystem::path kv_window_program(const std::filesystem::path& program);

std::string kv_environment(const char* name);  // "" where it is not set
