#include "app/find/drawings.h"

#include "app/sheet/walk.h"
#include "gx/db/link_file.h"
#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/db/queries.h"
#include "gx/db/record_codec.h"
#include "gx/db/sheet_shape.h"
#include "gx/text/strings.h"

const gx_file_gene_recf_t* kv_drawings_t::top() const {
  const auto file_index = kv_at_level(1).file_index;
  return file_index >= 1 ? &gx_ptrto_gene_file_buf(file_index) : nullptr;
}

const gx_file_gene_recf_t* kv_drawings_t::below(const gx_file_gene_recf_t& sheet, int inst) {
  const auto directory = kv_sheet_directory(sheet, inst);
  if (directory.len == 0) return nullptr;
  const auto [at, is_new] = sheets_.try_emplace(std::string(gx_view(directory)));
  if (is_new) {
    const auto version = gx_file_get_file_version(gx_view(directory), "sheet");
    if (version.found && version.valid) {
      const auto load = gx_load_file(gx_view(version.file_pathname));
      if (load.file && gx_sheet_fault(*load.file).empty()) at->second = load.file;
    }
  }
  return at->second.get();
}

namespace {
// Names may hold a "/" themselves, so every instance whose name the rest begins with is tried.
bool find_way(kv_drawings_t& drawings, const gx_file_gene_recf_t* sheet, std::string_view rest,
              kv_way_t& way) {
  if (sheet == nullptr || static_cast<int>(way.size()) >= kv_max_levels) return false;
  if (rest.empty()) return true;
  for (const int inst : lb_instances(*sheet)) {
    if (gx_inq_object_deleted(*sheet, inst)) continue;
    const std::string name = lb_inst_name(*sheet, inst);
    if (rest.size() < name.size() || !gx_iden(rest.substr(0, name.size()), name)) continue;
    std::string_view further = rest.substr(name.size());
    if (!further.empty() && further.front() != '/') continue;
    if (!further.empty()) further.remove_prefix(1);
    way.push_back({inst, name, kv_sheet_directory(*sheet, inst)});
    if (find_way(drawings, drawings.below(*sheet, inst), further, way)) return true;
    way.pop_back();
  }
  return false;
}
}  // namespace

std::optional<kv_way_t> kv_way_to(kv_drawings_t& drawings, std::string_view sheet_path) {
  if (sheet_path.starts_with('/')) sheet_path.remove_prefix(1);
  if (sheet_path.ends_with('/')) sheet_path.remove_suffix(1);
  kv_way_t way;
  if (!find_way(drawings, drawings.top(), sheet_path, way)) return std::nullopt;
  return way;
}
