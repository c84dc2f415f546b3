// Standard output of a batch: the lines of the list as they come.
#pragma once

// From now on each line of the list is printed, or when `quiet` errors and warnings with the lines
// that belong to them. A line leaves at the latest with the next one 50 ms later, or with a flush.
void kv_open_batch_output(bool quiet);

// False when lines were lost; the first loss is told on standard error.
bool kv_flush_batch_output();
