// Looking symbols up, and what their attributes make of them.
#include "import/xschem/symbols.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <stdexcept>

#include "gx/text/strings.h"
#include "import/drawing/netlist_text.h"
#include "import/drawing/source_file.h"
#include "import/xschem/labels.h"

namespace {

namespace fs = std::filesystem;

std::vector<std::string> words_of(std::string_view text) {
  std::vector<std::string> words;
  std::istringstream in{std::string(text)};
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

bool ends_nodes(std::string_view word) {
  constexpr auto values = std::to_array<std::string_view>(
      {"@value", "@model", "@symname", "@VOL", "@FUNC", "@func", "@cur", "@CUR", "@table"});
  return word.find('=') != std::string_view::npos ||
         std::find(values.begin(), values.end(), word) != values.end();
}

// A word of the format in its nodes: the pins and the texts.
class node_reader {
 public:
  explicit node_reader(gxi_xschem_symbol_t& symbol) : symbol_(symbol), taken_(symbol.pins.size()) {}

  void run() {
    const auto words = words_of(symbol_.attributes.get("format"));
    const std::string prefix(symbol_.defaults.get("spiceprefix"));
    const std::string first = prefix + std::string(symbol_.defaults.get("name"));
    const auto most =
        static_cast<std::size_t>(gxi_spice_nodes(first.empty() ? 'X' : first.front()));
    std::size_t end = 1;
    while (end < words.size() && !ends_nodes(words[end])) ++end;
    // The last word of a call names what is called.
    const bool calls = most == gxi_any_nodes;
    if (calls && end > 1 && (end == words.size() || words[end].find('=') != std::string::npos) &&
        !is_pins(words[end - 1]))
      --end;
    for (std::size_t i = 1; i < end; ++i) take(words[i], most);
    for (std::size_t i = 0; i < taken_.size(); ++i) take_pin(i);
  }

 private:
  static bool is_pins(std::string_view word) {
    return word == "@pinlist" || word.substr(0, 2) == "@@" || word.substr(0, 2) == "@#";
  }

  void take_pin(std::size_t pin) {
    if (pin >= taken_.size() || taken_[pin]) return;
    taken_[pin] = true;
    symbol_.nodes.push_back({.pin = static_cast<int>(pin)});
    count_ += symbol_.pins[pin].bits.size();
  }

  void take(const std::string& word, std::size_t most) {
    if (word == "@pinlist") {
      for (std::size_t i = 0; i < taken_.size(); ++i) take_pin(i);
    } else if (word.rfind("@@", 0) == 0) {
      const auto name = word.substr(2, word.find_first_of("\\)") - 2);
      for (std::size_t i = 0; i < taken_.size(); ++i)
        if (symbol_.pins[i].attributes.get("name") == name) take_pin(i);
    } else if (word.rfind("@#", 0) == 0) {
      std::size_t number = 0;
      for (const char c : word.substr(2)) {
        if (c < '0' || c > '9' || number > 100000) break;
        number = number * 10 + static_cast<std::size_t>(c - '0');
      }
      take_pin(number);
    } else if (count_ < most) {
      const auto name = word.front() == '@' ? word.substr(1) : "N" + std::to_string(count_ + 1);
      symbol_.nodes.push_back({.name = name, .text = word});
      ++count_;
    }
  }

  gxi_xschem_symbol_t& symbol_;
  std::vector<bool> taken_;
  std::size_t count_ = 0;
};

gxi_xschem_role_t role_of(const gxi_xschem_symbol_t& symbol) {
  const auto& type = symbol.type;
  if (type == "label") return gxi_xschem_role_t::label;
  if (type == "ipin" || type == "opin" || type == "iopin") return gxi_xschem_role_t::port;
  if (type == "bus_tap") return gxi_xschem_role_t::bus_tap;
  if (type == "subcircuit") return gxi_xschem_role_t::device;
  if (type == "netlist_commands" || type == "netlist_options") return gxi_xschem_role_t::picture;
  auto format = symbol.attributes.get("format");
  format.remove_prefix(std::min(format.find_first_not_of(" \t\n"), format.size()));
  if (format.empty() || format.front() == '*' || format.front() == '.' || format.front() == '/' ||
      format.substr(0, 8) == "tcleval(")
    return gxi_xschem_role_t::picture;
  return gxi_xschem_role_t::device;
}

std::string_view pin_type(std::string_view direction) {
  return direction == "in" ? "IN" : direction == "out" ? "OUT" : "IO";
}

}  // namespace

gxi_xschem_library_t::gxi_xschem_library_t(const gxi_input_t& input, gxi_design_t& design)
    : design_(design) {
  std::error_code none;
  const auto add = [&](const fs::path& directory) {
    for (const auto& at : {directory, directory / "devices"})
      if (fs::is_directory(at, none)) libraries_.push_back(at);
  };
  for (const auto& library : input.libraries) add(library);
  // Above the top sheet, then where the program itself keeps its symbols.
  auto above = fs::absolute(input.pages.front()).lexically_normal().parent_path();
  for (int level = 0; level < 4 && above.has_relative_path(); ++level) {
    add(above);
    above = above.parent_path();
  }
  for (const char* const prefix : {"/usr/share/xschem", "/usr/local/share/xschem"})
    add(fs::path(prefix) / "xschem_library");
}

std::optional<fs::path> gxi_xschem_library_t::find(const std::string& name,
                                                   const fs::path& sheet) const {
  std::error_code none;
  const fs::path wanted(name);
  if (wanted.is_absolute())
    return fs::is_regular_file(wanted, none) ? std::optional(wanted) : std::nullopt;
  for (const auto& library : libraries_)
    if (fs::is_regular_file(library / wanted, none)) return library / wanted;
  for (const auto& beside : {sheet.parent_path() / wanted, sheet.parent_path() / wanted.filename()})
    if (fs::is_regular_file(beside, none)) return beside;
  return std::nullopt;
}

std::pair<gxi_xschem_file_t, std::string_view> gxi_xschem_library_t::read(const fs::path& path) {
  const auto bytes = gxi_read_source(path);
  const std::string_view name = design_.files.emplace_back(path.lexically_normal().string());
  return {gxi_xschem_read_records(bytes, {name, 0}, design_.warnings), name};
}

std::unique_ptr<gxi_xschem_symbol_t> gxi_xschem_library_t::make(const std::string& name,
                                                                gxi_xschem_file_t records,
                                                                std::string_view file) const {
  auto symbol = std::make_unique<gxi_xschem_symbol_t>();
  symbol->name = fs::path(name).stem().string();
  symbol->file = file;
  symbol->records = std::move(records);
  symbol->attributes = gxi_xschem_attributes_t(symbol->records.global);
  symbol->defaults = gxi_xschem_attributes_t(symbol->attributes.get("template"));
  symbol->type = symbol->attributes.get("type");
  for (const auto& shape : symbol->records.shapes) {
    if (shape.kind != 'B' || shape.layer != gxi_xschem_pin_layer) continue;
    gxi_xschem_attributes_t attributes(shape.attributes);
    if (attributes.find("name") == nullptr) continue;
    auto& pin = symbol->pins.emplace_back();
    pin.bits = gxi_xschem_bits(attributes.get("name"));
    pin.type = pin_type(attributes.get("dir"));
    pin.at = {(shape.points[0].x + shape.points[1].x) / 2,
              (shape.points[0].y + shape.points[1].y) / 2};
    pin.attributes = std::move(attributes);
  }
  symbol->role = role_of(*symbol);
  if (symbol->role == gxi_xschem_role_t::device) node_reader(*symbol).run();
  return symbol;
}

const gxi_xschem_symbol_t& gxi_xschem_library_t::symbol(const gxi_xschem_component_t& component,
                                                        const fs::path& sheet) {
  // A name without an ending is one of the first versions.
  std::string name = component.symbol;
  if (!fs::path(name).has_extension()) name += ".sym";
  // An embedded symbol is the one of all components of its name on the sheet.
  auto& known = by_name_[{sheet.string(), name}];
  if (component.embedded && (known == nullptr || known->missing)) {
    const std::string_view file = design_.files.emplace_back(sheet.lexically_normal().string());
    auto& made = by_path_[sheet.string() + "\n" + name];
    made = make(name, *component.embedded, file);
    return *(known = made.get());
  }
  if (known != nullptr) return *known;
  const auto path = find(name, sheet);
  auto& made = by_path_[path ? path->lexically_normal().string() : sheet.string() + "\n" + name];
  if (!made) {
    if (path) {
      auto [records, file] = read(*path);
      made = make(name, std::move(records), file);
      made->path = *path;
    } else {
      made = make(name, {}, {});
      made->missing = true;
    }
  }
  return *(known = made.get());
}
