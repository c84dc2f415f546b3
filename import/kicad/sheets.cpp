// Files by their paths, variables by where they are used.
#include "import/kicad/sheets.h"

#include <algorithm>
#include <utility>

#include "gx/text/strings.h"
#include "import/drawing/source_file.h"

namespace fs = std::filesystem;
using loaded_t = gxi_kicad_loaded_t;

gxi_kicad_sheets_t::gxi_kicad_sheets_t(const fs::path& top, gxi_design_t& design)
    : design_(design), variables_(gxi_kicad_project_variables(top)), top_(&load(top)) {
  std::error_code none;
  has_project_ = fs::is_regular_file(fs::path(top).replace_extension(".kicad_pro"), none);
  walk(*top_, "Root", "/");
}

loaded_t& gxi_kicad_sheets_t::load(const fs::path& path) {
  const auto [found, is_new] = files_.emplace(path.string(), nullptr);
  if (!is_new) return *found->second;
  found->second = std::make_unique<loaded_t>();
  auto& loaded = *found->second;
  loaded.path = path;
  loaded.name = design_.files.emplace_back(path.string());
  loaded.records = gxi_kicad_read_records(gxi_read_source(path), loaded.name);
  if (loaded.records.images > 0)
    gxm_complain(design_.warnings, {loaded.name, 1},
                 std::to_string(loaded.records.images) +
                     (loaded.records.images == 1 ? " picture is" : " pictures are") + " left out");
  return loaded;
}

fs::path gxi_kicad_sheets_t::path_of(const loaded_t& from, const gxi_kicad_block_t& block) const {
  const fs::path file = gxi_kicad_substitute(
      block.file(), [&](std::string_view name) { return project_variable(name); });
  return file.is_absolute() ? file : (from.path.parent_path() / file).lexically_normal();
}

void gxi_kicad_sheets_t::walk(loaded_t& from, std::string_view use, const std::string& way) {
  if (!walked_.insert(&from).second) return;
  from.use = use;
  from.way = way;
  for (const auto& [name, members] : from.records.aliases) aliases_.emplace(name, members);
  for (const auto& block : from.records.blocks)
    walk(load_below(from, block), block.name(), way + std::string(block.name()) + "/");
}

loaded_t& gxi_kicad_sheets_t::load_below(const loaded_t& from, const gxi_kicad_block_t& block) {
  const auto path = path_of(from, block);
  std::error_code none;
  if (!fs::exists(path, none))
    gxi_refuse({from.name, block.line}, "the sheet " + path.string() + " is missing");
  return load(path);
}

std::optional<std::string> gxi_kicad_sheets_t::project_variable(std::string_view name) const {
  const auto found = variables_.find(name);
  return found == variables_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string> gxi_kicad_sheets_t::variable(const loaded_t& from,
                                                        std::string_view name) const {
  static constexpr std::pair<std::string_view, std::string_view> of_title[] = {
      {"TITLE", "title"},       {"ISSUE_DATE", "date"},   {"REVISION", "rev"},
      {"COMPANY", "company"},   {"COMMENT1", "comment1"}, {"COMMENT2", "comment2"},
      {"COMMENT3", "comment3"}, {"COMMENT4", "comment4"}, {"COMMENT5", "comment5"},
      {"COMMENT6", "comment6"}, {"COMMENT7", "comment7"}, {"COMMENT8", "comment8"},
      {"COMMENT9", "comment9"}};
  if (name == "FILENAME") return from.path.filename().string();
  if (name == "PROJECTNAME") return has_project_ ? top_->path.stem().string() : "";
  if (name == "SHEETNAME") return from.use;
  if (name == "SHEETPATH") return from.way;
  for (const auto& [variable, keyword] : of_title)
    if (variable == name)
      for (const auto& [key, value] : from.records.title)
        if (key == keyword) return value;
  return project_variable(name);
}

std::string gxi_kicad_sheets_t::text(const loaded_t& from, std::string_view text) const {
  return gxi_kicad_substitute(text, [&](std::string_view name) { return variable(from, name); });
}

std::string gxi_kicad_sheets_t::name(const loaded_t& from, std::string_view text) const {
  return gxi_kicad_unescaped(this->text(from, text));
}

std::string gxi_kicad_sheets_t::field_text(const loaded_t& from,
                                           const std::vector<gxi_kicad_field_t>& fields,
                                           const std::string& reference,
                                           std::string_view text) const {
  return gxi_kicad_substitute(text, [&](std::string_view name) -> std::optional<std::string> {
    if (name == "REFERENCE") return reference;
    for (const auto& field : fields) {
      const bool same =
          std::equal(name.begin(), name.end(), field.name.begin(), field.name.end(),
                     [](char a, char b) { return gx_upper_case(a) == gx_upper_case(b); });
      if (same) return field.value.text;
    }
    return variable(from, name);
  });
}
