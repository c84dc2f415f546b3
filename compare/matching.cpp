#include "compare/matching.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "compare/key_chains.h"

namespace {

constexpr std::int32_t unseen = -2;  // of only_target and only_source, while they are made

std::size_t size_of(std::int32_t place) { return static_cast<std::size_t>(place); }
std::uint64_t number_key(std::int32_t number) { return static_cast<std::uint32_t>(number); }

std::span<const kv_compared_terminal_t> terminals_of(const kv_compared_design_t& design,
                                                     const kv_compared_instance_t& inst) {
  return std::span(design.terminals)
      .subspan(inst.first_terminal, inst.after_terminals - inst.first_terminal);
}

bool same_pins(std::span<const kv_compared_terminal_t> a,
               std::span<const kv_compared_terminal_t> b) {
  return std::ranges::equal(
      a, b, [](const auto& x, const auto& y) { return x.bit == y.bit && x.pin == y.pin; });
}

// Of the values of an instance: all, or those that say what it is.
std::uint64_t values_key(const kv_compared_design_t& design, const kv_compared_instance_t& inst,
                         bool all) {
  constexpr std::array<std::string_view, 4> cell = {"CELL", "CLASS", "DEVICE", "MODEL"};
  std::uint64_t key = 0;
  for (std::size_t i = inst.first_value; i < inst.after_values; ++i) {
    const kv_compared_value_t& value = design.values[i];
    if (all || std::ranges::find(cell, value.name) != cell.end())
      key = kv_key({key, kv_text_key(value.name), kv_text_key(value.text)});
  }
  return key;
}

class matcher_t {
 public:
  matcher_t(const kv_compared_design_t& old, const kv_compared_design_t& now)
      : old_(old), now_(now) {
    m_.block.assign(old.blocks.size(), kv_unmatched);
    m_.instance.assign(old.instances.size(), kv_unmatched);
    m_.old_instance.assign(now.instances.size(), kv_unmatched);
    m_.old_block.assign(now.blocks.size(), kv_unmatched);
  }

  kv_matching_t run() {
    match_blocks();
    match_by_path(old_.nets, now_.nets, [&](std::int32_t o, std::int32_t n) {
      if (o != 0) net_by_path_.emplace_back(o, n);
    });
    match_by_path(old_.instances, now_.instances,
                  [&](std::int32_t o, std::int32_t n) { join_instances(o, n); });
    match_nets();
    for (int round = 0; round < 2 && match_renamed(); ++round) match_nets();
    return std::move(m_);
  }

 private:
  // --- blocks

  void join_blocks(std::int32_t o, std::int32_t n) {
    gx_at(m_.block, o) = n;
    gx_at(m_.old_block, n) = o;
  }

  // The blocks of each level, from the primary sheet down.
  static std::vector<std::vector<std::int32_t>> levels(
      const std::vector<kv_compared_block_t>& blocks) {
    std::vector<std::vector<std::int32_t>> inside(blocks.size()), levels{{0}};
    for (std::size_t i = 1; i < blocks.size(); ++i)
      gx_at(inside, blocks[i].parent).push_back(static_cast<std::int32_t>(i));
    while (!levels.back().empty()) {
      std::vector<std::int32_t> next;
      for (const std::int32_t block : levels.back())
        next.insert(next.end(), gx_at(inside, block).begin(), gx_at(inside, block).end());
      levels.push_back(std::move(next));
    }
    return levels;
  }

