// The event loop and what it does on its own: typing, keys, buttons, the pointer, menus, exposure.
// Texts of the defaults are in default_bindings.cpp and default_menus.cpp.
#pragma once

#include <cstdint>

#include "app/state.h"

// One typed character, or Return or Linefeed, which runs the command line with the given tables.
// Any other keysym stops the program with invalid_string.
void kv_ascii_action(std::uint32_t keysym, kv_array_param_t& args, kv_array_param_t& vars);

// The state, key bindings and menus of a fresh session, then the user's files of the product
// directory. Called once at start-up.
void kv_init_menu_action();
void kv_set_default_bindings();
void kv_set_default_menus();

// All that the window shows, menus aside; `resized`: sheets are fitted into its new size.
void kv_draw_window(bool resized);

// The loop, until the session ends or, when it is not the first, until a line was answered.
void kv_process_events(bool first, kv_array_param_t& args, kv_array_param_t& vars);
