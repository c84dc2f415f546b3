#include "app/tree/block_tree.h"

#include <algorithm>

#include "app/sheet/walk.h"
#include "expand/sheet/sheet_parts.h"
#include "expand/store.h"
#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/db/queries.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"

namespace {
kv_tree_node_t& node_of(kv_block_tree_t& tree, std::int32_t node) {
  return gx_at(tree.nodes, node);
}
const kv_tree_node_t& node_of(const kv_block_tree_t& tree, std::int32_t node) {
  return gx_at(tree.nodes, node);
}

const std::vector<kv_tree_block_t>& blocks_of(kv_block_tree_t& tree, kv_component_t& component) {
  const auto [at, is_new] = tree.blocks.try_emplace(&component);
  if (!is_new || component.file == nullptr) return at->second;
  const auto& sheet = *component.file;
  std::vector<kv_tree_block_t> blocks;
  for (const int inst : lb_instances(sheet)) {
    if (gx_inq_object_deleted(sheet, inst) || kv_role_of(sheet, inst) != kv_inst_role::part ||
        kv_found_primitive(kv_sext, sheet, inst))
      continue;
    auto* const below = tree.drawings.component_in(kv_sheet_directory(sheet, inst));
    if (below != nullptr) blocks.push_back({lb_inst_name(sheet, inst), below});
  }
  return at->second = std::move(blocks);
}

int count_below(kv_block_tree_t& tree, std::int32_t node) {
  if (kv_tree_depth(tree, node) + 1 >= kv_max_levels) return 0;
  return static_cast<int>(blocks_of(tree, *node_of(tree, node).component).size());
}

// False when there are too many.
bool make_below(kv_block_tree_t& tree, std::int32_t node) {
  if (node_of(tree, node).first_below >= 0) return true;
  const int count = count_below(tree, node);
  if (tree.nodes.size() + static_cast<std::size_t>(count) > kv_most_tree_nodes) return false;
  node_of(tree, node).first_below = static_cast<std::int32_t>(tree.nodes.size());
  const auto& blocks = blocks_of(tree, *node_of(tree, node).component);
  for (int i = 0; i < count; ++i)
    tree.nodes.push_back({.component = gx_at(blocks, i).component, .above = node, .place = i});
  return true;
}

// What is shown: from each open node on to those below it.
void make_rows(kv_block_tree_t& tree) {
  tree.rows.clear();
  std::vector<std::int32_t> waiting;
  if (!tree.nodes.empty()) waiting.push_back(0);
  while (!waiting.empty()) {
    const std::int32_t node = waiting.back();
    waiting.pop_back();
    tree.rows.push_back(node);
    const kv_tree_node_t& record = node_of(tree, node);
    if (!record.is_open || record.first_below < 0) continue;
    for (std::int32_t i = count_below(tree, node); i > 0; --i)
      waiting.push_back(record.first_below + i - 1);
  }
}

bool has_text(std::string_view name, std::string_view text) {
  const auto found =
      std::search(name.begin(), name.end(), text.begin(), text.end(),
                  [](char a, char b) { return gx_upper_case(a) == gx_upper_case(b); });
  return found != name.end();
}

// Goes on only where a name below has the text.
class tree_search {
 public:
  tree_search(kv_block_tree_t& tree, std::string_view text) : tree_(tree), text_(text) {}

  bool fits(std::int32_t node) const { return has_text(kv_tree_name(tree_, node), text_); }

  // The first below a node; -1: none.
  std::int32_t first_below(std::int32_t node) {
    if (!is_below(*node_of(tree_, node).component) || !make_below(tree_, node)) return -1;
    return first_from(node, 0);
  }

  // The first after all that is below a node.
  std::int32_t first_after(std::int32_t node) {
    for (; node > 0; node = node_of(tree_, node).above) {
      const kv_tree_node_t& record = node_of(tree_, node);
      if (const auto found = first_from(record.above, record.place + 1); found >= 0) return found;
    }
    return -1;
  }

 private:
  std::int32_t first_from(std::int32_t above, std::int32_t place) {
    const std::int32_t count = count_below(tree_, above);
    for (std::int32_t i = place; i < count; ++i) {
      const std::int32_t node = node_of(tree_, above).first_below + i;
      if (fits(node)) return node;
      if (const auto found = first_below(node); found >= 0) return found;
    }
    return -1;
  }

