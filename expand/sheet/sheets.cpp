#include "expand/sheet/sheets.h"

#include <algorithm>
#include <unordered_set>

#include "expand/sheet/sheet_analysis.h"
#include "expand/sheet/sheet_slots.h"
#include "gx/db/file/link_file.h"
#include "gx/db/file/record_codec.h"
#include "gx/db/file/sheet_shape.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"

namespace {

gx_file_version_t current_version(std::string_view directory, std::string_view filetype) {
  gx_file_version_t version = gx_file_get_file_version(directory, filetype);
  // A link file without a number is as good as none.
  if (version.link_value.len > 0) version.why.clear();
  version.found = version.found && version.valid;
  return version;
}

void look_symbol_up(kv_component_t& component) {
  if (component.symbol_looked_up) return;
  const gx_file_version_t version = current_version(component.directory, "symbol");
  component.symbol_looked_up = true;
  component.symbol_found = version.found;
  component.why_no_symbol = version.why;
  component.symbol_version = version.version;
}

void take_file(kv_component_t& component, std::shared_ptr<const gx_file_gene_recf_t> file) {
  component.sheet_state = kv_component_t::found;
  component.has_primary = file->primary_object > 0;
  component.is_checked = file->check_data_done == 0;
  component.has_no_error = file->num_errors <= 0;
  component.file = std::move(file);
}

class downward_walk {
 public:
  downward_walk(kv_sheets_t& sheets, const kv_sheet_visitor_t& visitor)
      : sheets_(sheets), visitor_(visitor) {}

  void visit(kv_component_t& component, const std::string& path, int level) {
    if (!entered_.insert(&component).second || !visitor_.enter(component, path)) return;
    kv_sheet_t& sheet = component.sheet;
    for (auto& symbol : sheet.symbols) {
      const kv_sheet_inst_t* block = kv_first_block(sheet, symbol);
      if (block == nullptr) continue;
      kv_component_t& below = kv_component_of(sheets_, sheet, symbol);
      if (!below.symbol_found) continue;
      if (kv_analysed(sheets_, below) != nullptr && level < kv_max_levels)
        visit(below, path + std::string(sheet.view(block->suffix)), level + 1);
      visitor_.leave(sheet, symbol, below);
    }
  }

 private:
  kv_sheets_t& sheets_;
  const kv_sheet_visitor_t& visitor_;
  std::unordered_set<const kv_component_t*> entered_;
};

}  // namespace

void kv_set_top(kv_sheets_t& sheets, const gx_file_gene_recf_t& file, std::string_view file_path) {
  take_file(sheets.top, {std::shared_ptr<const void>(), &file});
  sheets.top.sheet_path = file_path;
}

kv_component_t& kv_component_at(kv_sheets_t& sheets, std::string_view directory) {
  const auto next = static_cast<std::int32_t>(sheets.components.size());
  const auto [at, is_new] = sheets.by_directory.try_emplace(std::string(directory), next);
  if (!is_new) return *gx_at(sheets.components, at->second);
  auto& component = *sheets.components.emplace_back(std::make_unique<kv_component_t>());
  component.directory = directory;
  return component;
}

kv_component_t& kv_component_of(kv_sheets_t& sheets, const kv_sheet_t& sheet,
                                kv_sheet_symbol_t& symbol) {
  if (symbol.component < 0) {
    auto& component = kv_component_at(sheets, sheet.view(symbol.directory));
    symbol.component = sheets.by_directory.at(component.directory);
    look_symbol_up(component);
  }
  return *gx_at(sheets.components, symbol.component);
}

bool kv_read_sheet(kv_component_t& component) {
  if (component.sheet_state != kv_component_t::unknown)
    return component.sheet_state == kv_component_t::found;
  const gx_file_version_t version = current_version(component.directory, "sheet");
  component.sheet_state = kv_component_t::missing;
  component.why_no_sheet = version.why;
  if (!version.found) return false;
  component.sheet_path = gx_view(version.file_pathname);
  gx_load_t load = gx_load_file(component.sheet_path);
  if (load.code != gx_code::all_is_ok) {
    component.sheet_state = kv_component_t::damaged;
    component.why_no_sheet = load.message;
    return false;
  }
  component.fault = gx_sheet_fault(*load.file);
  take_file(component, std::move(load.file));
  return true;
}

kv_sheet_t* kv_analysed(kv_sheets_t& sheets, kv_component_t& component) {
  if (!kv_read_sheet(component)) return nullptr;
  if (!component.is_analysed) {
    component.sheet =
        kv_analyse_sheet(*component.file, component.sheet_path, *sheets.setup, sheets.globals);
    component.is_analysed = true;
    if (!sheets.keeps_files) component.file.reset();
  }
  return &component.sheet;
}

kv_sheet_inst_t* kv_first_block(kv_sheet_t& sheet, const kv_sheet_symbol_t& symbol) {
  const auto first = sheet.insts.begin() + symbol.first_inst;
  const auto end = first + symbol.nb_of_inst;
  const auto block = std::find_if(first, end, [](const auto& i) { return !i.is_primitive; });
  return block != end ? &*block : nullptr;
}

void kv_walk_down(kv_sheets_t& sheets, const kv_sheet_visitor_t& visitor) {
  downward_walk(sheets, visitor).visit(sheets.top, "", 1);
}
