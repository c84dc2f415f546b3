// Versions, links, the DO file and the log.
#include "import/build/output.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>

#include "gx/db/file/link_file.h"
#include "gx/db/file/record_codec.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"
#include "import/build/builder.h"
#include "import/build/divide/division.h"
#include "import/build/fit.h"
#include "import/build/flat_size.h"
#include "import/drawing/numbers.h"
#include "import/drawing/parameters.h"
#include "platform/files.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t most_kept = 16;      // of each PROPerty list
constexpr std::size_t longest_path = 199;  // of a symbol
// Limits per kind of record and on characters: the default, and the most that STOre SIZe takes.
constexpr std::int64_t store_at_start = 500'000, store_at_most = 2'000'000'000;

std::runtime_error trouble(const fs::path& path, const std::string& what) {
  return std::runtime_error(path.string() + ": " + what);
}

// A file that comes into place when all are written.
struct waiting_t {
  fs::path aside, place;
};

class writer {
 public:
  writer(gxi_design_t& design, const gxi_output_t& output) : design_(design), output_(output) {}

  gxi_summary_t run() {
    gxi_fit(design_);
    gxi_write_numbers(design_, output_.numbers);
    const auto room = most_kept - std::min(most_kept, output_.numbers.size() + 1);
    parameters_ = gxi_number_names(design_, room);
    gxi_write_numbers(design_, parameters_);
    gxi_divide(design_);
    is_new_ = !fs::exists(output_.root);
    if (!is_new_ && !fs::is_directory(output_.root))
      throw trouble(output_.root, "exists and is not a directory");
    name_aside();
    try {
      write_cells();
      add(output_.root / "expand.do", do_file());
      add(output_.root / "check.do", check_file());
      for (const auto& file : design_.beside) add(output_.root / file.name, file.text);
      if (const auto deck = deck_file(); !deck.empty()) add(output_.root / dk_file_name, deck);
      add(output_.root / "gximport.log", log());
      come_into_place();
    } catch (...) {
      std::error_code ignored;
      fs::remove_all(aside_, ignored);
      throw;
    }
    return summary_;
  }

 private:
  // Beside the root, so that files can be renamed into it.
  void name_aside() {
    auto beside = fs::absolute(output_.root).lexically_normal();
    if (beside.filename().empty()) beside = beside.parent_path();
    aside_ = beside.string() + ".new-" + std::to_string(::getpid());
  }

  void add(const fs::path& place, std::string_view bytes) {
    const auto relative = place.lexically_relative(output_.root);
    const auto aside = aside_ / relative;
    std::error_code error;
    fs::create_directories(aside.parent_path(), error);
    if (error) throw trouble(aside.parent_path(), error.message());
    if (!x_replace_file(aside.string(), bytes))
      throw trouble(aside, "cannot be written: " + x_why(errno));
    waiting_.push_back({aside, place});
  }

  void come_into_place() {
    std::error_code error;
    if (is_new_) {
      fs::create_directories(fs::absolute(output_.root).parent_path(), error);
      fs::rename(aside_, fs::absolute(output_.root).lexically_normal(), error);
      if (error) throw trouble(output_.root, error.message());
      return;
    }
    // Links last: until then the directory shows what it showed.
    std::stable_partition(waiting_.begin(), waiting_.end(),
                          [](const waiting_t& file) { return file.place.extension() != ".gx"; });
    for (const auto& file : waiting_) {
      fs::create_directories(file.place.parent_path(), error);
      fs::rename(file.aside, file.place, error);
      if (error) throw trouble(file.place, error.message());
    }
    fs::remove_all(aside_, error);
  }

  void write_cells() {
    const std::string prefix =
        output_.absolute ? (fs::weakly_canonical(output_.root) / "").string() : "";
    for (const auto& cell : design_.cells) {
      const auto version =
          write(cell.name, "symbol", build(cell, "symbol", [&] { return gxi_build_symbol(cell); }));
      paths_.push_back({prefix + cell.name + "/symbol.gx_" + std::to_string(version), version});
      if (paths_.back().path.size() > longest_path)
        throw trouble(paths_.back().path, "is too long for the path of a symbol");
    }
    const auto path_of = [this](int cell) { return gx_at(paths_, cell); };
    for (const auto& cell : design_.cells) {
      if (!cell.notes.empty()) add(output_.root / cell.name / "notes.txt", cell.notes);
      if (!cell.sheet) continue;
      write(cell.name, "sheet",
            build(cell, "sheet", [&] { return gxi_build_sheet(design_, cell, path_of); }));
      ++summary_.sheets;
      for (const auto& instance : cell.sheet->instances)
        summary_.instances += instance.kind == gxi_kind::part;
      summary_.nets += static_cast<int>(cell.sheet->nets.size());
    }
    summary_.cells = static_cast<int>(design_.cells.size());
    summary_.top = gx_at(design_.cells, design_.top).name;
  }

  template <typename Build>
  gxi_tree_t build(const gxi_cell_t& cell, const std::string& what, Build build_it) {
    try {
      return build_it();
    } catch (const gxm_too_many_objects& error) {
      gxm_messages_t message;
      gxm_complain(message, cell.sheet ? cell.sheet->source : cell.symbol.source,
                   "the " + what + " of " + cell.name + " has " + error.what() +
                       (cell.sheet && what == "sheet" ? ", and cannot be divided further" : ""));
      throw std::runtime_error(message.front());
    }
  }

