// The design file: the image of a design.
#pragma once

#include "expand/design.h"

// Writes the image of a design to an open file, from its start. It is valid only when all of it was
// written: its header is written last. False when something could not be written.
bool kv_write_image(const kv_design_t& design, int fd);

// What is left of an image whose listing could not be opened: the header, and nothing behind it.
bool kv_write_image_header(const kv_design_t& design, int fd);
