// The session at a window, a program of its own: what runs without one loads no X library. The
// design directory is checked before anything is opened in it.
#include <fcntl.h>
#include <sys/prctl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "app/session/process.h"
#include "app/window/window_front.h"
#include "platform/raw_files.h"
#include "platform/stop_signals.h"
#include "platform/timing.h"

namespace {
constexpr int max_echo = 128;
constexpr char no_directory[] = " !! Unrecoverable Error : the file :'%s' is not a  directory ? \n";
constexpr char not_readable[] =
    " !! Unrecoverable Error : No unix 'R' right on the directory:'%s' ? \n";

// Cuts the word at its first character that is not printable.
void cut_word(char* word) {
  while (*word >= 32 && *word <= 126) ++word;
  *word = 0;
}

// The end of the process for a path that no text of the program can hold.
void check_path(const char* path) {
  if (std::ranges::none_of(std::string_view(path), [](char c) { return (c & 0x80) != 0; })) return;
  std::printf(" !! Unrecoverable Error : letters beyond ASCII in the path :'%s' ? \n", path);
  std::exit(1);
}

// Opens the path and closes it again; the end of the process, with the message, when that fails.
void check_opening(const char* path, int flags, const char* failure) {
  const x_descriptor file(xfopen(path, flags | O_CLOEXEC, 0));
  if (!file) {
    std::printf(failure, path);
    std::exit(1);
  }
  xdelayms(1);
}
}  // namespace

int main(int argc, char** argv) {
  kv_prepare_process();
  prctl(PR_SET_NAME, "kivo");  // as the user has started it
  if (argc < 1) {
    std::printf(" !! Unrecoverable Error : Invalid argument number:%2d  < 1 \n", argc);
    return 1;
  }
  for (int i = 1; i < std::min(argc, 3); ++i) check_path(argv[i]);
  for (int i = 0; i < argc; ++i) {
    cut_word(argv[i]);
    std::printf(" argument : %2d\n   '%.*s' \n", i, max_echo, argv[i]);
  }
  const char* design = argc > 1 ? argv[1] : "";
  check_opening(design, O_PATH | O_DIRECTORY, no_directory);
  check_opening(design, O_RDONLY | O_DIRECTORY, not_readable);
  x_survive_broken_pipes();
  return kivo_root(argc, argv);
}
