// Whatever comes from keyboard and mouse, in whatever order, the session goes on and ends in order.
#include <X11/Xlib.h>

#include <random>
#include <span>

#include "tests/program/interactive.h"

namespace {

class Storm : public Interactive {
 protected:
  void storm(test_session& s, std::span<const std::string_view> commands, int events);
};

void Storm::storm(test_session& s, std::span<const std::string_view> commands, int events) {
  // The keys that end the session or stop it for a shell command are left out.
  constexpr KeySym keys[] = {
      XK_F1,     XK_F2,        XK_F3,     XK_F4,     XK_F5,    XK_F6,        XK_F7,    XK_F8,
      XK_F10,    XK_F11,       XK_F12,    XK_Up,     XK_Down,  XK_Left,      XK_Right, XK_Escape,
      XK_Insert, XK_BackSpace, XK_Delete, XK_Return, XK_space, XK_Caps_Lock, 'a',      'z',
      '$',       '1',          '"',       ';',       'd',      XK_Tab,       XK_Home,  XK_Num_Lock};
  constexpr KeySym modifiers[] = {XK_Shift_L, XK_Alt_L};
  std::mt19937 random(20260);
  const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  int width = s.width(), height = s.height();
  for (int i = 0; i < events; ++i) {
    const KeySym key = keys[below(std::size(keys))];
    switch (below(12)) {
      case 0:
      case 1:
      case 2:
      case 3:
        s.move(static_cast<int>(below(static_cast<std::size_t>(width))),
               static_cast<int>(below(static_cast<std::size_t>(height))));
        break;
      case 4:
        s.button_down(1 + static_cast<int>(below(5)));
        break;
      case 5:
        s.button_up(1 + static_cast<int>(below(5)));
        break;
      case 6:
        s.key(key);
        break;
      case 7:
        s.key_down(key);
        break;
      case 8:
        s.key_up(key);
        break;
      case 9:
        s.key_down(modifiers[below(2)]);
        break;
      case 10:
        s.key_up(modifiers[below(2)]);
        break;
      default:
        if (below(20) == 0) {
          width = 150 + static_cast<int>(below(1080));
          height = 100 + static_cast<int>(below(820));
          s.resize(width, height);
        } else if (below(20) == 0) {
          s.cover(static_cast<int>(below(300)), static_cast<int>(below(300)), 200, 200);
        } else {
          s.uncover();
        }
        if (below(10) == 0) s.command(commands[below(commands.size())]);
        break;
    }
    if (i % 500 == 0) {
      ASSERT_TRUE(s.process().running()) << "after " << i << " events: " << s.process().out();
    }
  }
  for (int button = 1; button <= 5; ++button) s.button_up(button);
  for (const KeySym key : keys) s.key_up(key);
  for (const KeySym key : modifiers) s.key_up(key);
  // The display is that of other tests, too, which type small letters.
  Display* const display = shared_display().connection();
  Window root = 0, child = 0;
  int x = 0, y = 0;
  unsigned state = 0;
  XQueryPointer(display, DefaultRootWindow(display), &root, &child, &x, &y, &x, &y, &state);
  if ((state & LockMask) != 0) s.key(XK_Caps_Lock);
  s.uncover();
  s.ask_to_close();
  const auto ended = s.process().wait(test_time(300000));
  EXPECT_EQ(ended.status, 0) << ended.out << ended.err;
  EXPECT_EQ(ended.signal, 0);
  EXPECT_GT(s.session_lines().size(), 500U);
  EXPECT_NE(ended.out.find("Execution complete"), ended.out.npos);
}

TEST_F(Storm, TenThousandRandomEventsDoNoHarm) {
  constexpr std::string_view commands[] = {"view all", "status key f1",  "grid on",
                                           "$dm1",     "$xim",           "view down U1",
                                           "view up",  "select area all"};
  storm(open(), commands, 10000);
}

// With all that the product directory adds, where typing over the tree searches.
TEST_F(Storm, NorWithTheTreeTheHintsAndTheKeysOfToday) {
  constexpr std::string_view commands[] = {"view tree on", "view tree off", "display hints on",
                                           "view all",     "view tree",     "view tree /U1",
                                           "view up",      "check design"};
  storm(open("view tree on", KIVO_PRODUCT_DIR), commands, 6000);
}

}  // namespace
