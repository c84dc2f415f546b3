#include "app/check/electrical.h"

#include <algorithm>
#include <iterator>

#include "gx/db/objects_of.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"

namespace {

constexpr kv_electrical_t types[] = {
    {.name = "input", .takes = true},
    {.name = "output", .drives_inputs = true, .drive = kv_drive::output},
    {.name = "bidirectional", .drives_inputs = true},
    {.name = "tri_state", .drives_inputs = true, .drive = kv_drive::tri_state},
    {.name = "passive", .drives_inputs = true},
    {.name = "free", .may_be_open = true},
    {.name = "unspecified"},
    {.name = "power_in", .takes = true, .takes_supply = true},
    {.name = "power_out", .drives_inputs = true, .drive = kv_drive::supply},
    {.name = "open_collector", .drive = kv_drive::open},
    {.name = "open_emitter", .drive = kv_drive::open},
    {.name = "no_connect", .may_be_open = true},
};

std::uint8_t marks_of(const gx_file_gene_recf_t& file, int net) {
  std::uint8_t marks = 0;
  if (!gx_prop_text(gx_find_net_prop(file, net, "NOCONN")).empty()) marks |= kv_mark_open;
  const auto* const type =
      kv_electrical_named(gx_prop_text(gx_find_net_prop(file, net, "ELECTRICAL")));
  if (type == nullptr) return marks;
  if (type->takes_supply) marks |= kv_mark_takes_supply;
  if (type->drive == kv_drive::supply) marks |= kv_mark_supplied;
  if (type->drives_inputs) marks |= kv_mark_driven;
  return marks;
}

}  // namespace

const kv_electrical_t* kv_electrical_named(std::string_view name) {
  const auto* const found =
      std::ranges::find_if(types, [&](const auto& type) { return gx_iden(type.name, name); });
  return found == std::end(types) ? nullptr : found;
}

const kv_electrical_t& kv_electrical_of(std::int16_t io_type) {
  return types[io_type == kv_io_in ? 0 : io_type == kv_io_out ? 1 : 2];
}

void kv_electrical_marks::take(const kv_sheet_t& sheet, const gx_file_gene_recf_t& file) {
  std::vector<std::uint8_t>* marks = nullptr;
  const auto mark = [&](int object_id, std::uint8_t value) {
    if (marks == nullptr) {
      marks = &by_sheet_[&sheet];
      marks->resize(static_cast<std::size_t>(file.object_id_max) + 1);
    }
    gx_at(*marks, object_id) = value;
  };
  for (const auto& net : sheet.nets)
    if (const auto value = marks_of(file, net.object_id); value != 0) mark(net.object_id, value);
  for (const auto& inst : sheet.insts)
    for (const auto [pin, pinpropfam] : lb_pins(file, inst.object_id))
      if (const auto* const type = kv_electrical_named(
              gx_prop_text(gx_find_prop_of_two(file, pinpropfam, pin, "ELECTRICAL"))))
        mark(pinpropfam, static_cast<std::uint8_t>(type - types + 1));
}

std::uint8_t kv_electrical_marks::at(const kv_sheet_t& sheet, int object_id) const {
  const auto found = by_sheet_.find(&sheet);
  return found == by_sheet_.end() ? std::uint8_t{0} : gx_at(found->second, object_id);
}

const kv_electrical_t* kv_electrical_marks::of_pin(const kv_sheet_t& sheet, int object_id) const {
  const std::uint8_t place = at(sheet, object_id);
  return place == 0 ? nullptr : &types[place - 1];
}

std::uint8_t kv_electrical_marks::of_net(const kv_sheet_t& sheet, int object_id) const {
  return at(sheet, object_id);
}
