#include "import/drawing/hierarchy.h"

#include "import/drawing/source_file.h"

namespace {

namespace fs = std::filesystem;

constexpr int most_levels = 28;

std::string normal_name(const fs::path& sheet) { return sheet.lexically_normal().string(); }

}  // namespace

gxi_hierarchy_t::found_t gxi_hierarchy_t::cell(const void* symbol, const std::string& key,
                                               std::span<const fs::path> sheets,
                                               const gxm_source_t& component) {
  for (const auto& sheet : sheets)
    if (open_.contains(normal_name(sheet)))
      gxi_refuse(component, normal_name(sheet) + " contains itself");
  const auto [found, is_new] =
      cells_.emplace(std::pair(symbol, key), static_cast<int>(design_.cells.size()));
  if (is_new) design_.cells.emplace_back();
  return {found->second, is_new};
}

gxi_hierarchy_t::level_t gxi_hierarchy_t::enter(std::span<const fs::path> sheets) {
  if (levels_ >= most_levels)
    gxi_refuse({normal_name(sheets.front()), 1},
               "more than " + std::to_string(most_levels) + " levels");
  std::set<std::string> files;
  for (const auto& sheet : sheets) files.insert(normal_name(sheet));
  return {*this, std::move(files)};
}

gxi_hierarchy_t::level_t::level_t(gxi_hierarchy_t& hierarchy, std::set<std::string> sheets)
    : hierarchy_(hierarchy), sheets_(std::move(sheets)) {
  ++hierarchy_.levels_;
  hierarchy_.open_.insert(sheets_.begin(), sheets_.end());
}

gxi_hierarchy_t::level_t::~level_t() {
  --hierarchy_.levels_;
  for (const auto& sheet : sheets_) hierarchy_.open_.erase(sheet);
}
