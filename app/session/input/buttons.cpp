#include "app/session/input/buttons.h"

#include <algorithm>
#include <string>
#include <utility>

#include "app/session/input/gestures.h"
#include "app/session/input/menu_actions.h"
#include "app/state.h"
#include "gx/display/viewports.h"
#include "gx/text/at.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {
using run_t = std::function<void(std::string_view)>;

// Of action_but: presses are even, releases odd.
int action_of(const gx_event_t& event) {
  return static_cast<int>(event.kind) - static_cast<int>(gx_event_kind::button1_down);
}
bool is_press(const gx_event_t& event) { return action_of(event) % 2 == 0; }

std::string binding_of(int action) {
  return std::string(gx_view(gx_at(gx_vext.action_but, action)));
}

// What a click does whose button runs its commands for drags only.
void click_freely(gx_event_t event, int button, const run_t& run) {
  if (button == 1) {
    event.clicks = std::max(event.clicks, 1);  // however long the button was held
    return kv_click(event, run);
  }
  if (button == 2 && gx_vext.viewport_id == gx_vext.viewport_cmd) return gx_ask_for_text(false);
  kv_show_menu_to_click();
}

// What the press is bound to runs as if the pointer were still where it was then.
void run_at_press(gx_vpid_t vpid, gx_pointreal_t point, std::string_view command,
                  const run_t& run) {
  auto& v = gx_vext;
  const gx_point16_t pixel = std::exchange(v.pixel_pos, kv_pext.hands.pressed);
  const gx_vpid_t here = std::exchange(v.viewport_id, vpid);
  const gx_pointreal_t at = v.obj_pos;
  if (gx_is_picture_viewport(vpid)) v.obj_pos = point;
  v.pointer_stays = true;
  run(command);
  v.pointer_stays = false;
  v.pixel_pos = pixel;
  v.viewport_id = here;
  v.obj_pos = at;
}

void begin_drag(const gx_event_t& event, const run_t& run) {
  auto& hands = kv_pext.hands;
  hands.is_drag = true;
  const std::string bound = binding_of(2 * (hands.button - 1));
  const auto command = kv_drag_command(bound);
  gx_pointreal_t point;
  const gx_vpid_t vpid = gx_viewport_pixel_to_obj2d(hands.pressed, point);
  if (!command || vpid == 0) return;
  if (!gx_iden(*command, "$PAN")) return run_at_press(vpid, point, *command, run);
  if (!gx_is_picture_viewport(vpid) || gx_vext.menu_drawn) return;
  kv_begin_pan(vpid, hands.pressed);
  kv_pan(event);
}

// Runs what is bound to the button; of a drag when it is one.
void run_button(const gx_event_t& event, const run_t& run) {
  auto& hands = kv_pext.hands;
  const int button = action_of(event) / 2 + 1;
  const std::string bound = binding_of(action_of(event));
  const auto command = kv_drag_command(bound);
  if (is_press(event)) {
    if (!command) return run(bound);
    hands.button = button;
    hands.pressed = event.pixel;
    return;
  }
  kv_follow_drag(event, run);  // it may have moved at once
  const kv_hands_t held = std::exchange(hands, {});
  if (held.button == button && !held.is_drag) return click_freely(event, button, run);
  if (!command) return run(bound);
  if (held.button == button) run(*command);
}

// A menu that waits for a click has it, whatever the buttons are bound to.
bool takes_menu_click(const gx_event_t& event, const run_t& run) {
  bool& waits = kv_pext.hands.menu_waits;
  waits = waits && gx_vext.menu_drawn;
  if (!waits) return false;
  if (!is_press(event) && !kv_open_chosen_menu()) run("$XIM");
  return true;
}
}  // namespace

void kv_follow_drag(const gx_event_t& event, const run_t& run) {
  constexpr int least = 3;  // pixels that make a drag
  const auto& hands = kv_pext.hands;
  if (hands.button != 0 && !hands.is_drag && !gx_pixels_near(event.pixel, hands.pressed, least))
    begin_drag(event, run);
}

// A click on a line of the list goes to what the line names, and the list stays where it is. What
// the button does besides, it does as ever.
void kv_button(const gx_event_t& event, const run_t& run) {
  if (takes_menu_click(event, run)) return;
  auto& hands = kv_pext.hands;
  if (is_press(event)) hands = {};
  if (event.kind == gx_event_kind::button1_down) hands.place = kv_place_at(event.pixel);
  const std::string place = hands.place;
  const bool is_free = hands.button != 0;
  if (!place.empty()) gx_list_stay();
  if (!kv_clicks_list(event)) run_button(event, run);
  if (event.kind != gx_event_kind::button1_up) return;
  if (!is_free) kv_click(event, run);
  if (place.empty()) return;
  if (event.clicks == 1) run(place);
  hands.place.clear();
  gx_list_leave();
}
