#include "platform/key_lookup.h"

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
