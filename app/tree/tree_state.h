// The part of kv_pext about the tree of blocks.
#pragma once

#include <memory>

struct kv_shown_tree_t;  // app/tree/tree_view.h

struct kv_tree_state_t {
  std::shared_ptr<kv_shown_tree_t> tree;  // null while it is not shown
};
