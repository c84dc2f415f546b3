// gximport: makes a design directory from a drawing of another editor.
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "import/build/output.h"
#include "import/drawing/source_file.h"
#include "import/formats.h"
#include "platform/usage.h"

namespace {

// "xschem or lepton", "a, b or c".
std::string names_of_formats() {
  std::string names;
  const auto formats = gxi_formats();
  for (std::size_t i = 0; i < formats.size(); ++i) {
    if (i > 0) names += i + 1 < formats.size() ? ", " : " or ";
    names += formats[i].name;
  }
  return names;
}

const std::string help =
    "usage: gximport [OPTION]... -o DIRECTORY TOP.sch [PAGE.sch...]\n"
    "Makes DIRECTORY/CELL/symbol.gx and sheet.gx of a drawing and of all cells below it, and\n"
    "DIRECTORY/expand.do, which expands the design: cd DIRECTORY && kivo TOP expand.do\n"
    "DIRECTORY/check.do, which checks it, is made, too.\n"
    "  -o DIRECTORY   where the design goes; a file there is replaced by a new version only where\n"
    "                 its contents changed\n"
    "  -L LIBRARY     where symbols are looked for first; may be given again\n"
    "  --format NAME  " +
    names_of_formats() +
    " (default: recognised from the file)\n"
    "  --number NAME  keeps the property NAME of instances as a number: its values are written\n"
    "                 plain (10u as 0.00001); may be given again\n"
    "  --absolute     sheets name their symbols by absolute paths\n"
    "  -q, --quiet    prints errors only\n"
    "  --help, --version\n"
    "Exit status: 0 imported, 1 refused (nothing is written), 2 wrong options.\n";
const tool_t tool = {"gximport", help};

constexpr std::size_t head_of_file = 256;  // bytes that a format is recognised from

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
    return tool_usage_error(tool,
                            "unknown format " + std::string(format) + ": " + names_of_formats());

  gxi_input_t input;
  input.pages.assign(words.begin(), words.end());
  input.libraries.assign(libraries.begin(), libraries.end());
  gxi_output_t output{.root = root, .date = gxm_date_of_files()};
  output.numbers.assign(numbers.begin(), numbers.end());
  output.absolute = absolute;
  const auto& top = input.pages.front();
  if (!known) known = gxi_format_of(gxi_read_head(top, head_of_file));
  if (!known) gxi_refuse({top.native(), 1}, "no drawing of a known format");

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
