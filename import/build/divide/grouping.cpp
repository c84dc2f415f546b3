// Groups grow one after the other.
#include "import/build/divide/grouping.h"

#include <cstdint>
#include <queue>
#include <tuple>

#include "gx/text/at.h"
#include "import/build/divide/object_count.h"

namespace {

// Nets of more pins say nothing about what belongs together.
constexpr std::size_t most_telling = 64;
constexpr std::int64_t whole_bond = 1 << 16;  // of a net of two pins

class grower {
 public:
  grower(const gxi_design_t& design, const gxi_sheet_t& sheet,
         const std::vector<gxi_movable_t>& movable, const gxi_group_limits_t& limits)
      : design_(design),
        sheet_(sheet),
        movable_(movable),
        limits_(limits),
        seen_(movable.size()),
        nets_(sheet.nets.size()),
        symbol_in_(design.cells.size(), no_group) {
    std::vector<bool> moves(sheet.instances.size());
    for (const auto& one : movable) moves[one.instance] = true;
    for (std::size_t i = 0; i < sheet.instances.size(); ++i)
      if (!moves[i])
        for (const int net : sheet.instances[i].nets)
          if (net >= 0) gx_at(nets_, net).leaves = true;
    for (std::size_t i = 0; i < nets_.size(); ++i)
      if (!sheet.nets[i].port.empty() || !sheet.nets[i].global.empty()) nets_[i].leaves = true;
    for (std::size_t i = 0; i < movable.size(); ++i)
      for (const int net : nets_of(i))
        if (net >= 0) gx_at(nets_, net).members.push_back(i);
  }

  std::vector<std::vector<gxi_movable_t>> run() {
    std::size_t next_in_order = 0;
    while (true) {
      auto candidate = most_bound();
      while (candidate == none && next_in_order < seen_.size()) {
        if (!seen_[next_in_order].taken) candidate = next_in_order;
        ++next_in_order;
      }
      if (candidate == none) return std::move(groups_);
      if (groups_.empty() || !fits(candidate)) start();
      add(candidate);
    }
  }

 private:
  static constexpr std::size_t none = SIZE_MAX, no_group = SIZE_MAX;

  struct seen_t {
    bool taken = false;
    std::size_t group = no_group;  // in which it was met
    std::int64_t bond = 0;
    std::size_t since = 0;
  };
  struct net_t {
    std::vector<std::size_t> members{};  // one for each pin
    bool leaves = false;                 // goes on elsewhere in any case
    std::size_t group = no_group;
    std::size_t pins_in = 0;
  };

  const gxi_instance_t& instance(std::size_t i) const {
    return sheet_.instances[movable_[i].instance];
  }
  const std::vector<int>& nets_of(std::size_t i) const { return instance(i).nets; }

  void start() {
    groups_.emplace_back();
    objects_ = names_in_ = 0;
    bound_ = {};
  }

  // The one that shares most with the group; of equal ones that met first.
  std::size_t most_bound() {
    while (!bound_.empty()) {
      const auto [bond, since, i] = bound_.top();
      bound_.pop();
      if (!seen_[i].taken && seen_[i].bond == bond) return i;
    }
    return none;
  }

  // What the instance adds; a net that comes to lie within the group needs no port.
  std::size_t grows_by(std::size_t i) const {
    std::size_t more = movable_[i].with_it + gxi_count_objects(design_, instance(i));
    const auto symbol = static_cast<std::size_t>(instance(i).symbol);
    if (symbol_in_[symbol] != groups_.size())
      more += gxi_count_objects(design_.cells[symbol].symbol);
    for (const int net : nets_of(i))
      more += is_new(net) ? gxi_objects_of_net + gxi_objects_of_port : 0;
    return more;
  }
  bool is_new(int net) const { return net >= 0 && gx_at(nets_, net).group != groups_.size(); }

  bool is_named(int net) const { return !gx_at(sheet_.nets, net).name.empty(); }

  bool fits(std::size_t i) const {
    std::size_t names = names_in_;
    for (const int net : nets_of(i)) names += is_new(net) && is_named(net);
    return groups_.back().empty() ||
           (objects_ + grows_by(i) <= limits_.objects && names <= limits_.names &&
            groups_.back().size() < limits_.instances);
  }

  void add(std::size_t i) {
    seen_[i].taken = true;
    objects_ += grows_by(i);
    gx_at(symbol_in_, instance(i).symbol) = groups_.size();
    groups_.back().push_back(movable_[i]);
    for (const int index : nets_of(i)) {
      if (index < 0) continue;
      auto& net = gx_at(nets_, index);
      if (is_new(index)) {
        net.group = groups_.size();
        net.pins_in = 0;
        names_in_ += is_named(index);
        bind(net);
      }
      if (++net.pins_in == net.members.size() && !net.leaves) objects_ -= gxi_objects_of_port;
    }
  }

  void bind(const net_t& net) {
    if (net.members.size() < 2 || net.members.size() > most_telling) return;
    const auto bond = whole_bond / static_cast<std::int64_t>(net.members.size() - 1);
    for (const auto i : net.members) {
      auto& seen = seen_[i];
      if (seen.taken) continue;
      if (seen.group != groups_.size()) seen = {.group = groups_.size(), .since = ++clock_};
      seen.bond += bond;
      bound_.emplace(seen.bond, -static_cast<std::int64_t>(seen.since), i);
    }
  }

  const gxi_design_t& design_;
  const gxi_sheet_t& sheet_;
  const std::vector<gxi_movable_t>& movable_;
  const gxi_group_limits_t& limits_;
  std::vector<seen_t> seen_;
  std::vector<net_t> nets_;
  std::vector<std::size_t> symbol_in_;  // the last group that has it, counted from 1
  std::vector<std::vector<gxi_movable_t>> groups_;
  std::size_t objects_ = 0, names_in_ = 0, clock_ = 0;
  std::priority_queue<std::tuple<std::int64_t, std::int64_t, std::size_t>> bound_;
};

}  // namespace

std::vector<std::vector<gxi_movable_t>> gxi_group(const gxi_design_t& design,
                                                  const gxi_sheet_t& sheet,
                                                  const std::vector<gxi_movable_t>& movable,
                                                  const gxi_group_limits_t& limits) {
  return grower(design, sheet, movable, limits).run();
}
