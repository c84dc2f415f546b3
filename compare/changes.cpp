#include "compare/changes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

#include "compare/matching.h"
#include "results/engineering.h"

namespace {

constexpr auto words = std::to_array<std::string_view>(
    {"branch renamed", "branch gone", "branch new", "instance gone", "instance new",
     "instance renamed", "values changed", "net renamed", "net split", "net joined", "pin moved"});

std::string pin_text(std::string_view before, const kv_compared_terminal_t& terminal) {
  std::string text(before);
  text += terminal.pin;
  if (terminal.bit >= 0) text += '[' + std::to_string(terminal.bit) + ']';
  return text;
}

// A property that one design keeps as a number and the other as a text has changed where these are
// other numbers.
bool is_same(const kv_compared_value_t& a, const kv_compared_value_t& b) {
  if (a.text == b.text || a.is_number == b.is_number) return a.text == b.text;
  const auto x = rs_read_number(a.text), y = rs_read_number(b.text);
  constexpr double kept = 1e-6;  // of what a number keeps
  return x && y && std::fabs(*x - *y) <= kept * std::max(std::fabs(*x), std::fabs(*y));
}
bool is_none(const kv_compared_value_t& value) { return value.is_number && value.text == "0"; }

class teller_t {
 public:
  teller_t(const kv_compared_design_t& old, const kv_compared_design_t& now)
      : old_(old), now_(now), matching_(kv_match(old, now)) {}

  std::vector<kv_change_t> run() {
    for (const std::int32_t o : matching_.renamed)
      put(kv_change::branch_renamed, gx_at(old_.blocks, o).path,
          gx_at(now_.blocks, gx_at(matching_.block, o)).path);
    put_gone();
    put_new();
    for_each_instance([&](const auto& before, const auto& after) {
      if (is_renamed(before, after)) put(kv_change::instance_renamed, before.path, after.path);
    });
    for_each_instance([&](const auto& before, const auto& after) { put_values(before, after); });
    put_nets();
    for_each_instance([&](const auto& before, const auto& after) { put_pins(before, after); });
    for (auto& [nets, change] : moved_together_) changes_.push_back(std::move(change));
    for (kv_change_t& change : moved_alone_) changes_.push_back(std::move(change));
    return std::move(changes_);
  }

 private:
  kv_change_t& put(kv_change change, std::string_view before, std::string_view after) {
    return changes_.emplace_back(
        kv_change_t{.change = change, .before = std::string(before), .after = std::string(after)});
  }

  template <typename Visit>
  void for_each_instance(Visit visit) const {
    for (std::size_t i = 0; i < old_.instances.size(); ++i) {
      if (matching_.instance[i] != kv_unmatched)
        visit(old_.instances[i], gx_at(now_.instances, matching_.instance[i]));
    }
  }

  // Other than by a branch that was renamed: instances and nets.
  template <typename Record>
  bool is_renamed(const Record& before, const Record& after) const {
    if (gx_at(matching_.block, before.block) == after.block && before.name == after.name)
      return false;
    return kv_expected_path(old_, now_, matching_, before.block, before.name) != after.path;
  }

  std::string net_path(const kv_compared_design_t& design, std::int32_t net) const {
    return std::string(gx_at(design.nets, net).path);
  }

  // The blocks that hold leaves of one design alone, with the number of these; 0: no such block.
  static std::vector<std::int32_t> branches_alone(const kv_compared_design_t& design,
                                                  const std::vector<std::int32_t>& block,
                                                  const std::vector<std::int32_t>& instance) {
    std::vector<std::int32_t> leaves(design.blocks.size());
    std::vector<bool> kept(design.blocks.size());
    const auto at = [](std::int32_t in) { return static_cast<std::size_t>(in); };
    for (std::size_t i = 0; i < design.instances.size(); ++i) {
      std::int32_t in = design.instances[i].block;
      if (instance[i] == kv_unmatched) {
        for (; in != 0; in = design.blocks[at(in)].parent) ++leaves[at(in)];
      } else {
        for (; in != 0 && !kept[at(in)]; in = design.blocks[at(in)].parent) kept[at(in)] = true;
      }
    }
    for (std::size_t in = 0; in < leaves.size(); ++in)
      if (kept[in] || block[in] != kv_unmatched) leaves[in] = 0;
    return leaves;
  }

  // Calls `visit` for each of these blocks that is not in another.
  template <typename Visit>
  static void for_each_top(const kv_compared_design_t& design,
                           const std::vector<std::int32_t>& leaves, Visit visit) {
    for (std::size_t in = 1; in < leaves.size(); ++in)
      if (leaves[in] > 0 && gx_at(leaves, design.blocks[in].parent) == 0)
        visit(design.blocks[in], leaves[in]);
  }

  // Where what was in an old block would be in the new design.
  std::string_view sheet_of(std::int32_t block) const {
    while (gx_at(matching_.block, block) == kv_unmatched) block = gx_at(old_.blocks, block).parent;
    return gx_at(now_.blocks, gx_at(matching_.block, block)).path;
  }

  void put_gone() {
    const auto leaves = branches_alone(old_, matching_.block, matching_.instance);
    for_each_top(old_, leaves, [&](const kv_compared_block_t& block, std::int32_t count) {
      kv_change_t& change = put(kv_change::branch_gone, block.path, {});
      change.leaves = count;
      change.sheet = sheet_of(block.parent);
    });
    for (std::size_t i = 0; i < old_.instances.size(); ++i) {
      const kv_compared_instance_t& inst = old_.instances[i];
      if (matching_.instance[i] == kv_unmatched && gx_at(leaves, inst.block) == 0)
        put(kv_change::instance_gone, inst.path, {}).sheet = sheet_of(inst.block);
    }
  }

