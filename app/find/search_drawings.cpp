#include "app/find/search_drawings.h"

#include "app/sheet/walk.h"
#include "expand/sheet/sheet_parts.h"
#include "expand/store.h"
#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/db/queries.h"

namespace {

class drawing_search {
 public:
  drawing_search(kv_drawings_t& drawings, std::string_view key, kv_match match, std::size_t most)
      : drawings_(drawings), key_(key), match_(match), most_(most) {}

  // Takes what is on a sheet; the blocks below which more may be found.
  std::vector<kv_next_t> visit(const kv_walked_t& walked) {
    const auto& sheet = walked.sheet();
    std::vector<int> parts;
    std::vector<kv_next_t> blocks;
    if (is_full()) return blocks;
    for (const int inst : lb_instances(sheet)) {
      if (is_part(sheet, inst)) parts.push_back(inst);
    }
    for (const int inst : parts) take_instance(sheet, inst, walked.path);
    for (const int net : lb_nets(sheet)) {
      if (!gx_inq_object_deleted(sheet, net)) take_net(sheet, net, walked.path);
    }
    for (const int inst : parts)
      if (match_ != kv_match::anywhere) take_pins(sheet, inst, walked.path);
    for (const int inst : parts) {
      if (is_full()) break;
      std::string name = lb_inst_name(sheet, inst);
      if (may_be_below(walked.path + "/" + name) && !kv_found_primitive(kv_sext, sheet, inst))
        blocks.push_back({inst, std::move(name)});
    }
    return blocks;
  }

  std::vector<kv_found_t> found;

 private:
  bool is_full() const { return found.size() >= most_; }

  static bool is_part(const gx_file_gene_recf_t& sheet, int inst) {
    return !gx_inq_object_deleted(sheet, inst) && kv_role_of(sheet, inst) == kv_inst_role::part;
  }

  bool is_block(const gx_file_gene_recf_t& sheet, int inst) {
    return !kv_found_primitive(kv_sext, sheet, inst) && drawings_.below(sheet, inst) != nullptr;
  }

  bool may_be_below(const std::string& path) const {
    const std::string key = kv_path_key(path);
    if (match_ == kv_match::anywhere) return true;
    if (match_ == kv_match::beginning && key.starts_with(key_)) return true;
    return key_.size() > key.size() && key_.starts_with(key) && key_[key.size()] == '/';
  }

  void take(const std::string& path, std::string_view what, int id, const std::string& sheet_path) {
    const std::string key = kv_path_key(path);
    const bool fits = match_ == kv_match::whole       ? key == key_
                      : match_ == kv_match::beginning ? key.starts_with(key_)
                                                      : kv_path_has(key, key_);
    if (is_full() || !fits) return;
    found.push_back({path, what, id, sheet_path});
  }

  void take_instance(const gx_file_gene_recf_t& sheet, int inst, const std::string& sheet_path) {
    const std::string path = sheet_path + "/" + lb_inst_name(sheet, inst);
    if (may_be_below(path) || kv_path_key(path) == key_)
      take(path, is_block(sheet, inst) ? "block" : "instance", inst, sheet_path);
  }

  void take_pins(const gx_file_gene_recf_t& sheet, int inst, const std::string& sheet_path) {
    const std::string path = sheet_path + "/" + lb_inst_name(sheet, inst);
    if (!may_be_below(path)) return;
    for (const gx_pin_pair_t pin : lb_pins(sheet, inst))
      take(path + "/" + lb_pin_name(sheet, pin), "pin", pin.pinpropfam, sheet_path);
  }

  void take_net(const gx_file_gene_recf_t& sheet, int net, const std::string& sheet_path) {
    const std::string path = sheet_path + "/" + lb_net_name(sheet, net);
    take(path, "net", net, sheet_path);
    const auto* record = gx_object_as<gx_object_net_rec_t>(sheet, net);
    if (match_ == kv_match::anywhere || record->is_bus == 0 ||
        !key_.starts_with(kv_path_key(path) + "_"))
      return;
    for (int i = 0; i <= record->bus_end - record->bus_start; ++i)
      take(path + "_" + std::to_string(i), "bit of a bus", net, sheet_path);
  }

  kv_drawings_t& drawings_;
  std::string_view key_;
  kv_match match_;
  std::size_t most_;
};

}  // namespace

std::vector<kv_found_t> kv_search_drawings(kv_drawings_t& drawings, std::string_view key,
                                           kv_match match, std::size_t most) {
  drawing_search search(drawings, key, match, most);
  const auto visit = [&](const kv_walked_t& walked) { return search.visit(walked); };
  if (auto* top = drawings.top_component()) kv_walk_drawings(drawings, *top, "", visit);
  return std::move(search.found);
}
