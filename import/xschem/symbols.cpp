// Looks symbols up, and applies their attributes.
#include "import/xschem/symbols.h"

#include <algorithm>

#include "gx/text/numbers.h"
#include "import/drawing/source_file.h"
#include "import/xschem/labels.h"
#include "import/xschem/project.h"
#include "import/xschem/sheet_symbol.h"

namespace {

namespace fs = std::filesystem;

// Pins that are numbered for the simulator are in that order.
void order_pins(std::vector<gxi_xschem_pin_t>& pins) {
  const auto number = [](const gxi_xschem_pin_t& pin) {
    return gx_whole_number<int>(pin.attributes.get("sim_pinnumber"));
  };
  if (std::all_of(pins.begin(), pins.end(), [&](const auto& pin) { return number(pin); }))
    std::stable_sort(pins.begin(), pins.end(),
                     [&](const auto& a, const auto& b) { return *number(a) < *number(b); });
}

void find_doubled(std::vector<gxi_xschem_pin_t>& pins) {
  std::map<std::string_view, int> first;
  for (std::size_t i = 0; i < pins.size(); ++i) {
    const auto [found, is_new] = first.emplace(pins[i].attributes.get("name"), static_cast<int>(i));
    if (!is_new) pins[i].same_as = found->second;
  }
}

std::string_view pin_type(std::string_view direction) {
  return direction == "in" ? "IN" : direction == "out" ? "OUT" : "IO";
}

}  // namespace

gxi_xschem_role_t gxi_xschem_role(std::string_view type, std::string_view format) {
  if (type == "label") return gxi_xschem_role_t::label;
  if (type == "ipin" || type == "opin" || type == "iopin") return gxi_xschem_role_t::port;
  if (type == "bus_tap") return gxi_xschem_role_t::bus_tap;
  if (type == "noconn") return gxi_xschem_role_t::noconn;
  if (type == "subcircuit") return gxi_xschem_role_t::device;
  if (type.starts_with("netlist_")) return gxi_xschem_role_t::picture;
  format.remove_prefix(std::min(format.find_first_not_of(" \t\n"), format.size()));
  if (format.empty() || std::string_view("*./").find(format.front()) != std::string_view::npos)
    return gxi_xschem_role_t::picture;
  return gxi_xschem_role_t::device;
}

gxi_xschem_library_t::gxi_xschem_library_t(const gxi_input_t& input, gxi_design_t& design)
    : design_(design) {
  std::error_code none;
  const auto look_in = [&](const fs::path& directory) {
    if (fs::is_directory(directory, none) &&
        std::ranges::find(libraries_, directory) == libraries_.end())
      libraries_.push_back(directory);
  };
  const auto add = [&](const fs::path& directory) {
    look_in(directory);
    look_in(directory / "devices");
  };
  for (const auto& library : input.libraries) add(library);
  // Where the project says, above the top sheet, then where the program itself keeps its symbols.
  const auto top = fs::absolute(input.pages.front()).lexically_normal();
  const auto project = gxi_xschem_project(top, design.files, design.warnings);
  scope_.variables.insert(project.variables.begin(), project.variables.end());
  for (const auto& library : project.libraries) look_in(library);
  auto above = top.parent_path();
  for (int level = 0; level < 4 && above.has_relative_path(); ++level) {
    add(above);
    above = above.parent_path();
  }
  for (const auto& library : project.installed) add(library);
  for (const auto& library : libraries_) design.searched.push_back(library.string());
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
  auto records = gxi_xschem_read_records(bytes, {name, 0}, design_.warnings);
  for (const auto& component : records.components) {
    if (component.attributes.find("tcleval(") == std::string::npos) continue;
    const gxi_xschem_attributes_t attributes(component.attributes);
    for (const auto& [attribute, value] : attributes.all()) gxi_xschem_take_tcl(value, scope_);
  }
  return {std::move(records), name};
}

std::unique_ptr<gxi_xschem_symbol_t> gxi_xschem_library_t::make(const std::string& name,
                                                                gxi_xschem_file_t records,
                                                                std::string_view file) const {
  auto symbol = std::make_unique<gxi_xschem_symbol_t>();
  symbol->scope = &scope_;
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
    pin.any_width = pin.bits.size() == 1 && pin.bits.front().find(':') != std::string::npos;
    pin.type = pin_type(attributes.get("dir"));
    pin.ignored = attributes.get("spice_ignore") == "true";
    pin.at = {(shape.points[0].x + shape.points[1].x) / 2,
              (shape.points[0].y + shape.points[1].y) / 2};
    pin.attributes = std::move(attributes);
  }
  order_pins(symbol->pins);
  find_doubled(symbol->pins);
  symbol->role = gxi_xschem_role(symbol->type, symbol->attributes.get("format"));
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
      if (path->extension() == ".sch") {
        if (!begun_.insert(*path).second)
          gxi_refuse({sheet.native(), component.line}, path->string() + " contains itself");
        records = gxi_xschem_symbol_of_sheet(*this, records, *path);
        begun_.erase(*path);
      }
      made = make(name, std::move(records), file);
      made->path = *path;
    } else {
      made = make(name, {}, {});
      made->missing = true;
      design_.missing.insert(name);
    }
  }
  return *(known = made.get());
}
