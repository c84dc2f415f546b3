// What makes a design file sound: all that a reader relies on, and what betrays a part that was not
// written or was written over.
#pragma once

#include <optional>
#include <string>

class kvi_design_t;

// The first record that is found wrong, for instance "net 17"; nothing when the design, which is
// mapped from `fd`, is sound. One pass over each part, from its end, by reading: a piece of the
// file in the processor's cache costs less than mapped pages do, and a file that is cut meanwhile
// is no danger. Takes 4 bytes of memory for each link of a pin, net or net child.
std::optional<std::string> kvi_find_damage(const kvi_design_t& design, int fd);
