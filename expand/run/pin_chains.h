// The chains of pins on a net. One pin has one link a direction, and the members of a bus that
// meet the same pins share the end of their chains; no chain ever loses a pin or gains one.
#pragma once

#include <cstdint>

#include "expand/design.h"

enum class kv_chained {
  all,        // on every chain asked for
  uncounted,  // the same, and a chain is longer than its counter from this pin on
  not_all,    // a chain could not take it without gaining or losing pins
};

// Puts a pin on the chains of its type (input, output or both) of the nets first_net ..
// first_net + nb_of_net - 1: one net, or members of one bus. A chain is appended to at the end
// where that changes no other chain, else the pin is put at its head.
kv_chained kv_chain_pin(kv_design_t& design, std::int32_t pin, std::int32_t first_net,
                        std::int32_t nb_of_net);
