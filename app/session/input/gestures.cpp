#include "app/session/input/gestures.h"

#include <string>

#include "app/session/input/menu_actions.h"
#include "app/sheet/command_viewport.h"
#include "app/sheet/pan.h"
#include "app/sheet/pick.h"
#include "app/sheet/select_area.h"
#include "app/sheet/views.h"
#include "app/values/waves_state.h"
#include "gx/db/object_access.h"
#include "gx/display/input/cursor.h"
#include "gx/display/input/line_edit.h"
#include "gx/display/list_viewport.h"
#include "gx/display/strokes/smooth.h"
#include "gx/display/viewport_coords.h"
#include "gx/display/viewports.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "results/names.h"

namespace {
constexpr int net_room = 2;  // pixels from a wire that is meant

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

bool drag_zooms() {
  const std::string_view bound = trimmed(gx_view(gx_vext.action_but[1]));
  return gx_iden(kv_drag_command(bound).value_or(bound), "VIEW AREA");
}

// The sheet under the pixel, and the point there.
std::optional<kv_view_t> view_at(gx_point16_t pixel, gx_pointreal_t& point) {
  const gx_vpid_t vpid = gx_viewport_pixel_to_obj2d(pixel, point);
  const auto view = vpid == gx_vext.viewport_edit      ? kv_edit_view()
                    : vpid == gx_vext.viewport_context ? kv_context_view()
                                                       : kv_view_t{};
  if (!view.has_sheet() || view.is_symbol()) return std::nullopt;
  if (gx_viewport_rec(view.vpid).file_index != view.file_index) return std::nullopt;
  return view;
}

bool is_only_selected(const gx_file_gene_recf_t& file, int wanted) {
  for (int id = 1; id <= file.object_id_max; ++id) {
    const auto type = gx_object_id_ptr(file, id).object_type;
    const bool counts = type == gx_type::instance || type == gx_type::net || type == gx_type::frame;
    if (counts && gx_inq_object_selected(file, id) != (id == wanted)) return false;
  }
  return true;
}

void select(const kv_view_t& view, std::string_view handle, int id, bool adds,
            const std::function<void(std::string_view)>& run) {
  if (is_only_selected(view.file(), id)) return;
  const std::string name(view.vpid == gx_vext.viewport_edit ? "Edit" : "Context");
  if (!adds) kv_unselect_all(view.file_index);
  run("SELECT OBJECT " + name + " " + std::string(handle) + std::to_string(id) + " ");
}

// As a simulator or KIVO writes it: "v(r:x2:x)", "/XR/X2/X", "xr.x2.mp1:".
void find_name(std::string_view word, const std::function<void(std::string_view)>& run) {
  constexpr std::string_view marks = ",;:.#";
  const auto last = word.find_last_not_of(marks);
  word = word.substr(0, last == word.npos ? 0 : last + 1);
  const rs_name_t name = rs_read_name({std::string(word), "voltage"});
  const std::string path = name.meaning == rs_meaning::other ? std::string(word) : name.path;
  if (!path.empty()) run("FIND PATH " + path + " ");
}
}  // namespace

std::optional<std::string_view> kv_drag_command(std::string_view binding) {
  constexpr std::string_view head = "$DRAG ";
  binding = trimmed(binding);
  if (!gx_equal(head, binding)) return std::nullopt;
  return trimmed(binding.substr(head.size()));
}

void kv_begin_pan(gx_vpid_t vpid, gx_point16_t pixel) {
  if (vpid == gx_vext.viewport_edit) kv_remember_view();
  kv_pext.hands.panned = vpid;
  kv_pext.hands.from = pixel;
}

bool kv_pan(const gx_event_t& event) {
  auto& hands = kv_pext.hands;
  if (hands.panned == 0) {
    const gx_vpid_t vpid = gx_vext.viewport_id;
    if (event.kind != gx_event_kind::button2_down || (event.modifiers & kv_shift_held) == 0 ||
        !gx_is_picture_viewport(vpid) || !gx_viewport_ok(vpid) || gx_vext.menu_drawn)
      return false;
    kv_begin_pan(vpid, event.pixel);
    return true;
  }
  const bool ends = event.kind == gx_event_kind::button2_up;
  if (!ends && event.kind != gx_event_kind::pointer_moved) return false;
  if (event.pixel != hands.from)
    kv_pan_by(hands.panned, event.pixel.x - hands.from.x, event.pixel.y - hands.from.y);
  hands.from = event.pixel;
  if (ends) hands = {};
  return true;
}

bool kv_clicks_list(const gx_event_t& event) {
  const bool is_button =
      event.kind == gx_event_kind::button1_down || event.kind == gx_event_kind::button1_up;
  return is_button && gx_vext.viewport_id == gx_vext.viewport_list && drag_zooms();
}

void kv_click(const gx_event_t& event, const std::function<void(std::string_view)>& run) {
  if (event.clicks == 0 || !drag_zooms()) return;
  if (kv_clicks_list(event)) {
    if (event.clicks == 2) find_name(gx_list_word_at(event.pressed), run);
    return;
  }
  gx_pointreal_t point;
  const auto view = view_at(event.pressed, point);
  if (!view) return;
  const bool shifted = (event.modifiers & kv_shift_held) != 0;
  const bool walks = event.clicks == 2 && view->vpid == gx_vext.viewport_edit;
  if (walks && shifted) return run("VIEW UP ");
  if (walks) {
    const int block = kv_pick_instance(view->file(), point);
    if (block == 0) return;
    select(*view, "I_", block, false, run);
    return run("VIEW DOWN ");
  }
  const std::int32_t room = net_room * gx_line_width() * gx_viewport_rec(view->vpid).object_scale;
  if (const int net = kv_pick_net(view->file(), point, room))
    select(*view, "N_", net, shifted, run);
  else if (const int inst = kv_pick_instance(view->file(), point))
    select(*view, "I_", inst, shifted, run);
}

void kv_end_gestures() {
  kv_pext.hands = {};
  gx_vext.pointer_stays = false;
  gx_rectangle_erase();
  kv_pext.mark_rect_done = false;
  if (kv_pext.waves) kv_pext.waves->is_dragged = false;
  if (gx_vext.menu_drawn) kv_close_menu();
  gx_set_command_line("");
}

std::string kv_place_of_line(std::string_view line) {
  std::size_t digits = 0;
  if (line.starts_with("# ")) digits = line.find_first_not_of("0123456789", 2);
  if (digits != line.npos && digits > 2) {
    const std::string_view rest = line.substr(digits);
    for (const std::string_view word : {" Error ", " Warning ", " Waived "})
      if (rest.starts_with(word))
        return "SHOW FINDING " + std::string(line.substr(2, digits - 2)) + " ";
  }
  // A path is alone or in quotes.
  for (std::size_t at = line.find('/'); at != line.npos; at = line.find('/', at + 1)) {
    if (at == 0 || (line[at - 1] != ' ' && line[at - 1] != '"')) continue;
    std::string_view path = line.substr(at);
    path = path.substr(0, path.find_first_of(" \",;:"));
    if (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
    if (path.size() > 1) return "FIND PATH " + std::string(path) + " ";
  }
  return {};
}

std::string kv_place_at(gx_point16_t pixel) {
  const auto& v = gx_vext;
  if (!gx_viewport_ok(v.viewport_list) || gx_viewport_pixel_to_vpid(pixel) != v.viewport_list)
    return {};
  const int line = gx_list_line_at(pixel);
  return line > v.nlinlist_end ? std::string()
                               : kv_place_of_line(gx_view(gx_at(v.line_list, line - 1)));
}
