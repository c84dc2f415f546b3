// The table of command texts bound to named keys and buttons ("f3", "f10c", "b1u", "cntl_x", ...).
#pragma once

#include <string_view>

#include "gx/text/records.h"

bool gx_set_key_action(std::string_view key_name, std::string_view action);  // false: unknown name
bool gx_get_key_action(std::string_view key_name, gx_string_record_t& action);
void gx_status_key_all();  // one list line for every binding
