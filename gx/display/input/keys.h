// The table of command texts bound to named keys and buttons.
//
// A name is a stem, the key within it and a suffix, in either case: "f3" (F3 pressed), "f10c" (with
// control), "f2us" (released with shift), "ar" (right arrow), "b1u" (button 1 released), "cntl_x",
// "wds" (the wheel turned down with shift), "tab", "esc".
#pragma once

#include <string_view>

#include "gx/text/records.h"

bool gx_set_key_action(std::string_view key_name, std::string_view action);  // false: unknown name
// Buttons 2 and 3 pressed are asked for in lower case only ("b2", "b3").
bool gx_get_key_action(std::string_view key_name, gx_string_record_t& action);
void gx_status_key_all();  // one list line for every key with a command
