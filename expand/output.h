// The two forms in which a run leaves the program: the design file image and the data listing.
#pragma once

#include <string_view>

// Writes the image to kv_sext.designfile and, when a listing is asked for, the readable listing
// into `listing_dir` + "/kivo_data". The image is valid only when all of it was written: its
// header is written last. False when something could not be written.
bool kv_write_output(bool gen_data, std::string_view listing_dir);
