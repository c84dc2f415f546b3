// kvverilog: an expanded design as structural Verilog.
#include <cerrno>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "export/verilog.h"
#include "kvi/load.h"
#include "platform/files.h"
#include "platform/usage.h"

namespace {

constexpr tool_t tool{
    "kvverilog",
    "usage: kvverilog [--flat] [-o FILE] DESIGN\n"
    "Writes structural Verilog of the design that KIVO expanded in the directory DESIGN, or whose\n"
    "design file is DESIGN: a module for each block and for each kind of part.\n"
    "  --flat      writes one module that holds all parts\n"
    "  --top NAME  names the top module; without it \"top\"\n"
    "  -o FILE     writes to FILE, not to standard output\n"
    "  --help      prints this\n"
    "  --version   prints the version\n"};

int fail(const std::string& message) {
  tool_complain(tool, message);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  bool flat = false;
  std::string_view file, top = "top";
  std::vector<std::string_view> words;
  const tool_option_t options[] = {{.name = "--flat", .flag = &flat},
                                   {.name = "--top", .value = &top},
                                   {.name = "-o", .value = &file}};
  if (const auto status = tool_read(tool, argc, argv, options, words)) return *status;
  if (words.size() != 1) return tool_usage_error(tool, "give one DESIGN");
  const std::string path(words[0]), out_path(file);
  kvi_design_t design;
  const kvi_loaded_t loaded = kvi_open_design(design, path);
  if (loaded.result != kvi_load_result::loaded) return fail(loaded.message);

  std::optional<x_fresh_file> own;
  if (!out_path.empty() && !own.emplace(out_path)) return fail(out_path + ": " + x_why(errno));
  kv_write_verilog(design, top, flat, own ? own->get() : stdout);
  if (!design.is_unchanged()) return fail(kvi_changed_message(path));
  if (own && !own->put_in_place()) return fail(out_path + ": " + x_why(errno));
  return tool_end(tool, 0);
}
