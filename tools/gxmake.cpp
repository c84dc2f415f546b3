// gxmake: makes design directories from readable descriptions of symbols and sheets.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <exception>

#include "gx/db/file_records.h"
#include "gxmake/builder.h"
#include "gxmake/memory_array.h"
#include "gxmake/parser.h"

namespace {

constexpr char usage[] =
    "usage: gxmake [-o DIRECTORY] [-a] [-q] DESCRIPTION...\n"
    "       gxmake [-o DIRECTORY] [-a] [-q] --array BLOCKS [--variants N]\n"
    "Makes the symbols and sheets that the descriptions hold below DIRECTORY (default: \".\").\n"
    "  -a  sheets name their symbols by absolute paths, so that the design can be opened from\n"
    "      anywhere (default: paths relative to DIRECTORY)\n"
    "  --array  makes the design \"array\" instead, a memory of BLOCKS blocks of about 540 leaf\n"
    "      instances, with N different cells (1..8, default 1)\n"
    "  -q  prints messages about mistakes only\n"
    "The time in the files is that of SOURCE_DATE_EPOCH when it is set, else the present.\n"
    "The language of the descriptions is told in examples/README.md.\n";

// UTC, so that the same SOURCE_DATE_EPOCH gives the same bytes everywhere.
gxm_date_t date_of_files() {
  const char* const epoch = std::getenv("SOURCE_DATE_EPOCH");
  const std::time_t now = epoch ? std::strtoll(epoch, nullptr, 10) : std::time(nullptr);
  std::tm t{};
  gmtime_r(&now, &t);
  const auto i16 = [](int v) { return static_cast<std::int16_t>(v); };
  return {i16(t.tm_mday), i16(t.tm_mon + 1), i16(t.tm_year + 1900), i16(t.tm_hour), i16(t.tm_min)};
}

bool complain(const gxm_messages_t& messages) {
  for (const auto& message : messages) std::fprintf(stderr, "%s\n", message.c_str());
  return !messages.empty();
}

}  // namespace

int main(int argc, char** argv) try {
  std::filesystem::path root = ".";
  bool absolute = false, quiet = false;
  gxm_input_t input;
  int descriptions = 0, blocks = 0, variants = 1;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "-o") && i + 1 < argc) {
      root = argv[++i];
    } else if (!std::strcmp(argv[i], "-a")) {
      absolute = true;
    } else if (!std::strcmp(argv[i], "-q")) {
      quiet = true;
    } else if (!std::strcmp(argv[i], "--array") && i + 1 < argc) {
      blocks = std::atoi(argv[++i]);
    } else if (!std::strcmp(argv[i], "--variants") && i + 1 < argc) {
      variants = std::atoi(argv[++i]);
    } else if (argv[i][0] == '-') {
      std::fputs(usage, stderr);
      return 2;
    } else {
      gxm_parse_file(argv[i], input);
      ++descriptions;
    }
  }
  if (blocks >= 1 && blocks <= 500 && variants >= 1 && variants <= 8) {
    gxm_parse_text(gxm_memory_array(blocks, variants), "array", input);
    ++descriptions;
  }
  if (!descriptions) {
    std::fputs(usage, stderr);
    return 2;
  }
  if (complain(input.messages)) return 1;

  gxm_options_t options{.date = date_of_files(), .prefix = {}};
  if (absolute) options.prefix = (std::filesystem::weakly_canonical(root) / "").string();
  gxm_messages_t messages;
  const auto files = gxm_build(input.design, options, messages);
  if (complain(messages)) return 1;
  gxm_write(files, root);
  if (!quiet)
    for (const auto& file : files)
      std::printf("%s/%s.gx_1: %d objects\n", (root / file.directory).c_str(), file.base.c_str(),
                  file.file->object_id_max);
} catch (const std::exception& error) {
  std::fprintf(stderr, "gxmake: %s\n", error.what());
  return 1;
}