  // Whether a block on a sheet or below it has the text; a sheet inside itself asks itself no more.
  bool is_below(kv_component_t& component) {
    const auto [at, is_new] = known_.try_emplace(&component, false);
    if (!is_new) return at->second;
    const auto& blocks = blocks_of(tree_, component);
    const bool found = std::ranges::any_of(blocks, [&](const kv_tree_block_t& block) {
      return has_text(block.name, text_) || is_below(*block.component);
    });
    return known_[&component] = found;
  }

  kv_block_tree_t& tree_;
  std::string_view text_;
  std::unordered_map<const kv_component_t*, bool> known_{};
};
}  // namespace

void kv_make_tree(kv_block_tree_t& tree) {
  if (auto* const top = tree.drawings.top_component()) tree.nodes.push_back({.component = top});
  if (!tree.nodes.empty()) kv_tree_open(tree, 0, true);
}

std::string_view kv_tree_name(const kv_block_tree_t& tree, std::int32_t node) {
  const kv_tree_node_t& record = node_of(tree, node);
  if (record.above < 0) return {};
  return gx_at(tree.blocks.at(node_of(tree, record.above).component), record.place).name;
}

std::string kv_tree_path(const kv_block_tree_t& tree, std::int32_t node) {
  std::string path;
  for (; node > 0; node = node_of(tree, node).above)
    path.insert(0, "/" + std::string(kv_tree_name(tree, node)));
  return path;
}

int kv_tree_depth(const kv_block_tree_t& tree, std::int32_t node) {
  int depth = 0;
  for (; node > 0; node = node_of(tree, node).above) ++depth;
  return depth;
}

bool kv_tree_has_blocks(kv_block_tree_t& tree, std::int32_t node) {
  return count_below(tree, node) > 0;
}

int kv_tree_row(const kv_block_tree_t& tree, std::int32_t node) {
  const auto at = std::ranges::find(tree.rows, node);
  return at == tree.rows.end() ? -1 : static_cast<int>(at - tree.rows.begin());
}

void kv_tree_open(kv_block_tree_t& tree, std::int32_t node, bool open) {
  node_of(tree, node).is_open = open && make_below(tree, node);
  make_rows(tree);
}

bool kv_tree_open_all(kv_block_tree_t& tree, std::int32_t node, bool open) {
  bool all = true;
  std::vector<std::int32_t> waiting = {node};
  while (!waiting.empty()) {
    const std::int32_t next = waiting.back();
    waiting.pop_back();
    const bool made = open ? make_below(tree, next) : node_of(tree, next).first_below >= 0;
    all = all && (made || !open);
    node_of(tree, next).is_open = open && made;
    if (!made) continue;
    for (std::int32_t i = count_below(tree, next); i > 0; --i)
      waiting.push_back(node_of(tree, next).first_below + i - 1);
  }
  make_rows(tree);
  return all;
}

void kv_tree_reveal(kv_block_tree_t& tree, std::int32_t node) {
  bool changed = false;
  for (node = node_of(tree, node).above; node >= 0; node = node_of(tree, node).above) {
    changed = changed || !node_of(tree, node).is_open;
    node_of(tree, node).is_open = true;
  }
  if (changed) make_rows(tree);
}

std::int32_t kv_tree_find(kv_block_tree_t& tree, std::string_view path) {
  if (tree.nodes.empty()) return -1;
  if (path.starts_with('/')) path.remove_prefix(1);
  while (path.ends_with('/')) path.remove_suffix(1);
  std::int32_t node = 0;
  while (!path.empty()) {
    // Names may hold a "/" themselves.
    const auto& blocks = blocks_of(tree, *node_of(tree, node).component);
    const auto next = std::ranges::find_if(blocks, [&](const kv_tree_block_t& block) {
      return gx_equal(block.name, path) &&
             (path.size() == block.name.size() || path[block.name.size()] == '/');
    });
    if (next == blocks.end() || count_below(tree, node) == 0 || !make_below(tree, node)) return -1;
    node = node_of(tree, node).first_below + static_cast<std::int32_t>(next - blocks.begin());
    path.remove_prefix(std::min(next->name.size() + 1, path.size()));
  }
  return node;
}

std::int32_t kv_tree_search(kv_block_tree_t& tree, std::int32_t from, std::string_view text,
                            bool with_itself) {
  if (tree.nodes.empty() || text.empty()) return -1;
  tree_search search(tree, text);
  if (with_itself && search.fits(from)) return from;
  if (const auto found = search.first_below(from); found >= 0) return found;
  if (const auto found = search.first_after(from); found >= 0) return found;
  return search.first_below(0);
}
