// The program entry: options and what they lead to; the window's session, whose design directory is
// checked before anything is opened in it.
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <span>
#include <string_view>
#include <vector>

#include "app/session/batch.h"
#include "app/session/installation.h"
#include "app/session/window_front.h"
#include "gx/text/front.h"
#include "gx/text/status.h"
#include "platform/raw_files.h"
#include "platform/timing.h"
#include "platform/usage.h"

namespace {
constexpr tool_t program = {
    "kivo",
    "usage: kivo DESIGN [DO-FILE [ARGUMENT]...]\n"
    "       kivo --batch [-q] [--strict] [--trace] [--json] [--mark TEXT] DESIGN DO-FILE "
    "[ARGUMENT]...\n"
    "Opens the design directory DESIGN in a window on the X display and runs the commands of\n"
    "DO-FILE, in which $ARG1 to $ARG28 stand for the ARGUMENTs.\n"
    "  --batch      without a window: runs the commands, prints what they answer and ends; a\n"
    "               DO-FILE \"-\" is standard input, each line answered at once\n"
    "  -q, --quiet  prints only errors and warnings\n"
    "  --strict     takes warnings as errors\n"
    "  --json       prints one JSON object for each command line, with its lines and what they "
    "say\n"
    "               as data\n"
    "  --mark TEXT  prints the line TEXT after each answer\n"
    "  --trace      writes the traces debug_kivo and debug_kivo2, as the window does\n"
    "  --help, --version\n"
    "Exit status of a batch: 0 no error, 1 errors, 2 nothing to begin with, 3 a fatal stop.\n"};

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
  gx_end_process("\n !! Unrecoverable Error : no memory left ", gx_front().stop_status);
}

// No file of a session takes the place of a standard stream that the caller has closed: one that
// can neither be read nor written does, so that using it is an error.
void hold_standard_streams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    [[maybe_unused]] const int held = open("/dev/null", O_PATH);
  }
}

// With options: a batch, or an answer about the program itself.
int run_with_options(int argc, char** argv) {
  bool is_batch = false;
  kv_batch_t batch{.program = argv[0]};
  std::vector<std::string_view> words;
  const tool_option_t options[] = {
      {.name = "--batch", .flag = &is_batch},    {.name = "--quiet", .flag = &batch.quiet},
      {.name = "-q", .flag = &batch.quiet},      {.name = "--strict", .flag = &batch.strict},
      {.name = "--trace", .flag = &batch.trace}, {.name = "--json", .flag = &batch.json},
      {.name = "--mark", .value = &batch.mark}};
  if (const auto ended = tool_read(program, argc, argv, options, words, 2)) return *ended;
  if (!is_batch) return tool_usage_error(program, "options are for --batch");
  if (words.size() < 2) return tool_usage_error(program, "--batch wants a DESIGN and a DO-FILE");
  batch.design = words[0];
  batch.do_file = words[1];
  batch.arguments = std::span(words).subspan(2);
  survive_broken_pipes();
  kv_find_installation("/proc/self/exe");
  const int status = kv_run_batch(batch);
  std::fflush(nullptr);
  std::_Exit(status);  // the memory of the netlist is not given back piece by piece
}
}  // namespace

int main(int argc, char** argv) {
  hold_standard_streams();
  std::set_new_handler(end_without_memory);
  if (argc > 1 && argv[1][0] == '-' && argv[1][1] != 0) return run_with_options(argc, argv);
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
  survive_broken_pipes();
  kv_find_installation("/proc/self/exe");
  return kivo_root(argc, argv);
}
