// The way from a display name to a mapped window with its shared resources, and back.
#include "gx/window/window.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "gx/display/input/menu_state.h"
#include "gx/display/screen.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/window.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"
#include "gx/window/colors.h"
#include "gx/window/events.h"
#include "gx/window/pictures.h"
#include "gx/window/pointer.h"
#include "gx/window/questions.h"
#include "gx/window/strokes.h"

namespace {
constexpr int window_x = 40, window_y = 100;
constexpr int min_width = 200, min_height = 100;
constexpr unsigned border_width = 1;

void release_display() {
  gx_vext.screen = nullptr;
  if (gx_vext.dpy == nullptr) return;
  // The keyboard belongs to all programs: it is given back as it was found.
  if (gx_vext.gxXautoRepeatOn == 0) XAutoRepeatOn(gx_vext.dpy);
  XSetCloseDownMode(gx_vext.dpy, DestroyAll);
  XSync(gx_vext.dpy, False);
  XCloseDisplay(gx_vext.dpy);
  gx_vext.dpy = nullptr;
}

int nb_of_x_errors = 0;

int on_x_error(Display* dpy, XErrorEvent* event) {
  ++nb_of_x_errors;
  char text[128] = {};
  XGetErrorText(dpy, event->error_code, text, sizeof text - 1);
  gx_debug(" !! xerror :  %s  request : %d  %d  resource : %lx\n", text, event->request_code,
           event->minor_code, event->resourceid);
  return 0;
}

// The keyboard is given back by another connection when the one that took it is cut.
void return_keyboard() {
  if (gx_vext.gxXautoRepeatOn != 0) return;
  if (Display* const other = XOpenDisplay(nullptr)) {
    XAutoRepeatOn(other);
    XCloseDisplay(other);
  }
}

// The server is gone: nothing can be drawn any more, what is open is closed, the program ends.
int on_lost_connection(Display*) {
  std::printf(" !! Xerror : Connection to the X server lost \n");
  gx_debug_line(" !! xerror :  connection to the X server lost ");
  gx_vext.dpy = nullptr;
  gx_vext.screen = nullptr;
  return_keyboard();
  gx_release_all();
  std::exit(1);
}

void set_title(std::string_view title) {
  const std::string name(title);
  XStoreName(gx_vext.dpy, gx_vext.win, name.c_str());
  XSetIconName(gx_vext.dpy, gx_vext.win, name.c_str());
}

int number_of_planes() { return DisplayPlanes(gx_vext.dpy, gx_vext.scrid); }

int screen_height() { return DisplayHeight(gx_vext.dpy, gx_vext.scrid); }

[[noreturn]] void refuse_start(const char* message) {
  gx_debug_line(message);
  gx_set_status(gx_code::init_not_done);
}

const char* display_name() {
  const char* name = std::getenv("DISPLAY");
  if (name == nullptr) name = std::getenv("display");
  if (name != nullptr) return name;
  std::printf(
      " !! Xerror : Can't get the X  environment variable 'DISPLAY' or 'display' ? \n"
      " !!        : You Should set the 'DISPLAY' environment variable to locate X server. \n"
      " !!        : See 'man X'  and  'man XOpenDisplay'. \n");
  std::exit(1);
}

void open_display(const char* name) {
  gx_vext.dpy = XOpenDisplay(name);
  if (gx_vext.dpy == nullptr) {
    std::printf(
        " !! Xerror : Can't open X display : '%s'? \n"
        " !!        : INVALID 'DISPLAY' environment variable ... Can't locate X server. \n"
        " !!        : See 'man X'  and  'man XOpenDisplay'. \n",
        name);
    std::exit(1);
  }
  gx_at_fatal_stop(release_display);
  XSetErrorHandler(on_x_error);
  XSetIOErrorHandler(on_lost_connection);
  gx_vext.scrid = DefaultScreen(gx_vext.dpy);
  gx_vext.root = RootWindow(gx_vext.dpy, gx_vext.scrid);
}

void check_root() {
  const auto root = gx_x_place_of(gx_vext.root);
  if (!root) refuse_start(" !! xerror :  cannot  get display geometry ? ");
  gx_debug(" gx_init :  root geometry : %d  %d  %d  %d\n", root->x, root->y, root->width,
           root->height);
  if (root->x != 0 || root->y != 0) {
    gx_debug(" !! xerror : root window origin invalid ? : %2d  %2d\n", root->x, root->y);
    gx_set_status(gx_code::init_not_done);
  }
  const int width = DisplayWidth(gx_vext.dpy, gx_vext.scrid);
  const int height = DisplayHeight(gx_vext.dpy, gx_vext.scrid);
  if (width != root->width || height != root->height) {
    gx_debug(" !! xerror : root window dimension invalid ? : %d  %d\n", width, height);
    gx_set_status(gx_code::init_not_done);
  }
}

void tell_window_manager(const XSizeHints& place, std::string_view window_name) {
  auto& v = gx_vext;
  XWMHints hints{};
  hints.flags = InputHint | StateHint;
  hints.input = True;
  hints.initial_state = NormalState;
  XSetWMHints(v.dpy, v.win, &hints);
  XSizeHints size_hints = place;
  XSetNormalHints(v.dpy, v.win, &size_hints);
  set_title(window_name);
  char instance[] = "kivo", kind[] = "Kivo";
  XClassHint class_hint{instance, kind};
  XSetClassHint(v.dpy, v.win, &class_hint);
  v.wm_protocols = XInternAtom(v.dpy, "WM_PROTOCOLS", False);
  v.wm_delete_window = XInternAtom(v.dpy, "WM_DELETE_WINDOW", False);
  XSetWMProtocols(v.dpy, v.win, &v.wm_delete_window, 1);
}

// A window manager listens for the windows of the root.
bool is_managed() {
  XWindowAttributes attributes{};
  return XGetWindowAttributes(gx_vext.dpy, gx_vext.root, &attributes) != 0 &&
         (attributes.all_event_masks & SubstructureRedirectMask) != 0;
}

// What a window manager leaves free of the screen.
XRectangle work_area() {
  const int width = DisplayWidth(gx_vext.dpy, gx_vext.scrid);
  const int height = DisplayHeight(gx_vext.dpy, gx_vext.scrid);
  std::array<long, 4> area = {0, 0, width, height};
  const Atom wanted = XInternAtom(gx_vext.dpy, "_NET_WORKAREA", False);
  const std::string values = gx_x_property(gx_vext.root, wanted, XA_CARDINAL, 32, 4);
  if (values.size() == sizeof area) std::memcpy(area.data(), values.data(), sizeof area);
  const bool is_sound = area[0] >= 0 && area[1] >= 0 && area[2] > 0 && area[3] > 0 &&
                        area[0] + area[2] <= width && area[1] + area[3] <= height;
  if (!is_sound) area = {0, 0, width, height};
  return {static_cast<short>(area[0]), static_cast<short>(area[1]),
          static_cast<unsigned short>(area[2]), static_cast<unsigned short>(area[3])};
}

// At its place on a bare screen; where windows have frames, so that the frame is on the screen,
// too.
void place_window(XSizeHints& place) {
  constexpr int title_bar = 40, frame = 16;
  place.x = window_x;
  place.y = window_y;
  place.width = DisplayWidth(gx_vext.dpy, gx_vext.scrid) - window_x;
  place.height = DisplayHeight(gx_vext.dpy, gx_vext.scrid) - window_y;
  if (is_managed()) {
    const XRectangle area = work_area();
    place.x = area.x;
    place.y = area.y;
    place.width = area.width - frame;
    place.height = area.height - title_bar - frame / 2;
  }
  place.width = std::max(place.width, min_width);
  place.height = std::max(place.height, min_height);
}

// Makes the window; gives its place and drawable size.
XRectangle make_window(std::string_view window_name) {
  auto& v = gx_vext;
  XSizeHints place{};
  place.flags = USPosition | USSize;
  place_window(place);
  place.min_width = min_width;
  place.min_height = min_height;
  v.win = XCreateSimpleWindow(v.dpy, v.root, place.x, place.y, static_cast<unsigned>(place.width),
                              static_cast<unsigned>(place.height), border_width,
                              v.colorrec[6].pixel, v.colorrec[0].pixel);
  const auto made = gx_x_place_of(v.win);
  if (!made) refuse_start(" !! xerror : cannot get new window geometry ? ");
  v.window_size = {static_cast<std::int16_t>(made->width), static_cast<std::int16_t>(made->height)};
  XSelectInput(v.dpy, v.win, gx_event_mask | gx_structure_mask);
  tell_window_manager(place, window_name);
  XSetWindowAttributes attributes{};
  attributes.bit_gravity = NorthWestGravity;
  attributes.do_not_propagate_mask = 0;
  attributes.colormap = DefaultColormap(v.dpy, v.scrid);
  XChangeWindowAttributes(v.dpy, v.win, CWBitGravity | CWDontPropagate | CWColormap, &attributes);
  return {static_cast<short>(made->x), static_cast<short>(made->y),
          static_cast<unsigned short>(made->width - static_cast<int>(border_width)),
          static_cast<unsigned short>(made->height - static_cast<int>(border_width))};
}

void make_graphics_context() {
  auto& v = gx_vext;
  v.foregrpixel = v.colorrec[5].pixel;
  v.backgrpixel = v.colorrec[0].pixel;
  XGCValues values{};
  values.function = GXcopy;
  values.plane_mask = AllPlanes;
  values.foreground = v.foregrpixel;
  values.background = v.backgrpixel;
  values.line_width = 0;
  values.line_style = LineSolid;
  values.cap_style = CapButt;
  values.join_style = JoinMiter;
  values.fill_style = FillSolid;
  values.graphics_exposures = False;  // copies of the menus need no events
  v.our_gc =
      XCreateGC(v.dpy, v.win,
                GCFunction | GCPlaneMask | GCForeground | GCBackground | GCLineWidth | GCLineStyle |
                    GCCapStyle | GCJoinStyle | GCFillStyle | GCGraphicsExposures,
                &values);
  values.foreground = v.backgrpixel;
  v.copy_gc = XCreateGC(v.dpy, v.win, GCForeground | GCGraphicsExposures, &values);
  gx_begin_strokes();
}

void make_menu_pixmaps(int width, int height) {
  auto& v = gx_vext;
  const int pixmap_width = std::max(width * 297 / 1024, 1);
  const int pixmap_height = std::max(height * 330 / 3072 + height * 330 / 768, 1);
  const auto depth = static_cast<unsigned>(DefaultDepth(v.dpy, v.scrid));
  for (std::size_t level = 0; level < v.menu_pixid.size(); ++level) {
    v.menu_pixid[level] = XCreatePixmap(v.dpy, v.win, static_cast<unsigned>(pixmap_width),
                                        static_cast<unsigned>(pixmap_height), depth);
    if (v.menu_pixid[level] != 0) continue;
    std::printf(" !! xerror :  cannot create pixmap menu%zu ? \n", level + 1);
    gx_set_status(gx_code::init_not_done);
  }
}

constexpr gx_screen_t x_screen = {.draw = gx_draw_strokes,
                                  .clip = gx_clip_strokes,
                                  .clear = gx_clear_area,
                                  .set_exclusive_or = gx_set_exclusive_or,
                                  .flush = [] { XFlush(gx_vext.dpy); },
                                  .sync = [] { XSync(gx_vext.dpy, False); },
                                  .begin_picture = gx_begin_picture,
                                  .end_picture = gx_end_picture,
                                  .keep_area = gx_keep_area,
                                  .put_area_back = gx_put_area_back,
                                  .takes_pixels = gx_takes_pixels,
                                  .put_pixels = gx_put_pixels,
                                  .show_pointer = gx_show_pointer,
                                  .hide_pointer = gx_hide_pointer,
                                  .put_pointer = gx_put_pointer,
                                  .put_pointer_near = gx_put_pointer_near,
                                  .wait_event = gx_wait_x_event,
                                  .ask_for_text = gx_ask_selection,
                                  .find_key = gx_find_key,
                                  .set_colors = gx_set_colors,
                                  .set_title = set_title,
                                  .number_of_planes = number_of_planes,
                                  .height = screen_height,
                                  .close = release_display};
}  // namespace

