// Keys, buttons, typing and the window, as a user has them.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <array>
#include <chrono>
#include <thread>
#include <utility>

#include "tests/program/interactive.h"

namespace {
void pause(int ms) { std::this_thread::sleep_for(test_time(ms)); }

TEST_F(Interactive, ALineIsTypedAndEdited) {
  auto& s = open();
  s.type("stbtus kkey f9");
  s.settle();
  point_at(command_column(3));
  s.key(XK_Delete);  // "sttus kkey f9"
  s.settle();
  point_at(command_column(3));
  s.type("a");  // inserted before the character under the pointer
  s.settle();
  point_at(command_column(9));
  s.key(XK_BackSpace);  // before the pointer
  s.settle();
  s.key(XK_Return);
  s.wait_for_line(" STAtus KEY f9 ");
  s.wait_for_line("# KEY : f9 VIEW UP  ");
  // Between the viewports keys go where the pointer was, and BackSpace takes the last character.
  point_at(in_edit);
  s.move(500, 693);
  s.type("smash onn");
  s.key(XK_BackSpace);
  s.key(XK_Return);
  s.wait_for_line(" SMAsh ON ");
  point_at(in_edit);
  s.type("smaash off");
  s.settle();
  point_at(command_column(5));
  s.move(500, 693);
  s.settle();
  s.key(XK_BackSpace);  // where the pointer was on the line
  s.key(XK_Return);
  s.wait_for_line(" SMAsh OFF ");

  // Insert recalls the line under the pointer; Escape forgets it; Return on a blank line is
  // nothing.
  point_at(list_row(2));
  s.key(XK_Insert);
  s.key(XK_Return);
  s.wait_for_line(" STAtus KEY f9 ");
  s.key(XK_Insert);
  s.key(XK_Escape);
  s.key(XK_Return);
  s.type("  \n");
  // At most 194 characters are typed, the two blanks included.
  point_at(in_edit);
  s.type("assign $VAR1 " + std::string(178, 'x'));
  s.settle();
  const auto without_end = s.picture();
  s.type("x");  // the end of the line is in sight
  s.changed(without_end);
  s.type("YZ\n");
  s.wait_for_line(" ASSIgn $VAR1 " + std::string(179, 'x') + " ");
  EXPECT_EQ(count_lines(" STAtus KEY f9 "), 2);
  EXPECT_EQ(count_lines("#  !!! Unknown"), 0);
  bye();
}

TEST_F(Interactive, CharactersAreThoseOfTheLayout) {
  auto& s = open();
  s.type("assign $VAR1 aA1!@~^{}|\\'\"'\n");
  s.wait_for_line(" ASSIgn $VAR1 aA1!@~^{}|\\'\"' ");
  s.key(XK_KP_Enter);
  // A keyboard with a dead accent, an umlaut and a currency sign.
  Display* const display = shared_display().connection();
  int first = 0, last = 0;
  XDisplayKeycodes(display, &first, &last);
  KeySym keys[] = {XK_dead_circumflex, XK_adiaeresis, XK_EuroSign};
  for (int i = 0; i < 3; ++i) XChangeKeyboardMapping(display, last - i, 1, &keys[i], 1);
  XSync(display, False);
  pause(100);
  s.type("assign $VAR1 a");
  for (const int code : {last, last - 1, last - 2}) {
    s.keycode_press(static_cast<unsigned>(code));
  }
  s.type("b");
  s.key(XK_KP_Enter);
  s.wait_for_line(" ASSIgn $VAR1 a^b ");
  bye();
}

// One key of each table and modifier; what each is bound to is compared elsewhere.
TEST_F(Interactive, KeysRunTheirCommands) {
  auto& s = open();
  point_at(in_edit);
  const struct {
    KeySym key;
    unsigned modifiers;
    lines_t heads;  // of press and release, in this order
  } cases[] = {
      {XK_F1, 0, {" MARK RECtangle Edit ", "# SELect AREa "}},
      {XK_F1, s.shift, {" MARK RECtangle Edit ", "# SELect AREa INST "}},
      {XK_F1, s.control, {" MARK RECtangle Edit ", "# SELect AREa VERTEX "}},
      {XK_F1, s.alt, {" MARK RECtangle Edit ", "# SELect AREa FRAME "}},
      {XK_F2, 0, {" UNSelect ALL "}},
      {XK_F4, s.control, {" SNAp ON "}},
      {XK_F7, s.alt, {" SMAsh ON "}},
      {XK_F8, 0, {"# VIEw DOWn ", "# !! Error : "}},
      {XK_F12, s.shift, {" VIEw ALL "}},
      {'u', s.control, {"#  !!! Unknown Command  ?? ", "# \"UNDO \" "}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.heads.front() + " by key " + std::to_string(c.key));
    s.key(c.key, c.modifiers);
    for (const auto& head : c.heads) ASSERT_NO_THROW(s.wait_for_head(head));
    s.key(XK_Escape);
    // The pointer may have been moved onto the grid.
    point_at(in_edit);
  }
  // The command line is completed.
  s.type("base");
  s.key('/', s.control);
  s.key(XK_Return);
  ASSERT_NO_THROW(s.wait_for_line("# BASEpoint Edit 0.0 0.0 "));  // outside of the page
  s.type("jump");
  s.key('?', s.control);
  ASSERT_NO_THROW(s.wait_for_line("#  !! Unknown Command or not implemented for expand  ?? "));
  ASSERT_NO_THROW(s.wait_for_line("# cmd :  \"jump\""));
  s.key(XK_Escape);
  // Unbound keys stay silent: the next line is the one typed.
  const std::size_t before = s.session_lines().size();
  for (const KeySym key : {KeySym{XK_F5}, KeySym{XK_F6}, KeySym{XK_F10}}) s.key(key);
  s.key('o', s.control);
  s.command("smash off");
  s.wait_for_line(" SMAsh OFF ");
  EXPECT_EQ(s.session_lines().size(), before + 1);
  bye();
}

TEST_F(Interactive, ButtonsMarkZoomAndSelect) {
  auto& s = open();
  const auto whole = s.picture();
  point_at({400, 200});
  s.button_down(1);
  s.wait_for_head(" MARK RECtangle Edit ");
  s.settle();
  const auto before = s.picture();
  point_at({600, 400});
  // The dotted rectangle reaches the pointer, on all four sides.
  const auto rubber = s.picture();
  for (const spot middle : {spot{500, 200}, spot{500, 400}, spot{400, 300}, spot{600, 300}}) {
    const auto dots = [&](const test_picture& p) {
      return p.count(white, middle.x - 40, middle.y - 40, middle.x + 40, middle.y + 40);
    };
    EXPECT_GT(dots(rubber), dots(before) + 20) << middle.x << "," << middle.y;
  }
  s.button_up(1);
  s.wait_for_head(" VIEw AREa ");
  s.changed(whole);
  s.key(XK_F12, s.shift);
  s.wait_for_line(" VIEw ALL ");

  s.move(20, 20);
  s.settle();
  s.button_down(3);
  s.wait_for_head(" MARK RECtangle Edit ");
  point_at({1200, 660});
  s.button_up(3);
  s.wait_for_head(" SELect AREa ");
  s.command("status object edit");
  s.wait_for_head("#  OBJect : Handle = ");

  // A drag that is ahead of its mark is not fetched back to it.
  s.move(500, 300);
  s.button_down(1);
  s.move(800, 500);
  s.wait_for_head(" MARK RECtangle Edit ");
  s.settle();
  EXPECT_NEAR(s.pointer().x, 800, 30);  // on the grid by now
  s.button_up(1);
  s.wait_for_head(" VIEw AREa ");
  bye();
}

// The middle of the block U1 on the page fitted to the window.
constexpr int block_x = 383, block_y = 260;

TEST_F(Interactive, AClickSelects) {
  auto& s = open();
  point_at({block_x + 30, block_y});
  const auto whole = s.picture();
  s.click(block_x, block_y);
  s.wait_for_head(" MARK RECtangle Edit ");
  s.wait_for_line(" VIEw AREa  Edit ");
  s.wait_for_head(" SELect OBJect Edit I_");
  s.command("unselect all");
  s.wait_for_line(" UNSelect ALL ");
  point_at({block_x + 30, block_y});
  EXPECT_EQ(s.picture().count(yellow, 0, 0, 1239, 690), whole.count(yellow, 0, 0, 1239, 690))
      << "a click keeps the view";
  // The wire to the block; its net. Nothing on free ground.
  s.click(618 - 14 * 29, 348 - 4 * 29 - 2);
  s.wait_for_head(" SELect OBJect Edit N_");
  pause(700);
  const auto before = s.session_lines().size();
  s.click(1000, 600);
  s.wait_for_line(" VIEw AREa  Edit ");
  pause(700);
  EXPECT_EQ(s.session_lines().size(), before + 2);

  // Another binding has the button to itself.
  s.command("def key b1u 'sel area inst'");
  s.wait_for_head(" DEFine KEY ");
  s.click(block_x, block_y);
  s.wait_for_head(" SELect AREa ");
  pause(700);
  EXPECT_EQ(count_lines(" SELect OBJect Edit "), 2);
  EXPECT_EQ(count_lines(" UNSelect ALL "), 1) << "that of the command: a click echoes its SELect";
  bye();
}

// By events whose times and places are exact.
TEST_F(Interactive, AClickIsShortAndADoubleClickWalks) {
  auto& s = open();
  Display* const display = shared_display().connection();
  Time now = 1000000;
  unsigned state = 0;
  const auto send = [&](int type, int x) {
    XEvent event{};
    event.xbutton.type = type;
    event.xbutton.window = s.window();
    event.xbutton.button = Button1;
    event.xbutton.x = x;
    event.xbutton.y = block_y;
    event.xbutton.time = now;
    event.xbutton.state = state;
    XSendEvent(display, s.window(), False,
               type == ButtonPress ? ButtonPressMask : ButtonReleaseMask, &event);
    XSync(display, False);
  };
  const auto click = [&](int pixels, Time ms) {
    send(ButtonPress, block_x);
    now += ms;
    send(ButtonRelease, block_x + pixels);
  };
  // What was said by then: S a selection, D the way down.
  std::size_t seen = s.session_lines().size();
  const auto said = [&] {
    s.command("view up;view all;unselect all");
    s.wait_for_line(" UNSelect ALL ");
    s.settle();
    std::string text;
    const auto lines = s.session_lines();
    for (; seen < lines.size(); ++seen) {
      if (lines[seen].starts_with(" SELect OBJect Edit I_")) text += 'S';
      if (lines[seen].starts_with(" VIEw DOWn ")) text += 'D';
    }
    now += 10000;
    return text;
  };
  const auto one = [&](int pixels, Time ms) {
    click(pixels, ms);
    return said();
  };
  EXPECT_EQ(one(0, 300) + "," + one(0, 301), "S,");
  EXPECT_EQ(one(3, 10) + "," + one(4, 10) + "," + one(-3, 10), "S,,S");
  const auto two = [&](Time between, int pixels) {
    click(0, 10);
    now += between - 10;
    click(pixels, 10);
    return said();
  };
  EXPECT_EQ(two(500, 0) + "," + two(501, 0), "SD,S");
  EXPECT_EQ(two(100, 3) + "," + two(100, 4), "SD,S");
  for (int i = 0; i < 3; ++i) click(0, 10);  // the third one begins anew
  EXPECT_EQ(said(), "SD");
  const auto title_after = [&](const char* line) {
    for (int i = 0; i < 2; ++i) click(0, 10);
    now += 10000;
    s.wait_for_line(line);
    s.settle();
    return s.title();
  };
  EXPECT_EQ(title_after(" VIEw DOWn  U1"), "kivo  top /U1");
  state = ShiftMask;
  EXPECT_EQ(title_after(" VIEw UP  "), "kivo  top");
  bye();
}

TEST_F(Interactive, ButtonTwoWithShiftPansAndOthersDoNothing) {
  auto& s = open();
  point_at(in_edit);
  const auto before = s.picture();
  const auto drag = [&](spot from, spot to) {
    point_at(from);
    s.key_down(XK_Shift_L);
    s.button_down(2);
    for (int i = 1; i <= 4; ++i)
      s.move(from.x + (to.x - from.x) * i / 4, from.y + (to.y - from.y) * i / 4);
    s.button_up(2);
    s.key_up(XK_Shift_L);
  };
  drag(in_edit, {in_edit.x + 100, in_edit.y - 60});
  s.settle();
  const auto moved = s.picture();
  // The filled frame of the block went along: to the right and up.
  for (const auto& [x, y] : {std::pair{block_x - 117, block_y}, {block_x, block_y - 88}}) {
    const auto near = [&, x = x, y = y](const test_picture& p, int dx, int dy) {
      return p.count(yellow, x + dx - 60, y + dy - 60, x + dx + 60, y + dy + 60);
    };
    EXPECT_GT(near(before, 0, 0), 20);
    EXPECT_EQ(near(moved, 100, -60), near(before, 0, 0));
  }
  drag({in_edit.x + 100, in_edit.y - 60}, in_edit);
  point_at(in_edit);
  EXPECT_EQ(s.picture().pixels, before.pixels);
  for (const int button : {6, 7, 8, 9}) s.click(in_edit.x, in_edit.y, button);
  s.command("smash on");
  s.wait_for_line(" SMAsh ON ");
  EXPECT_EQ(s.session_lines().size(), 2U);
  bye();
}

TEST_F(Interactive, TheWheelZoomsAtThePointerAndScrollsTheList) {
  auto& s = open("status key\nstatus key");
  s.wait_for_line("# End of DO ");
  // On the frame of the block; after some steps in and out the picture is as before.
  point_at({300, 330});
  const auto before = s.picture();
  for (int i = 0; i < 4; ++i) s.click(300, 330, 4);
  const auto zoomed = s.changed(before);
  point_at(list_row(3));
  const auto at_end = s.picture();
  for (int i = 0; i < 5; ++i) s.click(list_row(3).x, list_row(3).y, 4);
  s.changed(at_end);
  for (int i = 0; i < 5; ++i) s.click(list_row(3).x, list_row(3).y, 5);
  s.settle();
  EXPECT_EQ(s.picture().pixels, at_end.pixels);
  bye();
}

TEST_F(Interactive, ArrowsMoveThePointerAndTheSheet) {
  auto& s = open();
  point_at(in_edit);
  const auto before = s.picture();
  const struct {
    KeySym key, back;
    unsigned modifier;
  } moves[] = {{XK_Up, XK_Down, s.shift},
               {XK_Left, XK_Right, s.shift},
               {XK_Down, XK_Up, s.alt},
               {XK_Right, XK_Left, s.alt}};
  const auto becomes = [&](bool as_before) {
    for (int tries = 0; tries < 50; ++tries) {
      s.settle();
      if ((s.picture().pixels == before.pixels) == as_before) return true;
    }
    return false;
  };
  for (const auto& m : moves) {
    s.key(m.key, m.modifier);
    EXPECT_TRUE(becomes(false)) << m.key;
    s.key(m.back, m.modifier);
    EXPECT_TRUE(becomes(true)) << m.key;
  }
  // The same point after one step each way, four times as far with control.
  const auto marked = [&](KeySym key, unsigned modifiers) {
    s.key(key, modifiers);
    s.settle();
    s.command("mark");
    return s.wait_for_head(" MARK Edit ");
  };
  const std::string right = marked(XK_Right, 0);
  EXPECT_NE(marked(XK_Right, s.control), right);
  EXPECT_EQ(marked(XK_Left, s.control), right);
  bye();
}

TEST_F(Interactive, AHeldFunctionKeyIsOnePressAndOneRelease) {
  auto& s = open();
  point_at(in_edit);
  s.key_down(XK_F3);
  s.wait_for_head(" MARK RECtangle Edit ");
  const auto repeats = [] {
    XKeyboardState state{};
    XGetKeyboardControl(shared_display().connection(), &state);
    return state.global_auto_repeat == AutoRepeatModeOn;
  };
  for (const KeySym key : {XK_Shift_L, XK_Control_R, XK_Meta_L, XK_Alt_R, XK_Num_Lock}) {
    s.key(key);
    s.settle();
    EXPECT_FALSE(repeats()) << key;
  }
  const auto repeats_without_focus = [&](int mode) {
    XEvent event{};
    event.xfocus.type = FocusOut;
    event.xfocus.window = s.window();
    event.xfocus.mode = mode;
    XSendEvent(shared_display().connection(), s.window(), False, FocusChangeMask, &event);
    XSync(shared_display().connection(), False);
    s.settle();
    return repeats();
  };
  EXPECT_FALSE(repeats_without_focus(NotifyGrab)) << "of the keyboard, by the key";
  EXPECT_FALSE(repeats_without_focus(NotifyUngrab));
  pause(1500);
  EXPECT_TRUE(repeats_without_focus(NotifyNormal));
  s.key_up(XK_F3);
  s.wait_for_head("# SELect AREa PROPERTY ");
  s.command("smash on");
  s.wait_for_line(" SMAsh ON ");
  EXPECT_EQ(count_lines(" MARK RECtangle Edit "), 1);
  EXPECT_TRUE(repeats());
  bye();
}

TEST_F(Interactive, CapsLockWarnsOnceAndKeepsTheHelpersAway) {
  auto& s = open();
  s.key(XK_Caps_Lock);
  s.wait_for_line("!! Warning : Your Caps Lock Key in ON , So RELEASE IT PLEASE !! ");
  s.key(XK_Prior);
  s.wait_for_line("!! Warning : Your Caps Lock Key in ON , So RELEASE IT FIRST Please !! ");
  s.key(XK_Next);
  s.wait_for_line("!! Warning : Your Caps Lock Key in ON , So RELEASE IT FIRST Please !! ");
  s.key(XK_Caps_Lock);
  s.command("smash on");
  s.wait_for_line(" SMAsh ON ");
  EXPECT_EQ(count_lines("!! Warning : Your Caps Lock"), 3);
  bye();
}

TEST_F(Interactive, SnappingMovesTheRestingPointerOntoTheGrid) {
  auto& s = open("snap on");
  s.wait_for_line("# End of DO ");
  s.move(701, 503);
  pause(2000);
  s.command("basepoint");  // rounds by itself; the pointer is there already
  s.wait_for_head(" BASEpoint ");
  const auto snapped = s.pointer();
  s.move(snapped.x + 2, snapped.y + 2);
  const auto is_back = [&] { return s.pointer().x == snapped.x && s.pointer().y == snapped.y; };
  for (int tries = 0; tries < 100 && !is_back(); ++tries) pause(50);
  EXPECT_TRUE(is_back());
  // It comes to rest, and the program sleeps.
  pause(1200);
  const auto wakes = [&] {
    const std::string status = read_file("/proc/" + std::to_string(s.process().pid()) + "/status");
    const std::string_view head = "\nvoluntary_ctxt_switches:";
    return std::stol(status.substr(status.find(head) + head.size()));
  };
  const auto before = wakes();
  pause(1500);
  EXPECT_LE(wakes() - before, 2);
  bye();
}

TEST_F(Interactive, TheSessionEndsInEveryWay) {
  const struct {
    KeySym key;
    unsigned modifiers;
    const char* said;
  } keys[] = {{'c', test_session::control, " BYE "},   {'d', test_session::control, " QUIT "},
              {'n', test_session::control, " QUIT "},  {'y', test_session::control, " BYE "},
              {XK_F9, test_session::control, " BYE "}, {XK_F9, test_session::alt, " QUIT "}};
  for (const auto& k : keys) {
    open().key(k.key, k.modifiers);
    expect_end();
    EXPECT_EQ(session().session_lines().back(), k.said);
  }
  open().ask_to_close();
  expect_end();
  EXPECT_EQ(session().session_lines().back(), " BYE ");
  // Another program takes the window away while a key is held.
  Display* const display = shared_display().connection();
  auto& s = open();
  point_at(in_edit);
  s.key_down(XK_F6);
  s.settle();
  XDestroyWindow(display, s.window());
  XSync(display, False);
  expect_end();
  s.key_up(XK_F6);
  XKeyboardState state{};
  XGetKeyboardControl(display, &state);
  EXPECT_EQ(state.global_auto_repeat, AutoRepeatModeOn);
}

TEST_F(Interactive, TheWindowSaysWhatItIs) {
  auto& s = open();
  Display* const display = shared_display().connection();
  XWMHints* const hints = XGetWMHints(display, s.window());
  ASSERT_NE(hints, nullptr);
  EXPECT_EQ(hints->flags, InputHint | StateHint);
  EXPECT_EQ(hints->input, True);
  EXPECT_EQ(hints->initial_state, NormalState);
  XFree(hints);
  XSizeHints size{};
  XGetNormalHints(display, s.window(), &size);
  EXPECT_EQ(size.flags, USPosition | USSize);
  EXPECT_EQ((std::array{size.x, size.y, size.width, size.height}),
            (std::array{40, 100, 1240, 924}));
  XClassHint kind{};
  XGetClassHint(display, s.window(), &kind);
  EXPECT_STREQ(kind.res_name, "kivo");
  EXPECT_STREQ(kind.res_class, "Kivo");
  char* icon = nullptr;
  XGetIconName(display, s.window(), &icon);
  EXPECT_STREQ(icon, "kivo  top");
  for (char* const text : {kind.res_name, kind.res_class, icon}) XFree(text);
  XWindowAttributes attributes{};
  XGetWindowAttributes(display, s.window(), &attributes);
  EXPECT_EQ((std::array{attributes.x, attributes.y, attributes.width, attributes.height,
                        attributes.border_width, attributes.bit_gravity}),
            (std::array{40, 100, 1240, 924, 1, NorthWestGravity}));
  EXPECT_EQ(attributes.do_not_propagate_mask, 0);
  EXPECT_EQ(attributes.colormap, DefaultColormap(display, DefaultScreen(display)));
  Atom* protocols = nullptr;
  int count = 0;
  XGetWMProtocols(display, s.window(), &protocols, &count);
  EXPECT_EQ(count, 1);
  XFree(protocols);
  XImage* const corner =
      XGetImage(display, DefaultRootWindow(display), 40, 100, 1, 1, AllPlanes, ZPixmap);
  EXPECT_EQ(XGetPixel(corner, 0, 0) & 0xFFFFFFU, magenta) << "its border";
  XDestroyImage(corner);
  bye();
}

TEST_F(Interactive, TheWindowFitsAScreenWhereWindowsHaveTitles) {
  // A window manager, as far as the program can tell, and the place that it leaves free.
  test_display display(24, 1024, 768);
  Display* const manager = display.connection();
  const Window root = DefaultRootWindow(manager);
  const auto size = [&] {
    const test_session s(display, start_of({"top"}, {}));
    return std::pair{s.width(), s.height()};
  };
  EXPECT_EQ(size(), (std::pair{984, 668})) << "nobody frames it";
  const auto area_atom = XInternAtom(manager, "_NET_WORKAREA", False);
  XSelectInput(manager, root, SubstructureRedirectMask);
  const struct {
    std::array<long, 4> area;
    std::array<int, 4> place;
  } cases[] = {{{8, 24, 1016, 744}, {8, 24, 1000, 696}},
               {{9, 24, 1016, 744}, {0, 0, 1008, 720}},  // wider than the screen
               {{8, 25, 1016, 744}, {0, 0, 1008, 720}},
               {{0, -1, 1024, 700}, {0, 0, 1008, 720}},
               {{0, 0, 0, 700}, {0, 0, 1008, 720}}};
  for (const auto& c : cases) {
    XChangeProperty(manager, root, area_atom, XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(c.area.data()), 4);
    XSync(manager, False);
    const test_process program({.directory = directory_.path(),
                                .words = {"top"},
                                .environment = {"DISPLAY=" + display.name()},
                                .program = {}});
    XEvent event;
    Window window = 0;
    for (int tries = 0; tries < 400 && window == 0; ++tries) {
      pause(20);
      while (window == 0 && XPending(manager) > 0) {
        XNextEvent(manager, &event);
        if (event.type == MapRequest) window = event.xmaprequest.window;
      }
    }
    ASSERT_NE(window, 0U);
    XWindowAttributes attributes{};
    XGetWindowAttributes(manager, window, &attributes);
    EXPECT_EQ((std::array{attributes.x, attributes.y, attributes.width, attributes.height}),
              c.place)
        << c.area[0] << " " << c.area[1];
  }
}

TEST_F(Interactive, KeysPressedWhileACommandRunsFollowIt) {
  directory_.write("slow", "system 'sleep 1'\nsmash on\n");
  auto& s = open();
  s.command("do slow");
  s.wait_for_line("# DO slow ");
  s.key(XK_F2);
  s.type("smash off\n");
  s.wait_for_line(" SMAsh ON ");
  s.wait_for_line("# End of DO ");
  s.wait_for_line(" UNSelect ALL ");
  s.wait_for_line(" SMAsh OFF ");

  // Control+A stops the file after the line in progress.
  s.command("do slow");
  s.wait_for_line("# DO slow ");
  s.key('a', s.control);
  s.wait_for_line("# End of DO ");
  EXPECT_EQ(count_lines(" SMAsh ON "), 1);
  bye();
}

TEST_F(Interactive, TheWindowIsDrawnAgainWhereItWasCovered) {
  auto& s = open();
  for (int i = 0; i < 2; ++i) s.click(300, 330, 4);  // the zoom stays
  // The active border follows the pointer once it moves again.
  const auto picture = [&] {
    point_at({in_edit.x - 20, in_edit.y});
    point_at(in_edit);
    return s.picture();
  };
  const auto before = picture();
  s.cover(100, 100, 500, 700);
  s.settle();
  s.uncover();
  s.settle();
  EXPECT_EQ(picture().pixels, before.pixels);
  bye();
}

TEST_F(Interactive, TheViewOfTheStartUpFileStays) {
  auto& s = open("view area edit .2 .2 1 .8");
  const auto block = [&] { return s.picture().count(yellow, 0, 0, s.width(), 650); };
  s.wait_for_line(" VIEw AREa  Edit ");
  s.settle();
  const int started = block();
  s.command("view all");
  s.wait_for_line(" VIEw ALL ");
  s.settle();
  EXPECT_NE(started, block());
  bye();
}

TEST_F(Interactive, TheWindowMayChangeItsSize) {
  auto& s = open();
  for (const auto& [width, height] : {std::pair{600, 400}, {1100, 900}, {220, 120}, {1230, 700}}) {
    s.resize(width, height);
    s.settle();
    const auto picture = s.picture();
    ASSERT_EQ(picture.width, width);
    // The command viewport has its border at its share of the new size, active or not; the sheet
    // is in the edit viewport.
    const int x0 = width * 4 / 1000, x1 = width * 733 / 1000;
    const auto border = [&, height = height](std::uint32_t color) {
      return picture.count(color, x0, height * 95 / 100, x1, height - 1);
    };
    EXPECT_GT(border(magenta) + border(blue), (x1 - x0) * 2);
    EXPECT_GT(picture.count(yellow, 0, 0, width - 1, height * 3 / 4), 20);
    EXPECT_EQ(picture.count(yellow, 0, height * 77 / 100, x1, height - 1), 0);
    s.move(width / 2, height / 3);
    s.command("smash on");
    s.wait_for_line(" SMAsh ON ");
  }
  // A window that only shrinks is drawn like one that has grown.
  const auto pixels = [&](int width, int height) {
    s.resize(width, height);
    s.settle();
    point_at({width / 2, height / 3});
    return s.picture().pixels;
  };
  const auto narrower = pixels(1229, 700), lower = pixels(1229, 699);
  pixels(600, 400);
  EXPECT_EQ(pixels(1229, 699), lower);
  EXPECT_EQ(pixels(1229, 700), narrower);
  bye();
}

}  // namespace
