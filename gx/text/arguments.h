// The store of the program's command-line words, numbered from 1 (the program itself).
#pragma once

#include <cstdint>

#include "gx/text/records.h"

inline constexpr int gx_max_arg_comline = 40;

// Keeps 2..40 words; another count is reported and ends the process with status 0. A word is cut
// at its first character below 32; one of 199 characters and more is kept empty.
void gx_store_arg(int argc, const char* const* argv);

// Word n (from 1); false and an empty string outside 1..count.
bool gx_get_arg(std::int32_t n, gx_string_record_t& word);
