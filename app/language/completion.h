// The command that a begun line means.
#pragma once

#include "gx/text/records.h"

// Replaces the command line by the command that it begins, with the present settings.
void kv_expand_cmd(const gx_string_record_t& line);
