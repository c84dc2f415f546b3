// The components that a run has met.
#include "expand/sheet_cache.h"

#include "expand/messages.h"
#include "gx/db/files.h"

namespace {

constexpr std::string_view sheet_of_inst = "!! Error : Sheet of INStance ";

gx_file_version_t current_version(std::string_view directory, std::string_view filetype) {
  gx_file_version_t version = gx_file_get_file_version(directory, filetype);
  // A link file without a number is as good as none.
  version.found = version.found && version.valid;
  return version;
}

void read_sheet(kv_component_t& component, std::vector<kv_global_net_record_t>& globals) {
  const gx_file_version_t version = current_version(component.directory, "sheet");
  component.sheet_state = kv_component_t::missing;
  if (!version.found) return;
  const gx_load_t load = gx_load_file(gx_view(version.file_pathname));
  if (load.code != gx_code::all_is_ok) {
    component.sheet_state = kv_component_t::damaged;
    component.why_damaged = load.message;
    return;
  }
  component.sheet_state = kv_component_t::found;
  component.has_primary = load.file->primary_object > 0;
  component.is_checked = load.file->check_data_done == 0;
  component.has_no_error = load.file->num_errors <= 0;
  component.sheet = kv_analyse_sheet(*load.file, gx_view(version.file_pathname), globals);
}

void tell_error(std::string_view label, std::string_view path, std::string_view tail) {
  kv_tell_quoted(label, path, tail);
  kv_count_error();
}

}  // namespace

kv_component_t& kv_component_of(kv_sheet_cache_t& cache, const kv_sheet_t& sheet,
                                kv_sheet_symbol_t& symbol) {
  if (symbol.component < 0) {
    const std::string directory(sheet.view(symbol.directory));
    const auto next = static_cast<std::int32_t>(cache.components.size());
    const auto [at, is_new] = cache.by_directory.try_emplace(directory, next);
    symbol.component = at->second;
    if (is_new) {
      auto& component = *cache.components.emplace_back(std::make_unique<kv_component_t>());
      const gx_file_version_t version = current_version(directory, "symbol");
      component.directory = directory;
      component.symbol_found = version.found;
      component.symbol_version = version.version;
    }
  }
  return *cache.components[static_cast<std::size_t>(symbol.component)];
}

kv_sheet_t* kv_get_sheet_for_expand(kv_sheet_cache_t& cache, const kv_sheet_t& sheet,
                                    kv_sheet_symbol_t& symbol) {
  kv_component_t& component = kv_component_of(cache, sheet, symbol);
  const std::string_view path = sheet.view(symbol.path);
  if (!component.symbol_found) {
    tell_error("!! Error : Symbol of Symbol  ", path, "   not found ?");
  } else if (!symbol.version_valid) {
    tell_error("!! Error : Symbol File Version of ", path, "  Invalid ? ");
  } else if (symbol.version != component.symbol_version) {
    kv_tell_quoted("!! Warning : using old version of : ", path);
    kv_count_warning();
  }

  if (component.sheet_state == kv_component_t::unknown) read_sheet(component, cache.globals);
  if (component.sheet_state == kv_component_t::missing) {
    tell_error("!! Error : Sheet of INStance  ", path, "  not found ? ");
    return nullptr;
  }
  if (component.sheet_state == kv_component_t::damaged) {
    tell_error(sheet_of_inst, path, "  not found ? ");
    kv_tell("# !! : ", component.why_damaged);
    return nullptr;
  }
  if (!component.has_primary) tell_error(sheet_of_inst, path, "  Invalid ? ");
  constexpr std::string_view unchecked = "#  !! Error : Sheet of INStance ";
  if (!component.is_checked) tell_error(unchecked, path, "  NOT CHECKED ? ");
  if (!component.has_no_error) tell_error(unchecked, path, "  WITH Error(s) ? ");
  return &component.sheet;
}
