#include "app/find/search_drawings.h"

#include "app/sheet/walk.h"
#include "expand/sheet_analysis.h"
#include "expand/store.h"
#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/db/queries.h"

namespace {

class drawing_search {
 public:
  drawing_search(kv_drawings_t& drawings, std::string_view key, bool is_beginning, std::size_t most)
      : drawings_(drawings), key_(key), is_beginning_(is_beginning), most_(most) {}

  // `path` is that of the sheet, "" at the top.
  void visit(const gx_file_gene_recf_t& sheet, const std::string& path, int level) {
    for (const int inst : lb_instances(sheet)) {
      if (is_part(sheet, inst)) take_instance(sheet, inst, path);
    }
    for (const int net : lb_nets(sheet)) {
      if (!gx_inq_object_deleted(sheet, net)) take_net(sheet, net, path);
    }
    for (const int inst : lb_instances(sheet)) {
      if (is_part(sheet, inst)) take_pins(sheet, inst, path);
    }
    if (level >= kv_max_levels) return;
    for (const int inst : lb_instances(sheet)) {
      if (is_full()) return;
      if (!is_part(sheet, inst)) continue;
      const std::string inside = path + "/" + lb_inst_name(sheet, inst);
      if (!may_be_below(inside)) continue;
      if (const auto* below = block(sheet, inst)) visit(*below, inside, level + 1);
    }
  }

  std::vector<kv_found_t> found;

 private:
  bool is_full() const { return found.size() >= most_; }

  static bool is_part(const gx_file_gene_recf_t& sheet, int inst) {
    return !gx_inq_object_deleted(sheet, inst) && kv_role_of(sheet, inst) == kv_inst_role::part;
  }

  const gx_file_gene_recf_t* block(const gx_file_gene_recf_t& sheet, int inst) {
    return kv_found_primitive(kv_sext, sheet, inst) ? nullptr : drawings_.below(sheet, inst);
  }

  bool may_be_below(const std::string& path) const {
    const std::string key = kv_path_key(path);
    if (is_beginning_ && key.starts_with(key_)) return true;
    return key_.size() > key.size() && key_.starts_with(key) && key_[key.size()] == '/';
  }

  void take(const std::string& path, std::string_view what, int id, const std::string& sheet_path) {
    const std::string key = kv_path_key(path);
    if (is_full() || !(is_beginning_ ? key.starts_with(key_) : key == key_)) return;
    found.push_back({path, what, id, sheet_path});
  }

  void take_instance(const gx_file_gene_recf_t& sheet, int inst, const std::string& sheet_path) {
    const std::string path = sheet_path + "/" + lb_inst_name(sheet, inst);
    if (may_be_below(path) || kv_path_key(path) == key_)
      take(path, block(sheet, inst) != nullptr ? "block" : "instance", inst, sheet_path);
  }

  void take_pins(const gx_file_gene_recf_t& sheet, int inst, const std::string& sheet_path) {
    const std::string path = sheet_path + "/" + lb_inst_name(sheet, inst);
    if (!may_be_below(path)) return;
    for (const auto [pin, pinpropfam] : lb_pins(sheet, inst)) {
      const std::string_view name =
          gx_prop_text(gx_find_prop_of_two(sheet, pin, pinpropfam, "PIN"));
      take(path + "/" + (name.empty() ? "P_" + std::to_string(pinpropfam) : std::string(name)),
           "pin", pinpropfam, sheet_path);
    }
  }

  void take_net(const gx_file_gene_recf_t& sheet, int net, const std::string& sheet_path) {
    const std::string_view name = gx_prop_text(gx_find_net_prop(sheet, net, "NET"));
    const std::string path =
        sheet_path + "/" + (name.empty() ? "N_" + std::to_string(net) : std::string(name));
    take(path, "net", net, sheet_path);
    const auto* record = gx_object_as<gx_object_net_rec_t>(sheet, net);
    if (record->is_bus == 0 || !key_.starts_with(kv_path_key(path) + "_")) return;
    for (int i = 0; i <= record->bus_end - record->bus_start; ++i)
      take(path + "_" + std::to_string(i), "bit of a bus", net, sheet_path);
  }

  kv_drawings_t& drawings_;
  std::string_view key_;
  bool is_beginning_;
  std::size_t most_;
};

}  // namespace

std::vector<kv_found_t> kv_search_drawings(kv_drawings_t& drawings, std::string_view key,
                                           bool is_beginning, std::size_t most) {
  drawing_search search(drawings, key, is_beginning, most);
  if (const auto* top = drawings.top()) search.visit(*top, "", 1);
  return std::move(search.found);
}
