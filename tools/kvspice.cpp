// kvspice: an expanded design as a deck for SPICE.
//
// Each leaf instance becomes the lines that the file "deck" has of it (docs/deck.md), or else one
// line: its name, its nets in the order of its pins, the values of its kept properties. Texts are
// written as they are (MODEL, VALUE), numbers as NAME=value with their middle value unless they are
// 0. What a run must keep for this: CLASS, the letter of the device, as a string.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "deck/deck_file.h"
#include "deck/write/deck.h"
#include "kvi/load.h"
#include "platform/files.h"
#include "platform/json.h"
#include "platform/usage.h"

namespace {

constexpr tool_t tool{
    "kvspice",
    "usage: kvspice [OPTION]... DESIGN [INCLUDE...]\n"
    "Writes a SPICE netlist of the design that KIVO expanded in the directory DESIGN, or whose\n"
    "design file is DESIGN. The lines of instances are those of the file \"deck\" in that\n"
    "directory or the one above, where there is one. The INCLUDE files (models, analyses) are\n"
    "included at its end.\n"
    "  -o FILE         writes to FILE, not to standard output\n"
    "  --hierarchy     writes a subcircuit for each cell, not one flat netlist\n"
    "  --lvs           the same to be compared with a layout: devices without prefixes,\n"
    "                  *.PININFO, no models and analyses\n"
    "  --global-ports  with --lvs: globals are ports of every subcircuit, not .global\n"
    "  --save NAMES    flat: values of devices that the simulator is to keep beside the nets:\n"
    "                  gm,id,vdsat of all transistors (M, J), i,p of R, C, L, V and I, q:ic of\n"
    "                  the devices Q\n"
    "  --help          prints this\n"
    "  --version       prints the version\n"};

int fail(const std::string& message) {
  tool_complain(tool, message);
  return 1;
}

// The file "deck" of the design, which need not have one. "" or what is wrong with it.
std::string read_deck(const std::string& design, dk_cells_t& cells) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::path path(design);
  const fs::path own = fs::is_directory(path, error) ? path : path.parent_path();
  constexpr std::size_t largest = std::size_t{1} << 30;
  for (const fs::path& directory : {own, own / ".."}) {
    const std::string file = (directory / dk_file_name).lexically_normal().string();
    std::string text;
    if (x_read_regular(file, text, largest)) {
      const std::string wrong = dk_read(text, cells);
      return wrong.empty() ? wrong : file + ": " + wrong;
    }
    if (!x_is_missing(errno)) return file + ": " + x_why_unread(errno);
  }
  return {};
}

// "gm,id,q:ic"; false when it is no such list.
bool read_saved(std::string_view list, std::vector<dk_saved_t>& saved) {
  while (!list.empty()) {
    const std::string_view item = list.substr(0, list.find(','));
    list.remove_prefix(std::min(item.size() + 1, list.size()));
    const auto colon = item.find(':');
    const std::string_view name = colon == item.npos ? item : item.substr(colon + 1);
    const bool is_name = !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
      return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    });
    if (!is_name || colon == 0) return false;
    const bool is_of_two_ends = name == "i" || name == "p";
    saved.push_back({colon != item.npos ? std::string(item.substr(0, colon))
                     : is_of_two_ends   ? "RCLVI"
                                        : "MJ",
                     std::string(name)});
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  std::string_view file, saved;
  dk_options_t deck;
  std::vector<std::string_view> words;
  const tool_option_t options[] = {{.name = "-o", .value = &file},
                                   {.name = "--hierarchy", .flag = &deck.hierarchy},
                                   {.name = "--lvs", .flag = &deck.lvs},
                                   {.name = "--global-ports", .flag = &deck.global_ports},
                                   {.name = "--save", .value = &saved}};
  if (const auto status = tool_read(tool, argc, argv, options, words)) return *status;
  if (words.empty()) return tool_usage_error(tool, "no DESIGN given");
  if (deck.global_ports && !deck.lvs) return tool_usage_error(tool, "--global-ports is for --lvs");
  if (!read_saved(saved, deck.saved))
    return tool_usage_error(tool, "no list of values: " + x_escaped(saved));
  deck.hierarchy |= deck.lvs;
  if (deck.hierarchy && !deck.saved.empty())
    return tool_usage_error(tool, "--save is for flat netlists");
  const std::string path(words[0]), title = x_escaped(path);
  words.erase(words.begin());
  for (const std::string_view include : words) {
    if (include.find('"') != include.npos || x_escaped(include) != include) {
      return tool_usage_error(tool, "a name that SPICE cannot include: " + x_escaped(include));
    }
  }
  deck.title = title;
  deck.includes = words;
  kvi_design_t design;
  const kvi_loaded_t loaded = kvi_open_design(design, path);
  if (loaded.result != kvi_load_result::loaded) return fail(loaded.message);
  dk_cells_t cells;
  if (const auto wrong = read_deck(path, cells); !wrong.empty()) return fail(x_escaped(wrong));

  const std::string out_path(file);
  std::optional<x_fresh_file> own;
  if (!out_path.empty() && !own.emplace(out_path)) return fail(out_path + ": " + x_why(errno));
  std::FILE* const out = own ? own->get() : stdout;
  const dk_output_t output{
      .line =
          [&](std::string_view line) {
            const std::string text = x_escaped(line);
            std::fwrite(text.data(), 1, text.size(), out);
            std::fputc('\n', out);
          },
      .complain = [](const std::string& what) { tool_complain(tool, x_escaped(what)); }};
  const int status = dk_write_deck(design, cells, deck, output) ? 0 : 1;
  if (!design.is_unchanged()) return fail(kvi_changed_message(path));
  if (own && !own->put_in_place()) return fail(out_path + ": " + x_why(errno));
  return tool_end(tool, status);
}
