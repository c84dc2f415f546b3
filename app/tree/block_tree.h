// The blocks of the design as a tree: a node for each use of a sheet, made when the one above it is
// opened. The blocks of a sheet are worked out once, however often it is used, so that a tree of
// 100,000 open nodes costs some bytes a node.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "app/find/drawings.h"

// An instance of a sheet that has a sheet of its own.
struct kv_tree_block_t {
  std::string name;           // as paths have it
  kv_component_t* component;  // of its sheet
};

struct kv_tree_node_t {
  kv_component_t* component = nullptr;
  std::int32_t above = -1;        // node; -1: the top
  std::int32_t place = 0;         // among the blocks of the sheet above
  std::int32_t first_below = -1;  // node; the others follow it. -1: not made yet
  bool is_open = false;
};

struct kv_block_tree_t {
  kv_drawings_t drawings{};
  std::unordered_map<const kv_component_t*, std::vector<kv_tree_block_t>> blocks{};
  std::vector<kv_tree_node_t> nodes{};  // the top first; empty: there is none
  std::vector<std::int32_t> rows{};     // the nodes under open ones, from top to bottom
};

// As many nodes are made at most.
inline constexpr std::size_t kv_most_tree_nodes = 2'000'000;

// Of the session's drawings, the top open.
void kv_make_tree(kv_block_tree_t& tree);

// "" for the top.
std::string_view kv_tree_name(const kv_block_tree_t& tree, std::int32_t node);
std::string kv_tree_path(const kv_block_tree_t& tree, std::int32_t node);  // "", "/XR/X2"
int kv_tree_depth(const kv_block_tree_t& tree, std::int32_t node);         // 0: the top
bool kv_tree_has_blocks(kv_block_tree_t& tree, std::int32_t node);
int kv_tree_row(const kv_block_tree_t& tree, std::int32_t node);  // -1: under a closed one

void kv_tree_open(kv_block_tree_t& tree, std::int32_t node, bool open);
// The node and all below it; false when there are too many.
bool kv_tree_open_all(kv_block_tree_t& tree, std::int32_t node, bool open);
void kv_tree_reveal(kv_block_tree_t& tree, std::int32_t node);  // opens what is above it

// The node of a path, letters in either case; -1 when there is none.
std::int32_t kv_tree_find(kv_block_tree_t& tree, std::string_view path);
// The next node in the order of the whole tree whose name has the text in it, after the last one
// from the top again; with `from` itself, that one first. -1 when there is none. Sheets without
// such a name anywhere below are not gone into.
std::int32_t kv_tree_search(kv_block_tree_t& tree, std::int32_t from, std::string_view text,
                            bool with_itself);
