// The message list: every report of the program is a line here and in the session file.
#pragma once

#include <string_view>

#include "gx/text/records.h"

// Shows one line (at most 199 characters are kept): always written to the session file; kept in
// the 500-line scroll-back and drawn while the transcript is on. An empty text does nothing.
// Works without a display too.
void gx_display_list(std::string_view text);

void gx_upd_display_list(bool up);  // scrolls one line back (up) or forward
void gx_regen_display_list();       // draws the visible lines again

// Shows a text file line by line; false when it cannot be opened or is the session file itself.
bool gx_display_file_invplist(std::string_view path);
