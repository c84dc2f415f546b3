// What a run writes: the design file and, when asked for, the listing.
#pragma once

#include <string>

#include "expand/design.h"

// Writes the image of a design to an open design file and, when a path is given, the listing there.
// False when something could not be written, `why` then names the file and what the system said; a
// listing that cannot be opened is reported, and its image then ends after the header.
bool kv_write_design(const kv_design_t& design, int designfile, const std::string& listing_path,
                     std::string& why);
