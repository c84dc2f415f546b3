// The values that a command line may refer to.
#pragma once

#include <array>

#include "gx/text/records.h"

// The values behind $ARG1..$ARG30 or $VAR1..$VAR30; an empty entry has length 0.
using kv_array_param_t = std::array<gx_string_record_t, 30>;
