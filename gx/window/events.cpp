// The next X event, translated. Everything that the kinds of events.h stand for is decided here;
// what to do about an event is the application's part.
#include "gx/window/events.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/keysym.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "gx/db/place/geometry.h"
#include "gx/display/drawable_size.h"
#include "gx/display/input/menu_draw.h"
#include "gx/display/input/menu_tree.h"
#include "gx/display/screen_state.h"
#include "gx/display/strokes/smooth.h"
#include "gx/display/viewport_coords.h"
#include "gx/display/viewports.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"
#include "gx/window/key_lookup.h"
#include "gx/window/questions.h"
#include "platform/stop_signals.h"
#include "platform/wait.h"

namespace {

constexpr int rest_ms = 500;  // a pointer that stays that long is at rest
constexpr int click_pixels = 3, click_ms = 300, double_click_ms = 500;
constexpr int jump_pixels = 250;  // a pointer that moves farther at once means to be there
constexpr int max_key_text = 20;

constexpr auto event_name = std::to_array<std::string_view>(
    {"event :!! 0 !!", "event :!! 1 !!", "keypress",         "keyrelease",
     "ButtonPress",    "ButtonRelease",  "MotionNotify",     "enternotify",
     "leavenotify",    "FocusIn",        "FocusOut",         "keymapnotify",
     "Expose",         "graphicsExpose", "noExpose",         "VisibilityNotify",
     "createnotify",   "destroynotify",  "unmapnotify",      "mapnotify",
     "maprequest",     "reparentnotify", "configurenotify",  "configurerequest",
     "gravitynotify",  "resizerequest",  "circulatenotify",  "circulaterequest",
     "propertynotify", "selectionclear", "selectionrequest", "selectionnotify",
     "colormapnotify", "clientmessage",  "mappingnotify",    "lastevent "});

std::int16_t inside(int v, int size) {
  return static_cast<std::int16_t>(std::max(1, std::min(v, size - 1)));
}

gx_point16_t inside_window(int x, int y) {
  return {inside(x, gx_vext.bitmap_size.x), inside(y, gx_vext.bitmap_size.y)};
}

std::optional<gx_point16_t> query_pointer() {
  const auto at = gx_x_pointer_in(gx_vext.win);
  if (!at) return {};
  return inside_window(at->x, at->y);
}

bool shows_file(gx_vpid_t vpid) {
  return gx_viewport_ok(vpid) && gx_is_picture_viewport(vpid) &&
         gx_viewport_rec(vpid).file_index > 0;
}

// The viewport and the design position follow the pointer.
void follow_pointer(gx_point16_t pixel) {
  gx_pointreal_t point;
  gx_vext.pixel_pos = pixel;
  gx_vext.viewport_id = gx_viewport_pixel_to_obj2d(pixel, point);
  if (shows_file(gx_vext.viewport_id)) gx_vext.obj_pos = point;
  if (gx_vext.viewport_id == 0) return;
  gx_vext.last_viewport_id = gx_vext.viewport_id;
  gx_vext.last_viewport_pixel = pixel;
}

// Where the pointer is by now; the last known place when it left the screen.
gx_point16_t look_for_pointer() {
  if (const auto pixel = query_pointer()) follow_pointer(*pixel);
  return gx_vext.pixel_pos;
}

void set_auto_repeat(bool on) {
  if ((gx_vext.gxXautoRepeatOn != 0) == on) return;
  gx_vext.gxXautoRepeatOn = on ? 1 : 0;
  if (on) {
    XAutoRepeatOn(gx_vext.dpy);
  } else {
    XAutoRepeatOff(gx_vext.dpy);
  }
}

// A key with the pointer in no viewport belongs to where the pointer was last.
void stay_in_a_viewport() {
  auto& v = gx_vext;
  if (v.viewport_id != 0) return;
  v.viewport_id = v.last_viewport_id != 0 ? v.last_viewport_id : v.viewport_edit;
  if (v.last_viewport_id != 0) v.pixel_pos = v.last_viewport_pixel;
}

void discard(int type) {
  XEvent event;
  while (XCheckTypedWindowEvent(gx_vext.dpy, gx_vext.win, type, &event) != False) {
  }
}

// --- keys

bool is_modifier(std::uint32_t keysym) {
  return (keysym >= XK_Shift_L && keysym <= XK_Control_R) ||
         (keysym >= XK_Meta_L && keysym <= XK_Alt_R) || keysym == XK_Mode_switch ||
         keysym == XK_Num_Lock;
}

// Keys that must not repeat while they are held: their release has a meaning of its own.
bool is_held_key(std::uint32_t keysym) {
  return (keysym >= XK_F1 && keysym <= XK_F12) || keysym == XK_Prior || keysym == XK_Next ||
         keysym == XK_Escape;
}

// The server repeats a key as a release and a press of the same moment. Such a pair, when it was
// sent before repeating could be switched off, is taken out of the queue.
bool is_repeat_pair(const XKeyEvent& release) {
  if (XEventsQueued(gx_vext.dpy, QueuedAfterReading) == 0) return false;
  XEvent next;
  XPeekEvent(gx_vext.dpy, &next);
  if (next.type != KeyPress || next.xkey.keycode != release.keycode ||
      next.xkey.time != release.time) {
    return false;
  }
  XNextEvent(gx_vext.dpy, &next);
  return true;
}

// The keysym of a key; the event's state becomes the modifier code.
std::uint32_t key_meaning(XKeyEvent& key, const char* too_long) {
  std::array<char, 4 * max_key_text> text{};
  KeySym keysym = NoSymbol;
  const int length =
      xlookupstring(key, text.data(), static_cast<int>(text.size()), keysym, nullptr);
  if (length > max_key_text) {
    gx_debug_line(std::string(too_long) + std::to_string(length));
    gx_set_status(gx_code::input_event_type_invalid);
  }
  return static_cast<std::uint32_t>(
      xplainkey(keysym, {text.data(), static_cast<std::size_t>(length)}));
}

void caps_lock_pressed(std::uint32_t modifiers) {
  gx_vext.CapsLockState = static_cast<std::int32_t>(modifiers);
  if (modifiers == 0) {
    gx_display_list("!! Warning : Your Caps Lock Key in ON , So RELEASE IT PLEASE !! ",
                    gx_line_kind::warning);
  }
}

void read_key(XKeyEvent& key, gx_event_t& event) {
  const bool press = key.type == KeyPress;
  const XKeyEvent as_sent = key;
  event.code = key_meaning(key, " !!! error event_wait buflen : ");
  event.modifiers = key.state;
  event.pixel = look_for_pointer();
  stay_in_a_viewport();

  const bool caps_lock = event.code == XK_Caps_Lock;
  if (caps_lock || is_modifier(event.code)) {
    event.kind = gx_event_kind::modifier_key;
    if (caps_lock && press) caps_lock_pressed(event.modifiers);
    return;
  }
  const bool held = is_held_key(event.code);
  if (held && !press && is_repeat_pair(as_sent)) return;
  event.kind = press ? gx_event_kind::key_press : gx_event_kind::key_release;
  gx_vext.key_state = static_cast<std::int32_t>(event.modifiers);
  gx_vext.keyf_down = held && press;
  set_auto_repeat(!gx_vext.keyf_down);
}

// --- buttons

// What a press does may put the pointer elsewhere: that is no move of the user.
bool is_in_place(gx_point16_t pixel, gx_point16_t from) {
  return gx_pixels_near(pixel, from, click_pixels) ||
         (gx_vext.was_put && gx_pixels_near(pixel, gx_vext.pointer_put, click_pixels));
}

void press_button1(const gx_event_t& event) {
  auto& c = gx_vext.click;
  const bool again = c.is_click && event.time - c.press_time <= double_click_ms &&
                     is_in_place(event.pixel, c.released);
  if (!again) c.first_pressed = event.pixel;
  c.is_click = again;  // until the release: the one before
  c.pressed = event.pixel;
  c.press_time = event.time;
  gx_vext.was_put = false;
}

void release_button1(gx_event_t& event) {
  auto& c = gx_vext.click;
  const bool again = c.is_click;
  const bool is_click =
      event.time - c.press_time <= click_ms && is_in_place(event.pixel, c.pressed);
  c.released = event.pixel;
  c.is_click = is_click && !again;  // a third click begins anew
  if (is_click) event.clicks = again ? 2 : 1;
  event.pressed = again ? c.first_pressed : c.pressed;
}

void read_button(const XButtonEvent& button, gx_event_t& event) {
  const bool press = button.type == ButtonPress;
  gx_vext.keyf_down = false;
  gx_vext.key_state = 0;
  event.modifiers = button.state & 15U;
  event.pixel = inside_window(button.x, button.y);
  follow_pointer(event.pixel);
  switch (button.button) {
    case Button1:
      event.kind = press ? gx_event_kind::button1_down : gx_event_kind::button1_up;
      if (press)
        press_button1(event);
      else
        release_button1(event);
      break;
    case Button2:
      event.kind = press ? gx_event_kind::button2_down : gx_event_kind::button2_up;
      break;
    case Button3:
      event.kind = press ? gx_event_kind::button3_down : gx_event_kind::button3_up;
      break;
    case Button4:
    case Button5:
      event.kind = gx_event_kind::pointer_moved;
      if (press) event.wheel = button.button == Button4 ? 1 : -1;
      break;
    default:  // sideways wheels and thumb buttons
      gx_debug(press ? " event_wait : button DOWN not ok = %ld \n"
                     : " event_wait : button UP not ok = %ld \n",
               static_cast<long>(button.button));
      break;
  }
}

// --- pointer

void clear_menu_lines_below(std::size_t level) {
  for (std::size_t k = level; k < gx_vext.menuline_lev.size(); ++k) {
    gx_vext.menuline_lev[k] = 0;
    gx_vext.prelinsel_lev[k] = 0;
  }
}

// A level that has just been opened has put the pointer into itself. Where that does not last,
// since the positions come from elsewhere (a viewer on another screen sends its own), the level
// waits for the pointer: it stays open while the pointer goes on from where it was, unless it turns
// to another line of the level before.
bool waits_for_pointer(std::size_t depth, gx_point16_t at) {
  auto& v = gx_vext;
  if (v.menu_entered[depth - 1] || !gx_pixels_near(at, v.menu_outside, jump_pixels)) return false;
  v.menu_outside = at;
  if (depth == 1) return true;
  const gx_bounds16_t& before = v.menu_lev_extbounds[depth - 2];
  return !gx_point_inside_bounds16(before, at.x, at.y) ||
         gx_menu_line_at(static_cast<int>(depth) - 1, at.y) == v.menuline_lev[depth - 2];
}

void read_menu_motion(gx_event_t& event) {
  if (const auto pixel = query_pointer()) {
    gx_vext.pixel_pos = *pixel;
    gx_vext.viewport_id = gx_viewport_pixel_to_vpid(*pixel);
  }
  const gx_point16_t at = event.pixel = gx_vext.pixel_pos;
  const int level = gx_vext.menu_level;
  if (level < 1 || level > gx_max_menu_levels) {
    gx_debug(" event_wait : menu level not ok = %d\n", level);
    gx_set_status(gx_code::input_event_type_invalid);
  }
  const auto depth = static_cast<std::size_t>(level);
  const bool opens = gx_point_inside_bounds16(gx_vext.menu_boxbounds, at.x, at.y);
  if (!opens && !gx_point_inside_bounds16(gx_vext.menu_extbounds, at.x, at.y)) {
    if (!waits_for_pointer(depth, at)) event.kind = gx_event_kind::menu_outside;
    return;
  }
  if (at != gx_vext.pointer_put) gx_vext.menu_entered[depth - 1] = true;
  if (opens) {
    event.kind = gx_event_kind::menu_opening;
  } else {
    event.kind = gx_event_kind::menu_line;
    gx_vext.prelinsel_lev[depth - 1] = gx_vext.menuline_lev[depth - 1];
    gx_vext.menuline_lev[depth - 1] = gx_menu_line_at(level, at.y);
  }
  event.code = static_cast<std::uint32_t>(level);
  clear_menu_lines_below(depth);
  discard(MotionNotify);
}

// Of all motions waiting only the newest position counts.
void take_newest_motion(XEvent& event) {
  XEvent other;
  while (XCheckTypedWindowEvent(gx_vext.dpy, gx_vext.win, MotionNotify, &other) != False) {
    if (static_cast<std::int32_t>(other.xmotion.time - event.xmotion.time) >= 0) event = other;
  }
}

// In the command viewport the pointer counts as on the text line.
void put_onto_command_line() {
  if (gx_vext.viewport_id == 0 || gx_vext.viewport_id != gx_vext.viewport_cmd) return;
  const gx_bounds16_t& box = gx_viewport_rec(gx_vext.viewport_cmd).pixel_bounds;
  gx_vext.pixel_pos.y = static_cast<std::int16_t>((box.ymin + box.ymax) / 2);
}

// The grid point nearest to where the pointer rests, when it lies in the window.
void snap_pointer(gx_vpid_t vpid, gx_pointreal_t point) {
  const gx_pointreal_t snapped = gx_round_snap(point.x, point.y);
  const gx_point16_t pixel = gx_viewport_pt_real_to_pixel(vpid, snapped);
  const gx_point16_t& size = gx_vext.bitmap_size;
  if (pixel.x < 1 || pixel.x >= size.x || pixel.y < 1 || pixel.y >= size.y) return;
  gx_vext.pixel_pos = pixel;
  gx_vext.obj_pos = snapped;
}

void read_motion(XEvent& motion, gx_event_t& event) {
  take_newest_motion(motion);
  event.modifiers = motion.xmotion.state;
  event.time = static_cast<std::uint32_t>(motion.xmotion.time);
  gx_vext.last_motputb = static_cast<std::int32_t>(event.time);
  gx_vext.lasttime = xtimems();
  gx_vext.rest_awaited = !gx_vext.menu_drawn;
  if (gx_vext.menu_drawn) {
    read_menu_motion(event);
    return;
  }
  event.kind = gx_event_kind::pointer_moved;
  event.pixel = gx_vext.moved_to = inside_window(motion.xmotion.x, motion.xmotion.y);
  follow_pointer(event.pixel);
  put_onto_command_line();
}

// The pointer has not moved for a while.
void read_rest(gx_event_t& event) {
  gx_vext.rest_awaited = false;
  gx_vext.lasttime = xtimems();
  if (gx_vext.menu_drawn) return;
  event.kind = gx_event_kind::pointer_at_rest;
  event.time = static_cast<std::uint32_t>(gx_vext.last_motputb);
  event.pixel = gx_vext.moved_to;
  follow_pointer(event.pixel);
  put_onto_command_line();
  if (gx_vext.snap_state && shows_file(gx_vext.viewport_id))
    snap_pointer(gx_vext.viewport_id, gx_vext.obj_pos);
}

// What ends the waiting.
enum class waking { event, rest, signal };

// Waits for the next event, for the pointer to come to rest before it, or for a signal that ends
// the program.
waking wait_for_waking() {
  while (x_stop_signal() == 0) {
    if (XEventsQueued(gx_vext.dpy, QueuedAfterFlush) > 0) return waking::event;
    int left = -1;
    if (gx_vext.rest_awaited) {
      left = rest_ms - xdiftimems(gx_vext.lasttime.tv_sec, gx_vext.lasttime.tv_usec);
      // A clock that was set back must not make it wait for longer.
      if (left <= 0 || left > rest_ms) return waking::rest;
    }
    const auto& other = gx_other_input();
    const int descriptors[] = {ConnectionNumber(gx_vext.dpy),
                               other.descriptor != nullptr ? other.descriptor() : -1};
    const x_woken_t woken = x_wait(descriptors, left);
    if (woken.by == x_waking::failed) return waking::event;
    if (woken.by == x_waking::readable && woken.descriptor == descriptors[1]) other.read();
  }
  return waking::signal;
}

// --- the window

// A grab of the keyboard shows as focus events too; those do not count.
bool is_real_focus_change(const XFocusChangeEvent& focus) {
  return focus.mode != NotifyGrab && focus.mode != NotifyUngrab;
}

void read_focus(const XFocusChangeEvent& focus) {
  if (!is_real_focus_change(focus)) return;
  if (focus.type == FocusIn) {
    gx_vext.lasttime = xtimems();
    XGrabKey(gx_vext.dpy, AnyKey, AnyModifier, gx_vext.win, False, GrabModeAsync, GrabModeAsync);
  } else {
    XUngrabKey(gx_vext.dpy, AnyKey, AnyModifier, gx_vext.win);
    gx_vext.keyf_down = false;
    set_auto_repeat(true);
  }
}

void read_exposure(gx_event_t& event) {
  gx_vext.keyf_down = false;
  gx_vext.key_state = 0;
  discard(Expose);
  gx_forget_shown();
  gx_vext.viewport_id = 1;
  event.kind = gx_event_kind::exposed;
  const auto window = gx_x_place_of(gx_vext.win);
  if (!window) return;
  gx_take_size(std::clamp<int>(window->width, 2, INT16_MAX),
               std::clamp<int>(window->height, 2, INT16_MAX));
  gx_viewports_update();
  const gx_point16_t size = {static_cast<std::int16_t>(window->width),
                             static_cast<std::int16_t>(window->height)};
  event.resized = std::exchange(gx_vext.window_size, size) != size;
}

// A window that only shrinks keeps its picture, so that no exposure follows.
bool only_shrinks(const XConfigureEvent& configure) {
  const int width = gx_vext.bitmap_size.x + 1, height = gx_vext.bitmap_size.y + 1;
  return configure.window == gx_vext.win && configure.width <= width &&
         configure.height <= height && (configure.width < width || configure.height < height);
}

bool asks_to_close(const XClientMessageEvent& message) {
  return message.format == 32 && message.message_type == gx_vext.wm_protocols &&
         static_cast<Atom>(message.data.l[0]) == gx_vext.wm_delete_window;
}

constexpr char selection_property[] = "KIVO_SELECTION";

// Nothing when the other program has no text.
void read_selection(const XSelectionEvent& selection, gx_event_t& event) {
  constexpr long most_words = 250;  // of four bytes
  if (selection.property == None) return;
  event.text = gx_x_property(gx_vext.win, selection.property, XA_STRING, 8, most_words);
  XDeleteProperty(gx_vext.dpy, gx_vext.win, selection.property);
  if (!event.text.empty()) event.kind = gx_event_kind::pasted;
}

void read_other(int type) {
  const auto index = static_cast<std::size_t>(type);
  const std::string_view name = index < event_name.size() ? event_name[index] : "Unknown??";
  gx_trace(" !!!  GX_INPUT_EVENT_WAIT   ==>   Other events  !!  kind:", type, "  event_name:'",
           name, "' ");
}

// --- looking ahead

struct wanted_key_t {
  int type;
  std::uint32_t keysym, modifiers;
};

Bool gx_good_event(Display*, XEvent* event, XPointer argument) {
  const auto* const wanted = reinterpret_cast<const wanted_key_t*>(argument);
  if (event->type != wanted->type) return False;
  XKeyEvent key = event->xkey;
  const std::uint32_t keysym = key_meaning(key, " !!! error gx_good_event  buflen : ");
  return keysym == wanted->keysym && key.state == wanted->modifiers ? True : False;
}

}  // namespace