  // The version that holds these objects: the current one when it does so already.
  std::int16_t write(const std::string& directory, const std::string& base,
                     const gxi_tree_t& tree) {
    auto& file = *tree;
    gx_set_file_date(file, output_.date);
    ++summary_.files;
    const fs::path place = output_.root / directory;
    std::int16_t version = 1;
    if (!is_new_) {
      auto names = gx_file_get_file_version(place.string(), base);
      if (!names.valid) throw trouble(place / (base + ".gx"), "names no version");
      if (names.found && holds(std::string(gx_view(names.file_pathname)), file))
        return names.version;
      version = names.version;
      while (version < INT16_MAX && fs::exists(place / name_of(base, version))) ++version;
    }
    ++summary_.written;
    add(place / name_of(base, version), gx_encode_file(file));
    std::string link = "_" + std::to_string(version);
    link.resize(std::max<std::size_t>(link.size(), 10), ' ');
    add(place / (base + ".gx"), link + "\n");
    return version;
  }

  static std::string name_of(const std::string& base, int version) {
    return base + ".gx_" + std::to_string(version);
  }

  // Whether the file on disk is the same but for its date.
  static bool holds(const std::string& path, gx_file_gene_recf_t& file) {
    const auto old = gx_load_file(path);
    if (!old.file) return false;
    const gx_date_t date = gx_file_date(file);
    gx_set_file_date(file, gx_file_date(*old.file));
    std::string bytes;
    if (x_read_regular(path, bytes, SIZE_MAX) && gx_encode_file(file) == bytes) return true;
    gx_set_file_date(file, date);
    return false;
  }

  // --- the commands of an expansion
  static bool can_be_typed(const std::string& name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
      return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
             std::string_view("_-.+").find(c) != std::string_view::npos;
    });
  }

  std::string kept(std::string_view what, const std::vector<std::string>& names,
                   const std::string& at_least) {
    std::vector<std::string> list;
    const auto has = [](const auto& names_of, const std::string& name) {
      return std::any_of(names_of.begin(), names_of.end(),
                         [&](const auto& other) { return gx_iden(other, name); });
    };
    list.push_back(at_least);
    for (const auto& name : output_.numbers)
      if (what == "INStance" && can_be_typed(name) && !has(list, name)) list.push_back(name);
    for (const auto& name : names)
      if (can_be_typed(name) && !has(list, name)) list.push_back(name);
    if (list.size() > most_kept) {
      std::string left;
      for (std::size_t i = most_kept; i < list.size(); ++i) left += " " + list[i];
      design_.warnings.push_back("an expansion keeps 16 properties; these are not kept:" + left);
      list.resize(most_kept);
    }
    std::string lines;
    for (const auto& name : list) {
      const bool number =
          what == "INStance" && (has(output_.numbers, name) || has(parameters_, name));
      lines += "PROPerty " + std::string(what) + (number ? " R " : " S ") + name + "\n";
    }
    return lines;
  }

  std::string do_file() {
    return "PRIMitive " + design_.primitive + "\n" +
           kept("INStance", design_.kept_of_instances, design_.primitive) +
           kept("PIN", design_.kept_of_pins, "PINTYPE") + kept("NET", design_.kept_of_nets, "NET") +
           store_size() + "GENerate DATa ON\nRUN\nBYE\n";
  }

  std::string check_file() const {
    return "PRIMitive " + design_.primitive + "\n" + store_size() + "CHEck DESign\nBYE\n";
  }

  // Where the design needs more room than there is at the start.
  std::string store_size() const {
    const auto needed = gxi_flat_size(design_);
    if (needed <= store_at_start) return {};
    const auto rounded = (needed / 100'000 + 1) * 100'000;
    return "STOre SIZe " + std::to_string(std::min(rounded, store_at_most)) + "\n";
  }

  // "" when the drawing says nothing of decks.
  std::string deck_file() {
    dk_cells_t cells;
    bool any = false;
    for (auto& cell : design_.cells) {
      auto& deck = cells[cell.name] = std::move(cell.deck);
      if (cell.sheet)
        for (auto& instance : cell.sheet->instances)
          if (instance.kind == gxi_kind::part && !instance.deck.empty())
            deck.instances.push_back({instance.name, std::move(instance.deck)});
      any |= !deck.instances.empty();
    }
    const auto& top = gx_at(design_.cells, design_.top);
    for (const auto& pin : top.symbol.pins)
      cells[top.name].ports.emplace_back(pin.name, pin.type == "IN"    ? "I"
                                                   : pin.type == "OUT" ? "O"
                                                                       : "B");
    return any ? dk_write(cells) : std::string();
  }

  std::string log() const {
    std::string text;
    const auto count = [&](auto number, const char* what) {
      text += gxi_counted(static_cast<std::size_t>(number), what) + "\n";
    };
    count(summary_.cells, "cell");
    count(summary_.sheets, "sheet");
    count(summary_.instances, "instance");
    count(summary_.nets, "net");
    count(design_.warnings.size(), "note");
    for (const auto& warning : design_.warnings) text += warning + "\n";
    return text;
  }

  gxi_design_t& design_;
  const gxi_output_t& output_;
  fs::path aside_;
  bool is_new_ = false;
  std::vector<waiting_t> waiting_;
  std::vector<gxi_symbol_path_t> paths_;  // by cell
  std::vector<std::string> parameters_;   // that are numbers by themselves
  gxi_summary_t summary_;
};

}  // namespace

std::string gxi_counted(std::size_t number, std::string_view what) {
  return std::to_string(number) + " " + std::string(what) + (number == 1 ? "" : "s");
}

gxi_summary_t gxi_write(gxi_design_t& design, const gxi_output_t& output) {
  return writer(design, output).run();
}
