// The program entry: options and what they lead to. This process is a batch or becomes the program
// of the window.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string_view>
#include <vector>

#include "app/session/batch.h"
#include "app/session/installation.h"
#include "app/session/process.h"
#include "platform/files.h"
#include "platform/usage.h"

namespace {
constexpr char own_program[] = "/proc/self/exe";

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
    "Exit status of a batch: 0 no error, 1 errors, 2 could not start, 3 internal error.\n"};

// The session at a window takes the place of this process.
int run_window(char** argv) {
  const std::filesystem::path window = kv_window_program(own_program);
  execv(window.c_str(), argv);
  std::fprintf(stderr, "kivo: %s: %s\n", window.c_str(), x_why(errno).c_str());
  return 1;
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
  kv_find_installation(own_program);
  const int status = kv_run_batch(batch);
  std::fflush(nullptr);
  std::_Exit(status);  // the memory of the netlist is not given back piece by piece
}
}  // namespace

int main(int argc, char** argv) {
  kv_prepare_process();
  if (argc > 1 && argv[1][0] == '-' && argv[1][1] != 0) return run_with_options(argc, argv);
  kv_find_installation(own_program);
  return run_window(argv);
}
