#include "app/find/drawings.h"

#include "app/sheet/walk.h"
#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/db/queries.h"
#include "gx/text/strings.h"

kv_drawings_t::kv_drawings_t(const kv_setup_t* setup) {
  sheets_.setup = setup;
  sheets_.keeps_files = true;
  const auto file_index = kv_at_level(1).file_index;
  if (file_index >= 1) kv_set_top(sheets_, gx_ptrto_gene_file_buf(file_index), "");
}

kv_component_t* kv_drawings_t::component_in(const gx_string_record_t& directory) {
  if (directory.len == 0) return nullptr;
  auto& component = kv_component_at(sheets_, gx_view(directory));
  return kv_read_sheet(component) && component.fault.empty() ? &component : nullptr;
}

const gx_file_gene_recf_t* kv_drawings_t::below(const gx_file_gene_recf_t& sheet, int inst) {
  const auto* component = component_in(kv_sheet_directory(sheet, inst));
  return component != nullptr ? component->file.get() : nullptr;
}

namespace {

class drawing_walk {
 public:
  drawing_walk(kv_drawings_t& drawings, const kv_drawing_visitor_t& visitor)
      : drawings_(drawings), visitor_(visitor) {}

  void visit(kv_component_t& component, const std::string& path) {
    const kv_walked_t walked{component, path, way_};
    std::vector<kv_next_t> all = visitor_(walked);
    if (static_cast<int>(way_.size()) + 1 >= kv_max_levels) return;
    // Instances of one symbol mostly follow one another: its sheet is looked up once.
    int symbol = -1;
    gx_string_record_t directory;
    kv_component_t* below = nullptr;
    for (auto& next : all) {
      const auto* inst = gx_object_as<gx_object_instance_rec_t>(walked.sheet(), next.inst);
      if (inst->symbol != symbol) {
        symbol = inst->symbol;
        directory = kv_sheet_directory(walked.sheet(), next.inst);
        below = drawings_.component_in(directory);
      }
      if (below == nullptr) continue;
      way_.push_back({next.inst, std::move(next.name), directory});
      visit(*below, path + "/" + way_.back().name);
      way_.pop_back();
    }
  }

 private:
  kv_drawings_t& drawings_;
  const kv_drawing_visitor_t& visitor_;
  kv_way_t way_;
};

bool begins_with(std::string_view path, std::string_view part) {
  return path.size() >= part.size() && gx_iden(path.substr(0, part.size()), part) &&
         (path.size() == part.size() || path[part.size()] == '/');
}

}  // namespace

void kv_walk_drawings(kv_drawings_t& drawings, kv_component_t& from, const std::string& path,
                      const kv_drawing_visitor_t& visitor) {
  drawing_walk(drawings, visitor).visit(from, path);
}

std::optional<kv_way_t> kv_way_to(kv_drawings_t& drawings, std::string_view sheet_path) {
  while (sheet_path.ends_with('/')) sheet_path.remove_suffix(1);
  std::string wanted(sheet_path);
  if (!wanted.empty() && !wanted.starts_with('/')) wanted.insert(0, 1, '/');
  std::optional<kv_way_t> way;
  // Names may hold a "/" themselves, so every instance whose name the path goes on with is tried.
  const auto visit = [&](const kv_walked_t& walked) {
    std::vector<kv_next_t> all;
    if (way) return all;
    if (walked.path.size() == wanted.size()) {
      way = walked.way;
      return all;
    }
    for (const int inst : lb_instances(walked.sheet())) {
      if (gx_inq_object_deleted(walked.sheet(), inst)) continue;
      std::string name = lb_inst_name(walked.sheet(), inst);
      if (begins_with(wanted, walked.path + "/" + name)) all.push_back({inst, std::move(name)});
    }
    return all;
  };
  if (auto* top = drawings.top_component()) kv_walk_drawings(drawings, *top, "", visit);
  return way;
}