  void match_blocks() {
    const auto old_levels = levels(old_.blocks), now_levels = levels(now_.blocks);
    join_blocks(0, 0);
    for (std::size_t level = 1; level < std::min(old_levels.size(), now_levels.size()); ++level) {
      kv_key_chains_t by_name(now_.blocks.size());
      for (auto at = now_levels[level].rbegin(); at != now_levels[level].rend(); ++at) {
        const kv_compared_block_t& block = gx_at(now_.blocks, *at);
        by_name.put(kv_key({number_key(block.parent), kv_text_key(block.name)}), *at);
      }
      std::vector<std::int32_t> lost, found;
      for (const std::int32_t o : old_levels[level]) {
        const kv_compared_block_t& block = gx_at(old_.blocks, o);
        const std::int32_t parent = gx_at(m_.block, block.parent);
        if (parent == kv_unmatched) continue;
        const std::int32_t n = by_name.take(kv_key({number_key(parent), kv_text_key(block.name)}));
        n >= 0 ? join_blocks(o, n) : lost.push_back(o);
      }
      for (const std::int32_t n : now_levels[level]) {
        if (gx_at(m_.old_block, n) == kv_unmatched &&
            gx_at(m_.old_block, gx_at(now_.blocks, n).parent) != kv_unmatched)
          found.push_back(n);
      }
      if (!lost.empty() && !found.empty()) match_contents(lost, old_levels, found, now_levels);
    }
  }

  // What is in a branch: keys that agree less and less.
  struct contents_t {
    std::int32_t leaves = 0;
    std::uint64_t paths = 0, values = 0, nets = 0;
  };
  using levels_t = std::vector<std::vector<std::int32_t>>;
  // Contents of the blocks `tops`, by block; `mapped(block)`: its number in the new design.
  template <typename Mapped>
  static std::vector<contents_t> contents(const kv_compared_design_t& design,
                                          const std::vector<std::int32_t>& tops,
                                          const levels_t& levels, Mapped mapped) {
    std::vector<std::int32_t> top(design.blocks.size(), 0);
    for (const std::int32_t block : tops) gx_at(top, block) = block;
    for (const auto& level : levels) {
      for (const std::int32_t block : level)
        if (gx_at(top, block) == 0)
          gx_at(top, block) = gx_at(top, gx_at(design.blocks, block).parent);
    }
    std::vector<contents_t> contents(design.blocks.size());
    for (const kv_compared_instance_t& inst : design.instances) {
      const std::int32_t in = gx_at(top, inst.block);
      if (in == 0) continue;
      const std::uint64_t path =
          kv_text_key(inst.path.substr(gx_at(design.blocks, in).path.size()));
      contents_t& of = gx_at(contents, in);
      ++of.leaves;
      of.values += kv_key({path, values_key(design, inst, true)});
      for (const kv_compared_terminal_t& terminal : terminals_of(design, inst)) {
        const std::uint64_t pin =
            kv_key({path, kv_text_key(terminal.pin), number_key(terminal.bit)});
        of.paths += pin;
        const kv_compared_net_t& net = gx_at(design.nets, terminal.net);
        if (terminal.net != 0 && gx_at(top, net.block) != in)
          of.nets += kv_key({pin, number_key(mapped(net.block)), kv_text_key(net.name)});
      }
      of.paths += path;
    }
    return contents;
  }

  void match_contents(const std::vector<std::int32_t>& lost, const levels_t& old_levels,
                      const std::vector<std::int32_t>& found, const levels_t& now_levels) {
    const auto old_block = [&](std::int32_t b) { return gx_at(m_.block, b); };
    const auto now_block = [&](std::int32_t b) {
      return gx_at(m_.old_block, b) == kv_unmatched ? kv_unmatched : b;
    };
    const auto olds = contents(old_, lost, old_levels, old_block);
    const auto nows = contents(now_, found, now_levels, now_block);
    for (int rule = 0; rule < 4; ++rule) {
      const auto key = [&](const contents_t& of, std::int32_t parent) {
        return kv_key({number_key(rule == 2 ? 0 : parent), of.paths, rule < 3 ? of.values : 0,
                       rule == 0 ? of.nets : 0});
      };
      kv_key_chains_t chains(now_.blocks.size());
      for (auto at = found.rbegin(); at != found.rend(); ++at) {
        if (gx_at(m_.old_block, *at) == kv_unmatched && gx_at(nows, *at).leaves > 0)
          chains.put(key(gx_at(nows, *at), gx_at(now_.blocks, *at).parent), *at);
      }
      for (const std::int32_t o : lost) {
        if (gx_at(m_.block, o) != kv_unmatched || gx_at(olds, o).leaves == 0) continue;
        const std::int32_t parent = gx_at(m_.block, gx_at(old_.blocks, o).parent);
        const std::int32_t n = chains.take(key(gx_at(olds, o), parent));
        if (n < 0) continue;
        join_blocks(o, n);
        m_.renamed.push_back(o);
      }
    }
  }