  void put_new() {
    const auto leaves = branches_alone(now_, matching_.old_block, matching_.old_instance);
    for_each_top(now_, leaves, [&](const kv_compared_block_t& block, std::int32_t count) {
      put(kv_change::branch_new, {}, block.path).leaves = count;
    });
    for (std::size_t i = 0; i < now_.instances.size(); ++i) {
      const kv_compared_instance_t& inst = now_.instances[i];
      if (matching_.old_instance[i] == kv_unmatched) put_new(inst, gx_at(leaves, inst.block) > 0);
    }
  }

  void put_new(const kv_compared_instance_t& inst, bool in_new_branch) {
    kv_change_t& change = put(kv_change::instance_new, {}, inst.path);
    change.in_new_branch = in_new_branch;
    for (std::size_t i = inst.first_value; i < inst.after_values; ++i)
      change.values.push_back({std::string(now_.values[i].name), {}, now_.values[i].text});
    for (std::size_t i = inst.first_terminal; i < inst.after_terminals; ++i) {
      const kv_compared_terminal_t& terminal = now_.terminals[i];
      change.pins.push_back({pin_text({}, terminal), {}, net_path(now_, terminal.net)});
    }
  }

  // Both are ascending by name.
  void put_values(const kv_compared_instance_t& before, const kv_compared_instance_t& after) {
    std::vector<kv_changed_value_t> changed;
    std::size_t o = before.first_value, n = after.first_value;
    while (o < before.after_values || n < after.after_values) {
      const bool only_old = n == after.after_values ||
                            (o < before.after_values && old_.values[o].name < now_.values[n].name);
      const bool only_now = o == before.after_values ||
                            (n < after.after_values && now_.values[n].name < old_.values[o].name);
      if (only_old) {
        if (!is_none(old_.values[o]))
          changed.push_back({std::string(old_.values[o].name), old_.values[o].text, {}});
      } else if (only_now) {
        if (!is_none(now_.values[n]))
          changed.push_back({std::string(now_.values[n].name), {}, now_.values[n].text});
      } else if (!is_same(old_.values[o], now_.values[n])) {
        changed.push_back(
            {std::string(now_.values[n].name), old_.values[o].text, now_.values[n].text});
      }
      o += only_now ? 0 : 1;
      n += only_old ? 0 : 1;
    }
    if (!changed.empty())
      put(kv_change::values_changed, before.path, after.path).values = std::move(changed);
  }

  // Nets with pins in both designs; others have no name that anything is known by.
  void put_nets() {
    std::vector<bool> kept(now_.nets.size());
    for_each_instance([&](const auto& before, const auto& after) {
      for (std::size_t k = before.first_terminal; k < before.after_terminals; ++k) {
        const std::int32_t n =
            now_.terminals[after.first_terminal + (k - before.first_terminal)].net;
        if (gx_at(matching_.net, old_.terminals[k].net) == n)
          kept[static_cast<std::size_t>(n)] = true;
      }
    });
    for (std::size_t o = 1; o < old_.nets.size(); ++o) {
      const std::int32_t n = matching_.net[o];
      if (n != kv_unmatched && kept[static_cast<std::size_t>(n)] &&
          is_renamed(old_.nets[o], gx_at(now_.nets, n)))
        put(kv_change::net_renamed, old_.nets[o].path, gx_at(now_.nets, n).path);
    }
  }

  void put_pins(const kv_compared_instance_t& before, const kv_compared_instance_t& after) {
    for (std::size_t k = before.first_terminal; k < before.after_terminals; ++k) {
      const kv_compared_terminal_t& terminal =
          now_.terminals[after.first_terminal + (k - before.first_terminal)];
      const std::int32_t o = old_.terminals[k].net, n = terminal.net;
      if (gx_at(matching_.net, o) == n) continue;
      kv_changed_pin_t pin{pin_text(std::string(after.path) + '/', terminal), net_path(old_, o),
                           net_path(now_, n)};
      const bool real = o != 0 && n != 0;
      const bool split = real && gx_at(matching_.old_net, n) == kv_unmatched &&
                         gx_at(matching_.only_source, n) == o;
      const bool joined =
          real && gx_at(matching_.net, o) == kv_unmatched && gx_at(matching_.only_target, o) == n;
      kv_change_t* change = nullptr;
      if (split || joined) {
        change = &moved_together_[{o, n}];
        change->change = split ? kv_change::net_split : kv_change::net_joined;
      } else {
        change = &moved_alone_.emplace_back();
        change->change = kv_change::pin_moved;
      }
      change->before = pin.before;
      change->after = pin.after;
      change->pins.push_back(std::move(pin));
    }
  }

  const kv_compared_design_t &old_, &now_;
  const kv_matching_t matching_;
  std::vector<kv_change_t> changes_, moved_alone_;
  std::map<std::pair<std::int32_t, std::int32_t>, kv_change_t> moved_together_;
};

}  // namespace

std::string_view kv_change_word(kv_change change) { return gx_at(words, change); }

std::vector<kv_change_t> kv_compare(const kv_compared_design_t& old,
                                    const kv_compared_design_t& now) {
  return teller_t(old, now).run();
}
