#include "gx/window/key_lookup.h"

#include <X11/keysym.h>

namespace {
constexpr KeySym keysym_mask = 0xFFFF;

unsigned reduced_modifiers(unsigned state) {
  if ((state & ControlMask) != 0) return ControlMask;
  if ((state & (ShiftMask | LockMask)) != 0) return ShiftMask;
  if ((state & (Mod1Mask | Mod3Mask)) != 0) return Mod1Mask;
  return 0;
}

KeySym plain_keysym(XKeyEvent& event) {
  for (int index = 0; index <= 2; ++index)
    if (const KeySym found = XLookupKeysym(&event, index) & keysym_mask; found != 0) return found;
  return NoSymbol;
}

struct key_twin_t {
  KeySym key, stands_for;
};
constexpr key_twin_t twins[] = {
    {XK_KP_Enter, XK_Return},       {XK_KP_Up, XK_Up},
    {XK_KP_Left, XK_Left},          {XK_KP_Down, XK_Down},
    {XK_KP_Right, XK_Right},        {XK_KP_Prior, XK_Prior},
    {XK_KP_Next, XK_Next},          {XK_KP_Insert, XK_Insert},
    {XK_KP_Delete, XK_Delete},      {XK_dead_grave, XK_grave},
    {XK_dead_acute, XK_apostrophe}, {XK_dead_circumflex, XK_asciicircum},
    {XK_dead_tilde, XK_asciitilde}, {XK_dead_diaeresis, XK_quotedbl},
};
}  // namespace

int xlookupstring(XKeyEvent& event, char* buffer, int length, KeySym& keysym,
                  XComposeStatus* compose) {
  const unsigned modifiers = reduced_modifiers(event.state);
  int count = 0;
  keysym = plain_keysym(event);
  if (keysym < XK_F1 || keysym > XK_F12) {
    count = XLookupString(&event, buffer, length, &keysym, compose);
    keysym &= keysym_mask;
  }
  event.state = modifiers;
  return count;
}

KeySym xplainkey(KeySym keysym, std::string_view text) {
  const bool is_pad_text = keysym >= XK_KP_Space && keysym <= XK_KP_9 && text.size() == 1 &&
                           text[0] >= ' ' && text[0] <= '~';
  if (is_pad_text) return static_cast<KeySym>(text[0]);
  for (const key_twin_t& twin : twins)
    if (twin.key == keysym) return twin.stands_for;
  return keysym;
}
