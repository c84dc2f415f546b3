// How the window looks, as the user wishes: DISPlay SMOoth, WIDth, LINes and CONtext. In a batch
// they are accepted and have no effect.
#pragma once

#include "app/language/command.h"

void kv_display_smooth_cmd(const kv_command_t& command);
void kv_display_width_cmd(const kv_command_t& command);
void kv_display_lines_cmd(const kv_command_t& command);
void kv_display_context_cmd(const kv_command_t& command);
