// From a key event of X to characters, keysym and reduced modifiers.
#pragma once

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <string_view>

// The number of characters put into `buffer` (at most `length`, not terminated). The event's state
// is overwritten by the reduced modifier code: 4 Control, else 1 Shift or Lock, else 8 Mod1 or
// Mod3, else 0. F1..F12 give no character and keep their keysym whatever the modifiers.
int xlookupstring(XKeyEvent& event, char* buffer, int length, KeySym& keysym,
                  XComposeStatus* compose);

// The key that a key stands for, given its text: the number pad's keys stand for the keys they
// repeat, and a dead accent for its ASCII character, since no accented letter can be typed here.
KeySym xplainkey(KeySym keysym, std::string_view text);
