// The lines that the user has typed, which RECall brings back; kept from one session to the next.
//
// They are in `kivo/typed_lines` of the user's state directory ($XDG_STATE_HOME, else
// ~/.local/state), a line each, the newest last. A session without a window neither reads nor
// writes them, and one that cannot write them keeps them for itself.
#pragma once

#include <string_view>

inline constexpr std::size_t kv_most_typed_lines = 1000;

// A line was entered: it is the newest from now on. Blank ones, and one just like the newest, are
// not kept.
void kv_remember_typed(std::string_view line);

// Makes an older line the command line, or a newer one; after the newest what stood there before
// the first. At either end nothing changes.
void kv_recall(bool back);
