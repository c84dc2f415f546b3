#include "app/find/next_names.h"

#include <algorithm>

#include "app/find/drawings.h"
#include "expand/sheet/sheet_parts.h"
#include "expand/store.h"
#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/db/queries.h"
#include "gx/text/strings.h"

namespace {
class name_search {
 public:
  name_search(kv_drawings_t& drawings, std::string_view head, std::string_view part)
      : drawings_(drawings), head_(head), part_(part) {}

  void take_sheet(const gx_file_gene_recf_t& sheet) {
    for (const int inst : lb_instances(sheet)) {
      if (gx_inq_object_deleted(sheet, inst) || kv_role_of(sheet, inst) != kv_inst_role::part)
        continue;
      const std::string name = lb_inst_name(sheet, inst);
      if (!fits(name)) continue;
      const bool is_block =
          !kv_found_primitive(kv_sext, sheet, inst) && drawings_.below(sheet, inst) != nullptr;
      found.push_back({head_ + name + (is_block ? "/" : ""), is_block});
    }
    for (const int net : lb_nets(sheet))
      if (!gx_inq_object_deleted(sheet, net)) take(lb_net_name(sheet, net));
  }

  void take_pins(const gx_file_gene_recf_t& sheet, std::string_view of) {
    for (const int inst : lb_instances(sheet)) {
      if (gx_inq_object_deleted(sheet, inst) || !gx_iden(lb_inst_name(sheet, inst), of)) continue;
      for (const gx_pin_pair_t pin : lb_pins(sheet, inst)) take(lb_pin_name(sheet, pin));
    }
  }

  std::vector<kv_next_name_t> found{};

 private:
  bool fits(std::string_view name) const { return !name.empty() && gx_equal(part_, name); }
  void take(const std::string& name) {
    if (fits(name)) found.push_back({head_ + name, false});
  }

  kv_drawings_t& drawings_;
  std::string head_, part_;
};

// The sheet of a path, "" at the top; null when there is none.
const gx_file_gene_recf_t* sheet_of(kv_drawings_t& drawings, std::string_view path) {
  const auto way = kv_way_to(drawings, path);
  if (!way) return nullptr;
  if (way->empty()) return drawings.top();
  const auto* const component = drawings.component_in(way->back().directory);
  return component != nullptr ? component->file.get() : nullptr;
}
}  // namespace

std::vector<kv_next_name_t> kv_next_names(std::string_view typed) {
  kv_drawings_t drawings;
  if (drawings.top() == nullptr) return {};
  const auto last = typed.find_last_of("/.:");
  const std::string_view head = typed.substr(0, last == typed.npos ? 0 : last + 1);
  name_search search(drawings, head, typed.substr(head.size()));
  std::string above(head);
  std::ranges::replace_if(
      above, [](char c) { return c == '.' || c == ':'; }, '/');
  while (above.ends_with('/')) above.pop_back();
  if (const auto* const sheet = sheet_of(drawings, above)) {
    search.take_sheet(*sheet);
  } else {
    const auto slash = above.rfind('/');
    const std::string sheet_path = above.substr(0, slash == above.npos ? 0 : slash);
    const std::string device = above.substr(slash == above.npos ? 0 : slash + 1);
    if (const auto* const around = sheet_of(drawings, sheet_path))
      search.take_pins(*around, device);
  }
  return std::move(search.found);
}
