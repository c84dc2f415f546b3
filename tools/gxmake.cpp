// gxmake: makes design directories from readable descriptions of symbols and sheets.
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "gx/db/file/file_records.h"
#include "gxmake/builder.h"
#include "gxmake/memory_array.h"
#include "gxmake/parser.h"
#include "gxmake/words.h"
#include "platform/usage.h"

namespace {

constexpr tool_t tool = {
    "gxmake",
    "usage: gxmake [-o DIRECTORY] [-a] [-q] DESCRIPTION...\n"
    "       gxmake [-o DIRECTORY] [-a] [-q] --array BLOCKS [--variants N]\n"
    "Makes the symbols and sheets that the descriptions hold below DIRECTORY (default: \".\").\n"
    "  -a  sheets name their symbols by absolute paths, so that the design can be opened from\n"
    "      anywhere (default: paths relative to DIRECTORY)\n"
    "  --array  makes the design \"array\" instead, a memory of BLOCKS blocks of about 540 leaf\n"
    "      instances (up to 2000: a million), with N different cells (1..8, default 1), and tells\n"
    "      how many records of each kind its netlist has\n"
    "  -q  prints messages about mistakes only\n"
    "The time in the files is that of SOURCE_DATE_EPOCH when it is set, else the present.\n"
    "  --help, --version\n"
    "The language of the descriptions is described in examples/README.md.\n"};

bool complain(const gxm_messages_t& messages) {
  for (const auto& message : messages) std::fprintf(stderr, "%s\n", message.c_str());
  return !messages.empty();
}

void tell_what_was_made(const std::filesystem::path& root, const std::vector<gxm_file_t>& files,
                        int array_blocks) {
  for (const auto& file : files)
    std::printf("%s: %d objects\n", (root / file.directory / file.data_name()).c_str(),
                file.file->object_id_max);
  if (array_blocks == 0) return;
  const auto counts = gxm_count_memory_array(array_blocks);
  std::printf(
      "its netlist: %d instances, %d pins, %d nets, %d net children, %d macros, %d macro pins\n",
      counts.leaves, counts.pins, counts.nets, counts.net_childs, counts.macros, counts.macro_pins);
}

}  // namespace

int main(int argc, char** argv) try {
  std::string_view directory = ".", blocks, variants = "1";
  bool absolute = false, quiet = false;
  std::vector<std::string_view> words;
  const tool_option_t read_options[] = {{.name = "-o", .value = &directory},
                                        {.name = "-a", .flag = &absolute},
                                        {.name = "-q", .flag = &quiet},
                                        {.name = "--array", .value = &blocks},
                                        {.name = "--variants", .value = &variants}};
  if (const auto ended = tool_read(tool, argc, argv, read_options, words)) return *ended;
  if (words.empty() && blocks.empty()) return tool_usage_error(tool, "no DESCRIPTION given");
  const std::filesystem::path root = directory;
  gxm_input_t input;
  for (const auto word : words) gxm_parse_file(std::string(word), input);
  int nb_blocks = 0;
  if (!blocks.empty()) {
    nb_blocks = gxm_integer(blocks, 1, gxm_most_array_blocks).value_or(0);
    const int nb_variants = gxm_integer(variants, 1, 8).value_or(0);
    if (nb_blocks == 0 || nb_variants == 0)
      return tool_usage_error(tool, "--array takes 1 to " + std::to_string(gxm_most_array_blocks) +
                                        " blocks, --variants 1 to 8");
    gxm_parse_text(gxm_memory_array(nb_blocks, nb_variants), "array", input);
  }
  if (complain(input.messages)) return 1;

  gxm_options_t options{.date = gxm_date_of_files(), .prefix = {}};
  // What is not there yet would stay relative.
  if (absolute)
    options.prefix =
        (std::filesystem::weakly_canonical(std::filesystem::absolute(root)) / "").string();
  gxm_messages_t messages;
  const auto files = gxm_build(input.design, options, messages);
  if (complain(messages)) return 1;
  gxm_write(files, root);
  if (!quiet) tell_what_was_made(root, files, nb_blocks);
  return tool_end(tool, 0);
} catch (const std::exception& error) {
  tool_complain(tool, error.what());
  return 1;
}
