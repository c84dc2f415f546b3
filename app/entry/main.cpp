// The program entry: checks the design directory before anything is opened in it.
#include <fcntl.h>
#include <signal.h>

#include <cstdio>
#include <cstdlib>
#include <new>

#include "app/session/installation.h"
#include "app/session/root.h"
#include "gx/text/status.h"
#include "gx/vext.h"
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

// Opens the path and closes it again; the end of the process, with the message, when that fails.
void check_opening(const char* path, int flags, const char* failure) {
  const x_descriptor file(xfopen(path, flags | O_CLOEXEC, 0));
  if (!file) {
    std::printf(failure, path);
    std::exit(1);
  }
  xdelayms(1);
}

// A simulator that goes away while a request is written is an error of that request, not the end
// of the program. A handler, unlike SIG_IGN, is not inherited by the programs that this one starts.
void survive_broken_pipes() {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  sigaction(SIGPIPE, &action, nullptr);
}

// What is open is closed with what it holds.
void end_without_memory() {
  std::set_new_handler(nullptr);
  gx_end_process("\n !! Unrecoverable Error : no memory left ", 1);
}
}  // namespace

int main(int argc, char** argv) {
  gx_vext.debugfile = nullptr;
  gx_vext.cursessfile = nullptr;
  if (argc < 1) {
    std::printf(" !! Unrecoverable Error : Invalid argument number:%2d  < 1 \n", argc);
    return 1;
  }
  for (int i = 0; i < argc; ++i) {
    cut_word(argv[i]);
    std::printf(" argument : %2d\n   '%.*s' \n", i, max_echo, argv[i]);
  }
  const char* design = argc > 1 ? argv[1] : "";
  check_opening(design, O_PATH | O_DIRECTORY, no_directory);
  check_opening(design, O_RDONLY | O_DIRECTORY, not_readable);
  survive_broken_pipes();
  kv_find_installation("/proc/self/exe");
  std::set_new_handler(end_without_memory);
  kivo_root(argc, argv);
  constexpr int ended_by_signal = 128;
  return x_stop_signal() == 0 ? 0 : ended_by_signal + x_stop_signal();
}
