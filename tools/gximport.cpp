// gximport: makes a design directory from a drawing of another editor.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <exception>
#include <fstream>
#include <sstream>

#include "import/output.h"
#include "import/readers.h"

namespace {

constexpr char usage[] =
    "usage: gximport [OPTION]... -o DIRECTORY TOP.sch [PAGE.sch...]\n"
    "Makes DIRECTORY/CELL/symbol.gx and sheet.gx of a drawing and of all cells below it, and\n"
    "DIRECTORY/expand.do, which expands the design: cd DIRECTORY && kivo TOP expand.do\n"
    "  -o DIRECTORY   where the design goes; a file there is replaced by a new version only where\n"
    "                 its contents changed\n"
    "  -L LIBRARY     where symbols are looked for first; may be given again\n"
    "  --format NAME  xschem (default: told from the file)\n"
    "  --number NAME  keeps the property NAME of instances as a number: its values are written\n"
    "                 plain (10u as 0.00001); may be given again\n"
    "  --absolute     sheets name their symbols by absolute paths\n"
    "  -q, --quiet    says nothing but mistakes\n"
    "  --help, --version\n"
    "Exit status: 0 imported, 1 refused (nothing is written), 2 wrong options.\n";

gxm_date_t date_of_files() {
  const char* const epoch = std::getenv("SOURCE_DATE_EPOCH");
  const std::time_t now = epoch ? std::strtoll(epoch, nullptr, 10) : std::time(nullptr);
  std::tm t{};
  gmtime_r(&now, &t);
  const auto i16 = [](int v) { return static_cast<std::int16_t>(v); };
  return {i16(t.tm_mday), i16(t.tm_mon + 1), i16(t.tm_year + 1900), i16(t.tm_hour), i16(t.tm_min)};
}

int wrong_usage() {
  std::fputs(usage, stderr);
  return 2;
}

bool looks_like_xschem(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error(path.string() + ":1: cannot be read");
  std::string head(256, '\0');
  in.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(in.gcount()));
  return gxi_is_xschem(head);
}

}  // namespace

int main(int argc, char** argv) try {
  gxi_input_t input;
  gxi_output_t output{.root = {}, .date = date_of_files()};
  std::string format;
  bool quiet = false;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    const bool more = i + 1 < argc;
    if (word == "--help") {
      std::fputs(usage, stdout);
      return 0;
    }
    if (word == "--version") {
      std::puts("gximport (KIVO) 2.02");
      return 0;
    }
    if (word == "-o" && more)
      output.root = argv[++i];
    else if (word == "-L" && more)
      input.libraries.emplace_back(argv[++i]);
    else if (word == "--format" && more)
      format = argv[++i];
    else if (word == "--number" && more)
      output.numbers.emplace_back(argv[++i]);
    else if (word == "--absolute")
      output.absolute = true;
    else if (word == "-q" || word == "--quiet")
      quiet = true;
    else if (word.size() > 1 && word[0] == '-')
      return wrong_usage();
    else
      input.pages.emplace_back(word);
  }
  if (output.root.empty() || input.pages.empty()) return wrong_usage();
  if (!format.empty() && format != "xschem") return wrong_usage();
  if (format.empty() && !looks_like_xschem(input.pages.front()))
    throw std::runtime_error(input.pages.front().string() + ":1: no drawing of a known format");

  auto design = gxi_read_xschem(input);
  const auto sum = gxi_write(design, output);
  if (quiet) return 0;
  std::printf("%s: %d cells, %d sheets, %d instances, %d nets; %d of %d files written\n",
              output.root.c_str(), sum.cells, sum.sheets, sum.instances, sum.nets, sum.written,
              sum.files);
  if (!design.warnings.empty())
    std::printf("%zu notes in %s\n", design.warnings.size(),
                (output.root / "gximport.log").c_str());
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
