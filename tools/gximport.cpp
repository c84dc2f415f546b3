// gximport: makes a design directory from a drawing of another editor.
#include <cstdio>
#include <exception>
#include <fstream>
#include <string>
#include <vector>

#include "import/build/output.h"
#include "import/formats.h"
#include "platform/usage.h"

namespace {

constexpr tool_t tool = {
    "gximport",
    "usage: gximport [OPTION]... -o DIRECTORY TOP.sch [PAGE.sch...]\n"
    "Makes DIRECTORY/CELL/symbol.gx and sheet.gx of a drawing and of all cells below it, and\n"
    "DIRECTORY/expand.do, which expands the design: cd DIRECTORY && kivo TOP expand.do\n"
    "  -o DIRECTORY   where the design goes; a file there is replaced by a new version only where\n"
    "                 its contents changed\n"
    "  -L LIBRARY     where symbols are looked for first; may be given again\n"
    "  --format NAME  xschem or lepton (default: told from the file)\n"
    "  --number NAME  keeps the property NAME of instances as a number: its values are written\n"
    "                 plain (10u as 0.00001); may be given again\n"
    "  --absolute     sheets name their symbols by absolute paths\n"
    "  -q, --quiet    says nothing but mistakes\n"
    "  --help, --version\n"
    "Exit status: 0 imported, 1 refused (nothing is written), 2 wrong options.\n"};

std::string head_of(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error(path.string() + ":1: cannot be read");
  std::string head(256, '\0');
  in.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(in.gcount()));
  return head;
}

}  // namespace

int main(int argc, char** argv) try {
  std::string_view root, format;
  std::vector<std::string_view> libraries, numbers, words;
  bool absolute = false, quiet = false;
  const tool_option_t options[] = {{.name = "-o", .value = &root},
                                   {.name = "-L", .values = &libraries},
                                   {.name = "--format", .value = &format},
                                   {.name = "--number", .values = &numbers},
                                   {.name = "--absolute", .flag = &absolute},
                                   {.name = "-q", .flag = &quiet},
                                   {.name = "--quiet", .flag = &quiet}};
  if (const auto ended = tool_read(tool, argc, argv, options, words)) return *ended;
  if (root.empty()) return tool_usage_error(tool, "no -o DIRECTORY given");
  if (words.empty()) return tool_usage_error(tool, "no TOP.sch given");
  const auto* known = gxi_format_named(format);
  if (!format.empty() && !known)
    return tool_usage_error(tool, "unknown format " + std::string(format));

  gxi_input_t input;
  input.pages.assign(words.begin(), words.end());
  input.libraries.assign(libraries.begin(), libraries.end());
  gxi_output_t output{.root = root, .date = gxm_date_of_files()};
  output.numbers.assign(numbers.begin(), numbers.end());
  output.absolute = absolute;
  if (format.empty()) known = gxi_format_of(head_of(input.pages.front()));
  if (!known)
    throw std::runtime_error(input.pages.front().string() + ":1: no drawing of a known format");

  auto design = known->read(input);
  const auto sum = gxi_write(design, output);
  if (quiet) return 0;
  std::printf("%s: %d cells, %d sheets, %d instances, %d nets; %d of %d files written\n",
              output.root.c_str(), sum.cells, sum.sheets, sum.instances, sum.nets, sum.written,
              sum.files);
  if (!design.warnings.empty())
    std::printf("%zu notes in %s\n", design.warnings.size(),
                (output.root / "gximport.log").c_str());
  return tool_end(tool, 0);
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
