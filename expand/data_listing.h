// The readable listing of the store, "kivo_data".
#pragma once

#include <cstdio>
#include <string_view>

// Both write to `file`; false when something could not be written.
// The head: the listing's path and the summary in kv_sext.general_info.
bool kv_write_listing_head(std::FILE* file, std::string_view path);
// Every record of the store, and the closing line.
bool kv_write_listing_body(std::FILE* file);
