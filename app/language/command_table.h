// The vocabulary of the command language: the rows of all commands files.
#pragma once

#include "app/language/command_row.h"

kv_command_rows_t kv_command_table();

// The first row that the words match; null when there is none.
const kv_command_row_t* kv_find_command(const kv_command_t& command);
