// Places to look at, and what was read.
#include "import/lepton/library.h"

#include <algorithm>

#include "import/drawing/source_file.h"

namespace {

namespace fs = std::filesystem;

constexpr int deepest = 6;  // levels below a library

void add_place(std::vector<gxi_lepton_place_t>& places, const fs::path& directory, bool deep) {
  std::error_code none;
  if (fs::is_directory(directory, none)) places.push_back({directory, deep});
}

}  // namespace

gxi_lepton_library_t::gxi_lepton_library_t(const gxi_input_t& input, gxi_design_t& design)
    : design_(design) {
  const auto top = fs::absolute(input.pages.front()).lexically_normal();
  project_ = gxi_lepton_project(top, design.files, design.warnings);
  for (const auto& library : input.libraries) {
    add_place(symbols_, library, true);
    add_place(sheets_, library, true);
  }
  for (const auto& place : project_.symbols) add_place(symbols_, place.directory, place.deep);
  for (const auto& place : project_.sheets) add_place(sheets_, place.directory, place.deep);
  for (auto* const places : {&symbols_, &sheets_}) add_place(*places, top.parent_path(), false);
  // Where the programs keep their symbols, unless the project wants its own ones only.
  if (project_.has_installed)
    for (const char* const share : {"/usr/share/lepton-eda/sym", "/usr/local/share/lepton-eda/sym",
                                    "/usr/share/gEDA/sym", "/usr/local/share/gEDA/sym"})
      add_place(symbols_, share, true);
  for (const auto& place : symbols_) design.searched.push_back(place.directory.string());
}

const gxi_lepton_library_t::read_t& gxi_lepton_library_t::read(const fs::path& path) {
  auto& file = files_[path.lexically_normal()];
  if (!file.records) {
    const auto bytes = gxi_read_source(path);
    file.name = design_.files.emplace_back(path.lexically_normal().string());
    file.records =
        std::make_shared<const gxi_lepton_file_t>(gxi_lepton_read_file(bytes, file.name));
  }
  return file;
}

std::optional<fs::path> gxi_lepton_library_t::find(const std::vector<gxi_lepton_place_t>& places,
                                                   const fs::path& name) const {
  std::error_code none;
  if (name.is_absolute())
    return fs::is_regular_file(name, none) ? std::optional(name) : std::nullopt;
  for (const auto& place : places) {
    if (fs::is_regular_file(place.directory / name, none)) return place.directory / name;
    if (!place.deep) continue;
    const auto [below, is_new] = below_.try_emplace(place.directory);
    if (is_new) {
      fs::recursive_directory_iterator at(place.directory,
                                          fs::directory_options::skip_permission_denied, none);
      for (const fs::recursive_directory_iterator end; !none && at != end; at.increment(none)) {
        if (at.depth() >= deepest) at.disable_recursion_pending();
        // Of files of one name, the one whose path comes first.
        auto& path = below->second[at->path().filename().string()];
        if (path.empty() || at->path() < path) path = at->path();
      }
    }
    const auto found = below->second.find(name.filename().string());
    if (found != below->second.end() && fs::is_regular_file(found->second, none))
      return found->second;
  }
  return std::nullopt;
}

const gxi_lepton_symbol_t& gxi_lepton_library_t::symbol(const gxi_lepton_component_t& component,
                                                        std::string_view page) {
  const fs::path name(component.symbol);
  const auto fill = [&](std::unique_ptr<gxi_lepton_symbol_t>& symbol) {
    symbol = std::make_unique<gxi_lepton_symbol_t>();
    symbol->name = name.extension() == ".sym" ? name.stem().string() : name.string();
    symbol->file = page;
  };
  if (component.embedded) {
    // Copies of one symbol are one.
    auto& copies = embedded_[component.symbol];
    for (const auto& known : copies)
      if (*known->records == *component.embedded) return *known;
    auto& made = copies.emplace_back();
    fill(made);
    made->records = component.embedded;
    return *made;
  }
  auto& made = by_name_[component.symbol];
  if (made) return *made;
  fill(made);
  auto path = find(symbols_, name.filename());
  std::error_code none;
  const auto beside = fs::path(page).parent_path() / name.filename();
  if (!path && fs::is_regular_file(beside, none)) path = beside;
  if (path) {
    const auto& file = read(*path);
    made->file = file.name;
    made->records = file.records;
  } else {
    made->missing = true;
    design_.missing.insert(component.symbol);
    made->records = std::make_shared<const gxi_lepton_file_t>();
    gxm_complain(design_.warnings, {page, component.line.number},
                 "symbol " + component.symbol + " is not found; its pins are not joined");
  }
  return *made;
}

std::optional<fs::path> gxi_lepton_library_t::sheet(const std::string& name) const {
  return find(sheets_, name);
}
