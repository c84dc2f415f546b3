// Finding what is installed beside the program, for users who set nothing up.
#pragma once

#include <filesystem>

// To be called first in main, with the program's own path. The environment is only completed, never
// overruled: VELMORAN becomes the installed product directory when it is unset or empty and the
// default one does not exist; the helper programs beside this one come last in PATH.
void kv_find_installation(const std::filesystem::path& program);
