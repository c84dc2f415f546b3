// A change between two designs as a reviewer reads it: one line, printable ASCII.
#pragma once

#include <string>

#include "compare/changes.h"

char kv_change_sign(kv_change change);  // '-' of what is gone, '+' of what is new, else '~'

// "instance /R1: VALUE 10k -> 12k".
std::string kv_change_text(const kv_change_t& change);
