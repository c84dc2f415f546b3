// Standard output of a batch: the lines of the list as they come.
#pragma once

#include "gx/text/front.h"

// The front of a batch: each line of the list is printed, or when `quiet` errors and warnings with
// the lines that belong to them. A line leaves at the latest with the next one 50 ms later, or with
// a flush. Messages go to standard error.
const gx_front_t& kv_batch_lines(bool quiet);

// False when lines were lost; the first loss is told on standard error.
bool kv_flush_batch_output();