  // --- by path

  template <typename Records, typename Join>
  void match_by_path(const Records& olds, const Records& nows, Join join) {
    kv_key_chains_t chains(nows.size());
    const auto key = [](std::int32_t block, std::string_view name) {
      return kv_key({number_key(block), kv_text_key(name)});
    };
    for (auto i = static_cast<std::int32_t>(nows.size()); i-- > 0;)
      chains.put(key(gx_at(nows, i).block, gx_at(nows, i).name), i);
    for (std::int32_t i = 0; size_of(i) < olds.size(); ++i) {
      const std::int32_t block = gx_at(m_.block, gx_at(olds, i).block);
      if (block == kv_unmatched) continue;
      const std::int32_t found = chains.take(key(block, gx_at(olds, i).name));
      if (found >= 0) join(i, found);
    }
  }

  // --- instances

  void join_instances(std::int32_t o, std::int32_t n) {
    if (!same_pins(terminals_of(old_, gx_at(old_.instances, o)),
                   terminals_of(now_, gx_at(now_.instances, n))))
      return;
    gx_at(m_.instance, o) = n;
    gx_at(m_.old_instance, n) = o;
  }

  static std::vector<std::int32_t> without_partner(const std::vector<std::int32_t>& partners) {
    std::vector<std::int32_t> without;
    for (std::int32_t i = 0; size_of(i) < partners.size(); ++i)
      if (gx_at(partners, i) == kv_unmatched) without.push_back(i);
    return without;
  }

  // Its pins and the nets that they are on, of those known in both designs; 0: on none of these.
  template <typename Known>
  static std::uint64_t neighbours(const kv_compared_design_t& design,
                                  const kv_compared_instance_t& inst, Known known) {
    std::uint64_t key = 0;
    bool any = false;
    for (const kv_compared_terminal_t& terminal : terminals_of(design, inst)) {
      const std::int32_t net = known(terminal.net);
      any = any || net > 0;
      key = kv_key({key, kv_text_key(terminal.pin), number_key(terminal.bit), number_key(net)});
    }
    return any ? key | 1U : 0;
  }

  // Instances with other names, by block, neighbours and values; false when none was found.
  bool match_renamed() {
    bool any = false;
    for (int rule = 0; rule < 3; ++rule) {
      const auto lost = without_partner(m_.instance), found = without_partner(m_.old_instance);
      if (lost.empty() || found.empty()) return any;
      const auto key = [&](const kv_compared_design_t& design, const kv_compared_instance_t& inst,
                           std::int32_t block, std::uint64_t near) {
        return kv_key(
            {number_key(rule == 1 ? 0 : block), near, values_key(design, inst, rule < 2)});
      };
      kv_key_chains_t chains(now_.instances.size());
      for (auto at = found.rbegin(); at != found.rend(); ++at) {
        const kv_compared_instance_t& inst = gx_at(now_.instances, *at);
        const std::uint64_t near = neighbours(now_, inst, [&](std::int32_t net) {
          return gx_at(m_.old_net, net) == kv_unmatched ? kv_unmatched : net;
        });
        if (near != 0) chains.put(key(now_, inst, inst.block, near), *at);
      }
      for (const std::int32_t o : lost) {
        const kv_compared_instance_t& inst = gx_at(old_.instances, o);
        const std::uint64_t near =
            neighbours(old_, inst, [&](std::int32_t net) { return gx_at(m_.net, net); });
        if (near == 0) continue;
        const std::int32_t n = chains.take(key(old_, inst, gx_at(m_.block, inst.block), near));
        if (n < 0) continue;
        join_instances(o, n);
        any = true;
      }
    }
    return any;
  }

  // --- nets

  void join_nets(std::int32_t o, std::int32_t n) {
    if (gx_at(m_.net, o) != kv_unmatched || gx_at(m_.old_net, n) != kv_unmatched) return;
    gx_at(m_.net, o) = n;
    gx_at(m_.old_net, n) = o;
  }

