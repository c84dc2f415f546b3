// A walk from the leaves up, joining names.
#include "import/lepton_commons.h"

#include <algorithm>
#include <map>
#include <set>

#include "gx/text/strings.h"
#include "import/joining.h"

namespace {

class sharer {
 public:
  sharer(gxi_design_t& design, const gxi_commons_t& commons)
      : design_(design), commons_(commons), groups_(number_names()) {}

  void run() {
    ties_.resize(design_.cells.size());
    for (const int cell : commons_.order) walk(static_cast<std::size_t>(cell));
    name_groups();
    for (const int cell : commons_.order) write(static_cast<std::size_t>(cell));
  }

 private:
  std::size_t number_names() {
    for (const auto& cell : commons_.names)
      for (const auto& net : cell)
        for (const auto& common : net)
          if (common.always) number_.emplace(common.name, 0);
    int next = 0;
    for (auto& [name, number] : number_) number = next++;
    return number_.size();
  }

  // A global of the net; -1: none. All of them are joined.
  int global_on(std::size_t cell, std::size_t net) {
    int one = -1;
    for (const auto& common : commons_.names[cell][net])
      if (const auto found = number_.find(common.name); found != number_.end()) {
        if (one >= 0) groups_.join(one, found->second);
        one = found->second;
      }
    return one;
  }

  void walk(std::size_t cell) {
    const auto& sheet = *design_.cells[cell].sheet;
    std::vector<int> on_net(sheet.nets.size(), -1);
    for (std::size_t i = 0; i < on_net.size(); ++i) on_net[i] = global_on(cell, i);
    for (const auto& instance : sheet.instances) {
      const auto& ties = ties_[static_cast<std::size_t>(instance.symbol)];
      const auto& pins = design_.cells[static_cast<std::size_t>(instance.symbol)].symbol.pins;
      for (std::size_t pin = 0; pin < instance.nets.size(); ++pin) {
        const int net = instance.nets[pin];
        const auto tie = net < 0 || ties.empty() ? ties.end() : ties.find(pins[pin].name);
        if (tie == ties.end()) continue;
        auto& here = on_net[static_cast<std::size_t>(net)];
        if (here >= 0) groups_.join(here, tie->second);
        here = tie->second;
      }
    }
    for (std::size_t i = 0; i < on_net.size(); ++i)
      if (on_net[i] >= 0 && !sheet.nets[i].port.empty())
        ties_[cell].emplace(sheet.nets[i].port, on_net[i]);
  }

  // The first name of a group by its letters; names that differ in their case stay apart.
  void name_groups() {
    std::map<int, std::vector<std::string>> members;
    for (const auto& [name, number] : number_) members[groups_.root(number)].push_back(name);
    std::set<std::string> taken;
    for (const auto& [group, names] : members) {
      std::string name = names.front();
      for (int next = 2; !taken.insert(upper(name)).second; ++next)
        name = names.front() + "~" + std::to_string(next);
      name_of_group_[group] = name;
      std::string all;
      for (const auto& one : names) all += " " + one;
      if (names.size() > 1)
        design_.warnings.push_back("nets of the whole design are joined:" + all + " are all " +
                                   name);
    }
  }

  static std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), gx_upper_case);
    return text;
  }

  void write(std::size_t cell) {
    auto& sheet = *design_.cells[cell].sheet;
    for (std::size_t i = 0; i < sheet.nets.size(); ++i)
      if (const int global = global_on(cell, i); global >= 0)
        sheet.nets[i].global = name_of_group_[groups_.root(global)];
    for (auto& instance : sheet.instances)
      if (instance.kind == gxi_kind::global && instance.nets.front() >= 0)
        instance.name = sheet.nets[static_cast<std::size_t>(instance.nets.front())].global;
  }

  gxi_design_t& design_;
  const gxi_commons_t& commons_;
  std::map<std::string, int> number_;
  gxi_groups_t groups_;
  std::vector<std::map<std::string, int>> ties_;  // by cell: the globals on its pins
  std::map<int, std::string> name_of_group_;
};

}  // namespace

void gxi_share_names(gxi_design_t& design, const gxi_commons_t& commons) {
  sharer(design, commons).run();
}
