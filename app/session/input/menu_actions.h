// What the pointer does to the menu shown, and the commands about menus.
#pragma once

#include "gx/text/records.h"

// Where the level-1 menu opens in the edit viewport.
inline constexpr gx_point16_t kv_menu_position = {50, 50};

void kv_locator_in_menu();    // on a line: it is highlighted
void kv_locator_out_menu();   // outside: the deepest level closes
void kv_locator_in_boxmen();  // in the opening zone: the line's own menu opens

void kv_show_menu_to_click();  // it stays without a button: the next click takes a line
bool kv_open_chosen_menu();    // the chosen line's own menu opens, if it has one
void kv_close_menu();          // and nothing is run

// Closes the menu and runs the command of the chosen line, if it has one.
void kv_execute_item_menu();