gx_event_t gx_wait_x_event() {
  xdelayms(1);
  gx_event_t event;
  event.pixel = gx_vext.pixel_pos;
  switch (wait_for_waking()) {
    case waking::rest:
      read_rest(event);
      return event;
    case waking::signal:
      event.kind = gx_event_kind::close_asked;
      return event;
    case waking::event:
      break;
  }
  XEvent x;
  XNextEvent(gx_vext.dpy, &x);
  switch (x.type) {
    case KeyPress:
    case KeyRelease:
      event.time = static_cast<std::uint32_t>(x.xkey.time);
      read_key(x.xkey, event);
      break;
    case ButtonPress:
    case ButtonRelease:
      event.time = static_cast<std::uint32_t>(x.xbutton.time);
      read_button(x.xbutton, event);
      break;
    case MotionNotify:
      event.time = static_cast<std::uint32_t>(x.xmotion.time);
      read_motion(x, event);
      break;
    case FocusIn:
    case FocusOut:
      read_focus(x.xfocus);
      break;
    case Expose:
      if (x.xexpose.window == gx_vext.win) read_exposure(event);
      break;
    case ConfigureNotify:
      if (only_shrinks(x.xconfigure)) read_exposure(event);
      break;
    case DestroyNotify:  // by another program: there is nothing left to work in
      if (x.xdestroywindow.window == gx_vext.win) event.kind = gx_event_kind::close_asked;
      break;
    case VisibilityNotify:
      gx_vext.lasttime = xtimems();
      gx_debug_line(" !!!  GX_INPUT_EVENT_WAIT   ==>  VisibilityNotify  !! ");
      break;
    case MappingNotify:
      XRefreshKeyboardMapping(&x.xmapping);
      break;
    case SelectionNotify:
      read_selection(x.xselection, event);
      break;
    case ClientMessage:
      if (asks_to_close(x.xclient)) {
        event.kind = gx_event_kind::close_asked;
        break;
      }
      [[fallthrough]];
    default:
      read_other(x.type);
      break;
  }
  return event;
}

void gx_ask_selection(bool from_clipboard) {
  auto* const dpy = gx_vext.dpy;
  const Atom from = from_clipboard ? XInternAtom(dpy, "CLIPBOARD", False) : XA_PRIMARY;
  XConvertSelection(dpy, from, XA_STRING, XInternAtom(dpy, selection_property, False), gx_vext.win,
                    CurrentTime);
  XFlush(dpy);
}

bool gx_find_key(int kind, std::uint32_t keysym, std::uint32_t modifiers) {
  wanted_key_t wanted{kind == 0 ? KeyPress : KeyRelease, keysym, modifiers};
  XFlush(gx_vext.dpy);
  XEvent event;
  return XCheckIfEvent(gx_vext.dpy, &event, gx_good_event, reinterpret_cast<XPointer>(&wanted)) !=
         False;
}
