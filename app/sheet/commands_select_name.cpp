// Selecting by name: SELect PIN, SELect PROperty; and what is done to the selected properties:
// CHAnge PROperty SWItches.
#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "gx/db/owners.h"
#include "gx/db/undo.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"

namespace {

constexpr std::string_view nothing_selected = "# !! Nothing Selected  ? ";

// A pattern that ends with "*" matches what begins with the part before it.
bool matches(std::string_view pattern, std::string_view value) {
  if (pattern.ends_with('*')) return gx_equal(pattern.substr(0, pattern.size() - 1), value);
  return gx_iden(pattern, value);
}

std::optional<kv_view_t> view_to_select_in(std::string_view refused, const kv_command_t& command) {
  return kv_wanted_view(refused, command, 3,
                        {.bad_word = kv_3rd_not_edit_context,
                         .symbol = "# !! You Cannot SELECT the activate symbol ?  "});
}

// The value of the PIN property of an instance's pin, or else of its symbol's pin.
std::optional<gx_string_record_t> pin_name(const gx_file_gene_recf_t& file, gx_pin_pair_t pair) {
  const auto own = lb_get_valueof_prop_pinpropfam(file, pair.pinpropfam, "PIN");
  return own ? own : lb_get_valueof_prop_pin(file, pair.pin, "PIN");
}

void finish(std::string_view keyword, const kv_command_t& command, bool found) {
  if (!found) return kv_refuse("#" + std::string(keyword), command, nothing_selected, 3);
  kv_redraw_views();
  kv_echo(keyword, command, 3);
}

void kv_select_pin_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# SELect PIN ";
  const auto view = view_to_select_in(refused, command);
  if (!view) return;
  gx_undo_define_new_step();
  const auto& file = view->file();
  bool found = false;
  for (const int inst : lb_instances(file)) {
    if (gx_inq_object_deleted(file, inst)) continue;
    const auto* name = lb_find_prop_inst(file, inst, "INST");
    if (name == nullptr || !matches(command.word(4), gx_view(name->nvalue))) continue;
    for (const auto pair : lb_pins(file, inst)) {
      const auto pin = pin_name(file, pair);
      if (!pin || !matches(command.word(5), gx_view(*pin))) continue;
      gx_set_object_selected(file, pair.pinpropfam, true);
      gx_set_child_selected(file, pair.pinpropfam, true);
      found = true;
    }
  }
  finish(" SELect PIN ", command, found);
}

void kv_select_prop_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# SELect PROperty ";
  const auto view = view_to_select_in(refused, command);
  if (!view) return;
  gx_undo_define_new_step();
  const auto& file = view->file();
  kv_pext.act_prop_exist = false;
  gx_visit_owners(file, [&](const gx_owner_t& owner) {
    gx_visit_properties(file, owner, [&](const gx_object_property_rec_t& property) {
      if (!gx_iden(command.word(4), gx_view(property.name))) return;
      if (command.count() == 5 && !matches(command.word(5), gx_view(property.nvalue))) return;
      gx_set_object_selected(file, property.gene.object_id, true);
      gx_set_object_selected(file, owner.id, true);
      kv_pext.act_prop_name = property.name;
      kv_pext.act_prop_value = property.nvalue;
      kv_pext.act_prop_type = static_cast<std::int16_t>(owner.kind);
      kv_pext.act_prop_exist = true;
    });
  });
  finish(" SELect PROperty ", command, kv_pext.act_prop_exist);
}

void kv_change_prop_switches_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# CHAnge PROperty SWItches ";
  const bool visible = gx_equal("V", command.word(4));
  if (!visible && !gx_equal("N", command.word(4))) {
    kv_echo(refused, command, 4);
    return gx_tell_as(gx_line_kind::error, "# !! Error : switches invalid : \"", command.word(4),
                      "\" ");
  }
  const auto view = kv_edit_view();
  if (!view.has_sheet()) return kv_refuse(refused, command, kv_no_sheet, 4);
  const auto& file = view.file();
  gx_undo_define_new_step();
  bool found = false;
  for (int id = 1; id <= file.object_id_max; ++id) {
    const auto& object = gx_object_id_ptr(file, id);
    if (object.object_type != gx_type::property_2d || gx_inq_object_deleted(file, id) ||
        !gx_inq_object_selected(file, id)) {
      continue;
    }
    found = true;
    auto& property = gx_property_info_ptr(file, id);
    if (auto* entry = gx_undo_put_object(view.file_index, id, gx_undo_op::switches)) {
      auto& values = std::get<gx_undo_placement_t>(entry->UU);
      values.old_fixed = values.new_fixed = property.fixed != 0;
      values.set_unvisible = gx_inq_object_unvisible(file, id);
      values.old_visible = property.visible != 0;
      values.new_visible = visible;
    }
    property.visible = visible;
    gx_set_object_unvisible(file, id, !visible);
  }
  if (!found) {
    return kv_warn(refused, command, "# !! Warning : Nothing Valid Selected  ? ", 4);
  }
  kv_redraw_views();
  gx_tell(" CHAnge PROperty SWItches ", visible ? " Visible " : " Novisible ");
}

constexpr kv_command_row_t name_rows[] = {
    // clang-format off
    {{"SEL", "PIN"}, "SELect PIN Edit instance pin", kv_select_pin_cmd, "# SELect PIN ", 3},
    {{"SEL", "PRO"}, "SELect PROperty Edit name [value]", kv_select_prop_cmd, "# SELect PROperty ", 3},
    {{"CHA", "PRO", "SWI"}, "CHAnge PROperty SWItches VISIBLE or NOVISIBLE", kv_change_prop_switches_cmd, "# CHAnge PROperty SWItches ", 4},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_name_commands() { return name_rows; }
