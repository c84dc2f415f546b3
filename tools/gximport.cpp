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
    "  --strict       ends with status 3 where symbols are missing\n"
    "  -q, --quiet    prints errors only\n"
    "  --help, --version\n"
    "Exit status: 0 imported, 1 refused (nothing is written), 2 wrong options,\n"
    "3 with --strict: imported, with symbols missing.\n";
const tool_t tool = {"gximport", help};

void complain_of_missing(const gxi_design_t& design) {
  constexpr std::size_t most_named = 3;
  std::string text = gxi_counted(design.missing.size(), "symbol") + " missing: ";
  std::size_t named = 0;
  for (const auto& name : design.missing) {
    if (named == most_named) break;
    text += (named++ > 0 ? ", " : "") + name;
  }
  if (design.missing.size() > most_named) text += " ...";
  for (const auto& directory : design.searched) text += "\n  looked in " + directory;
  if (!design.searched.empty()) text += "\n  -L DIRECTORY names a further library";
  tool_complain(tool, text);
}

constexpr std::size_t head_of_file = 256;  // bytes that a format is recognised from

}  // namespace

int main(int argc, char** argv) try {
  std::string_view root, format;
  std::vector<std::string_view> libraries, numbers, words;
  bool absolute = false, strict = false, quiet = false;
  const tool_option_t options[] = {{.name = "-o", .value = &root},
                                   {.name = "-L", .values = &libraries},
                                   {.name = "--format", .value = &format},
                                   {.name = "--number", .values = &numbers},
                                   {.name = "--absolute", .flag = &absolute},
                                   {.name = "--strict", .flag = &strict},
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
  const bool lacks = !design.missing.empty();
  if (lacks && (strict || !quiet)) complain_of_missing(design);
  const int ended = strict && lacks ? 3 : 0;
  if (quiet) return ended;
  const auto counted = [](int number, const char* what) {
    return gxi_counted(static_cast<std::size_t>(number), what);
  };
  tool_print(stdout, output.root.string() + ": " + counted(sum.cells, "cell") + ", " +
                         counted(sum.sheets, "sheet") + ", " + counted(sum.instances, "instance") +
                         ", " + counted(sum.nets, "net") + "; " + std::to_string(sum.written) +
                         " of " + counted(sum.files, "file") + " written\n");
  if (!design.warnings.empty())
    tool_print(stdout, gxi_counted(design.warnings.size(), "note") + " in " +
                           (output.root / "gximport.log").string() + "\n");
  const std::string top_cell(sum.top);
  const bool is_here = output.root.lexically_normal() == ".";
  tool_print(stdout, "wrote " + top_cell + ": kivo " + top_cell +
                         (is_here ? "" : " (in " + output.root.string() + ")") + "\n");
  return tool_end(tool, ended);
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
