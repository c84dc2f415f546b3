// An expansion made aside, for what must be answered before the first RUN: the session's design and
// its files stay as they are, and nothing is reported.
#pragma once

#include <memory>
#include <string>

#include "app/find/expanded.h"
#include "expand/setup.h"
#include "expand/store.h"

struct kv_expansion_aside_t {
  kv_setup_t setup;
  kv_design_t design;
  kv_origins_t origins;
  std::unique_ptr<const kv_memory_paths_t> paths;

  kv_expanded_t expanded() const { return {kv_memory_netlist_t(design), origins, *paths}; }
};

// Expands the drawings from the sheet at level 1 down, for the user's wishes; where PRIMitive was
// not given, what has a CLASS and is no block is a leaf. Nothing, and why, when it cannot be done.
std::unique_ptr<kv_expansion_aside_t> kv_expand_aside(std::string& fault);

// A run wants something to keep of every kind of object; a question does not.
void kv_keep_something(kv_setup_t& setup);
