// The drawing aids of the current sheet: BASEpoint, GRId and SNAp.
#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "gx/db/place/geometry.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

constexpr std::string_view base_point_refused = "# BASEpoint ";

// Under the pointer: nothing after the refusal.
std::optional<gx_pointreal_t> pointed_base_point(const kv_command_t& command, kv_view_t& view) {
  const auto refuse = [&](std::string_view error) {
    kv_refuse(base_point_refused, command, error);
    return std::nullopt;
  };
  const auto pointed = kv_view_at_pointer();
  if (!pointed) return refuse("# !! Error :  Invalid window ? ");
  if (!pointed->has_sheet()) return refuse(kv_no_sheet);
  view = *pointed;
  const auto p = gx_round_snap(gx_vext.obj_pos.x, gx_vext.obj_pos.y);
  if (!gx_check_point_inpage(view.file(), p.x, p.y)) {
    return refuse("# !! Error :  cursor  outside of page ? ");
  }
  return p;
}

// Typed: nothing after the refusal.
std::optional<gx_pointreal_t> typed_base_point(const kv_command_t& command, kv_view_t& view) {
  const auto named = kv_view_named(command.word(2));
  if (!named) {
    kv_refuse(base_point_refused, command,
              "# !! Error : Invalid Viewport name ( should be Edit/Context) ? ");
    return std::nullopt;
  }
  if (!named->has_sheet()) {
    kv_refuse(base_point_refused, command, kv_no_sheet);
    return std::nullopt;
  }
  view = *named;
  const auto typed = kv_typed_point(command, 3);
  if (typed) {
    const auto p = gx_round_snap(typed->x, typed->y);
    if (gx_check_point_inpage(view.file(), p.x, p.y)) return p;
  }
  kv_refuse(base_point_refused, command, kv_outside_page);
  return std::nullopt;
}

void kv_base_point_cmd(const kv_command_t& command) {
  kv_view_t view;
  const auto p =
      command.count() == 1 ? pointed_base_point(command, view) : typed_base_point(command, view);
  if (!p) return;
  gx_vext.base_point = *p;
  kv_redraw_views();
  gx_tell(" BASEpoint ", view.name(), gx_view(kv_point_text(*p)));
}

void kv_grid_state_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# GRID ";
  const bool on = gx_iden("ON", command.word(2));
  if (!on && !gx_iden("OFF", command.word(2))) {
    return kv_refuse(refused, command, "# !! Error : 2nd parameter invalid ? ");
  }
  const auto view = kv_edit_view();
  if (!view.has_sheet()) return kv_refuse(refused, command, kv_no_sheet);
  gx_set_grid_state(view.file(), on);
  kv_redraw_views();
  gx_tell(on ? " GRID ON " : " GRID OFF ");
}

void kv_grid_step_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# GRID STEp ";
  const auto view = kv_edit_view();
  if (!view.has_sheet()) return kv_refuse(refused, command, kv_no_sheet, 3);
  auto step = gx_string_to_real(command.word(3));
  if (step.error) return kv_refuse(refused, command, "# ! Grid step INVALID ? ", 3);
  if (step.value < gx_snap_step) {
    step.value = gx_snap_step;
    gx_tell_detail("# ! Grid step : Too Small (change to minimum step) ? ");
  }
  gx_set_grid_step(view.file(), step.value);
  kv_redraw_views();
  gx_string_record_t text;
  gx_real_to_string(step.value, text);
  gx_tell(" GRID STEp ", gx_view(text), " ");
}

void kv_snap_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# SNAp ";
  const auto on = kv_on_or_off(command.word(2));
  if (!on) return kv_refuse(refused, command, kv_bad_second);
  const auto view = kv_edit_view();
  if (!view.has_sheet()) return kv_refuse(refused, command, kv_no_sheet);
  gx_set_snap_state(view.file(), *on);
  gx_vext.snap_state = *on;
  gx_tell(*on ? " SNAp ON " : " SNAp OFF ");
}

constexpr kv_command_row_t grid_rows[] = {
    // clang-format off
    {{"BASE"}, "BASEpoint [Edit x y]", kv_base_point_cmd, base_point_refused},
    {{"GRID", "O"}, "GRID ON or OFF", kv_grid_state_cmd, "# GRID "},
    {{"GRID", "ST"}, "GRID STep value", kv_grid_step_cmd, "# GRID STEp ", 3},
    {{"SNA", "O"}, "SNAp ON or OFF", kv_snap_cmd, "# SNAp "},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_grid_commands() { return grid_rows; }