void gx_init(std::span<const gx_viewport_init_rec_t> viewports, std::string_view window_name) {
  auto& v = gx_vext;
  gx_debug_line(" gx_init :  start ");
  gx_debug(" gx_init :  record sizes : string %zu  name %zu  value %zu  viewport %zu  menu %zu\n",
           sizeof(gx_string_record_t), sizeof(gx_name_record_t), sizeof(gx_value_record_t),
           sizeof(gx_viewport_rec_t), sizeof(gx_menu_rec_t));
  gx_check_start(viewports);
  gx_reset_package();
  open_display(display_name());
  check_root();
  gx_init_colors();
  const XRectangle place = make_window(window_name);
  make_graphics_context();
  const int width = place.width, height = place.height;
  make_menu_pixmaps(width, height);
  gx_make_pointers();
  v.screen = &x_screen;
  gx_pen_clip(place.x + 2, place.y + 2, width + place.x - 3, height + place.y - 3);
  gx_lay_out(width, height, viewports);

  XSelectInput(v.dpy, v.win, gx_event_mask | gx_structure_mask);
  gx_debug("  gxevmsk_gen:%x   gxevmsk_chk:%x \n", static_cast<unsigned>(gx_event_mask), 3U);
  v.lasttime = xtimems();
  XClearWindow(v.dpy, v.win);
  XMapRaised(v.dpy, v.win);
  XFlush(v.dpy);
  gx_debug_line(" gx_init :  end ");
}

bool gx_without_x_error(const std::function<void()>& requests) {
  XSync(gx_vext.dpy, False);
  const int before = nb_of_x_errors;
  requests();
  XSync(gx_vext.dpy, False);
  return nb_of_x_errors == before;
}

void gx_input_enable(long mask) {
  if (gx_vext.dpy == nullptr) return;
  XSelectInput(gx_vext.dpy, gx_vext.win, mask);
  XFlush(gx_vext.dpy);
}
