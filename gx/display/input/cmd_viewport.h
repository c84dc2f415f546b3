// The command line viewport: the prompt and the command being typed.
#pragma once

#include <string_view>

// Draws " cmd >" and the text, from character istart_cmd on. Nothing without a display.
void gx_display_cmd(std::string_view text);
// Draws just the newly typed characters after the present command text.
void gx_display_cmd_part(std::string_view text);
// The caret shows where the next character goes; it follows the pointer along the line.
void gx_follow_caret();