  // Calls visit(old net, new net) for each pin of the instances of both.
  template <typename Visit>
  void for_each_pin(Visit visit) const {
    for (std::size_t i = 0; i < m_.instance.size(); ++i) {
      if (m_.instance[i] == kv_unmatched) continue;
      const auto olds = terminals_of(old_, old_.instances[i]);
      const auto nows = terminals_of(now_, gx_at(now_.instances, m_.instance[i]));
      for (std::size_t k = 0; k < olds.size(); ++k) visit(olds[k].net, nows[k].net);
    }
  }

  void match_nets() {
    m_.net.assign(old_.nets.size(), kv_unmatched);
    m_.old_net.assign(now_.nets.size(), kv_unmatched);
    m_.only_target.assign(old_.nets.size(), unseen);
    m_.only_source.assign(now_.nets.size(), unseen);
    const auto narrow = [](std::int32_t& only, std::int32_t net) {
      if (only != net) only = only == unseen ? net : kv_unmatched;
    };
    for_each_pin([&](std::int32_t o, std::int32_t n) {
      narrow(gx_at(m_.only_target, o), n);
      narrow(gx_at(m_.only_source, n), o);
    });
    std::ranges::replace(m_.only_target, unseen, kv_unmatched);
    std::ranges::replace(m_.only_source, unseen, kv_unmatched);
    join_nets(0, 0);
    for (std::int32_t o = 1; size_of(o) < old_.nets.size(); ++o) {  // the same pins
      const std::int32_t n = gx_at(m_.only_target, o);
      if (n > 0 && gx_at(m_.only_source, n) == o) join_nets(o, n);
    }
    for (const auto& [o, n] : net_by_path_) join_nets(o, n);
    match_most_pins();
  }

  // Nets with other names and other pins: those that have the most of their pins in common.
  void match_most_pins() {
    std::vector<std::pair<std::int32_t, std::int32_t>> pins;
    for_each_pin([&](std::int32_t o, std::int32_t n) {
      if (gx_at(m_.net, o) == kv_unmatched && gx_at(m_.old_net, n) == kv_unmatched)
        pins.emplace_back(o, n);
    });
    std::ranges::sort(pins);
    struct common_t {
      std::int32_t net = kv_unmatched;
      std::ptrdiff_t pins = 0;
    };
    std::vector<common_t> of_old(pins.empty() ? 0 : old_.nets.size());
    std::vector<common_t> of_now(pins.empty() ? 0 : now_.nets.size());
    for (auto at = pins.begin(); at != pins.end();) {
      const auto after = std::find_if(at, pins.end(), [&](const auto& pin) { return pin != *at; });
      const auto [o, n] = *at;
      if (after - at > gx_at(of_old, o).pins) gx_at(of_old, o) = {n, after - at};
      if (after - at > gx_at(of_now, n).pins) gx_at(of_now, n) = {o, after - at};
      at = after;
    }
    for (std::int32_t o = 1; size_of(o) < of_old.size(); ++o) {
      const std::int32_t n = gx_at(of_old, o).net;
      if (n != kv_unmatched && gx_at(of_now, n).net == o) join_nets(o, n);
    }
  }

  const kv_compared_design_t &old_, &now_;
  kv_matching_t m_;
  std::vector<std::pair<std::int32_t, std::int32_t>> net_by_path_;
};

}  // namespace

kv_matching_t kv_match(const kv_compared_design_t& old, const kv_compared_design_t& now) {
  return matcher_t(old, now).run();
}

std::string kv_expected_path(const kv_compared_design_t& old, const kv_compared_design_t& now,
                             const kv_matching_t& matching, std::int32_t block,
                             std::string_view name) {
  std::string path(name);
  while (gx_at(matching.block, block) == kv_unmatched) {
    path.insert(0, std::string(gx_at(old.blocks, block).name) + '/');
    block = gx_at(old.blocks, block).parent;
  }
  return std::string(gx_at(now.blocks, gx_at(matching.block, block)).path) + '/' + path;
}
