// The command line: its viewport, with the prompt and the command being typed; the caret; which
// character the pointer is on, and the keys that recall and delete text there. `pixel` is a window
// pixel.
#pragma once

#include <string_view>

#include "gx/display/screen_state.h"

inline constexpr int gx_cmd_columns = 60;  // characters of a line that are shown

// Makes the text the command line and shows it, with the caret before a character (from 1), or
// after the last one. While the pointer is elsewhere the line scrolls so that the caret is seen;
// while it is on the line the caret is where the pointer is, which is put there.
void gx_set_command_line(std::string_view text);
void gx_set_command_line(std::string_view text, int caret);

// The character before which the next one goes: that under the pointer, else that of the caret.
int gx_caret();
// The text goes in at the caret.
void gx_insert_text(std::string_view text);
// What is before the caret, after it, or the word before it goes.
enum class gx_cut { before, behind, word };
void gx_cut_line(gx_cut what);

// The character of the command line under the pixel, from 1; below 1 and past the end too.
int gx_cmd_column(gx_point16_t pixel);
// The pixel in the middle of a character of the command line.
gx_point16_t gx_cmd_column_pixel(int column);

void gx_pixel_pos_action();
void gx_again_action(gx_vpid_t vpid, gx_point16_t pixel);    // recalls a list line
void gx_backsp_action(gx_vpid_t vpid, gx_point16_t pixel);   // deletes before the pointer
void gx_chardel_action(gx_vpid_t vpid, gx_point16_t pixel);  // deletes under the pointer

// --- its picture
// Draws " cmd >" and the text, from character istart_cmd on. Nothing without a display.
void gx_display_cmd(std::string_view text);
// Draws just the newly typed characters after the present command text.
void gx_display_cmd_part(std::string_view text);
// The caret shows where the next character goes; it follows the pointer along the line.
void gx_follow_caret();
