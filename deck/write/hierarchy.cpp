// A deck with a subcircuit for each cell.
#include <algorithm>
#include <iterator>

#include "deck/write/common.h"
#include "deck/write/groups.h"
#include "gx/text/strings.h"

namespace {

class hierarchy_writer {
 public:
  explicit hierarchy_writer(const dk_sources_t& sources)
      : sources_(sources),
        visits_(sources.visits),
        netlist_(visits_.netlist()),
        names_(netlist_),
        open_(netlist_, sources.output),
        elements_(visits_, sources.options, sources.output, naming()),
        statements_(elements_, sources.options),
        groups_(sources_, elements_, names_) {}

  bool run() {
    dk_begin(sources_, statements_);
    const auto& globals = groups_.globals();
    if (!globals.empty() && !global_ports()) {
      std::string line = ".global";
      for (const auto& name : globals) line.append(" ").append(name);
      sources_.output.line(line);
    }
    bool whole = true;
    for (const auto& group : groups_.all()) {
      group_ = &group;
      const std::int32_t visit = group.visits.front();
      if (visit == 0) continue;
      begin_subcircuit(group.name, group.ports, group.directions);
      whole &= write_instances();
      write_inner(visit);
      sources_.output.line(".ends " + group.name);
    }
    return write_top() && whole;
  }

 private:
  bool global_ports() const { return sources_.options.lvs && sources_.options.global_ports; }

  // The globals that are ports besides these.
  std::vector<std::string> globals_beside(const std::vector<std::string>& ports) const {
    std::vector<std::string> globals;
    if (!global_ports()) return globals;
    std::ranges::copy_if(groups_.globals(), std::back_inserter(globals), [&](const auto& global) {
      return std::ranges::none_of(ports, [&](const auto& port) { return gx_iden(port, global); });
    });
    return globals;
  }

  void begin_subcircuit(const std::string& name, const std::vector<std::string>& ports,
                        const std::vector<char>& directions) {
    std::string line = ".subckt " + name, info = "*.PININFO";
    for (std::size_t port = 0; port < ports.size(); ++port) {
      line.append(" ").append(ports[port]);
      info.append(" ").append(ports[port]).append(":").append(1, directions[port]);
    }
    for (const auto& global : globals_beside(ports)) {
      line.append(" ").append(global);
      info.append(" ").append(global).append(":B");
    }
    sources_.output.line(line);
    if (sources_.options.lvs) sources_.output.line(info);
  }

  bool write_top() {
    group_ = &groups_.all().back();
    const bool lvs = sources_.options.lvs;
    if (lvs) {
      std::vector<std::string> ports;
      std::vector<char> directions;
      if (const auto* const cell = dk_cell_of(visits_, 0))
        for (const auto& [name, direction] : cell->ports)
          if (const auto net = visits_.net(0, name); net != 0) {
            ports.push_back(names_.of(net));
            directions.push_back(direction.empty() ? 'B' : direction.front());
          }
      begin_subcircuit(group_->name, ports, directions);
    }
    const bool whole = write_instances();
    if (lvs) sources_.output.line(".ends " + group_->name);
    elements_.look_at(0);
    for (std::int32_t visit = 0; visit < visits_.count(); ++visit)
      if (const auto* const cell = dk_cell_of(visits_, visit)) {
        if (visit == 0) statements_.write_top(cell->statements);
        if (visit != 0)
          statements_.write_below(cell->header + cell->statements + cell->end,
                                  dk_statement_t::kind_t::analysis);
      }
    dk_end(sources_, statements_, elements_);
    return whole;
  }

  // Models and the like of a cell are in its subcircuit.
  void write_inner(std::int32_t visit) {
    const auto* const cell = dk_cell_of(visits_, visit);
    if (cell == nullptr || sources_.options.lvs) return;
    elements_.look_at(visit);
    for (const auto& statement : dk_statements(cell->header + cell->statements + cell->end)) {
      using kind_t = dk_statement_t::kind_t;
      if (statement.kind == kind_t::definition) elements_.write_lines(statement.text);
      if (statement.kind == kind_t::local) elements_.write_local(statement.text);
    }
  }

  bool write_instances() {
    bool whole = true;
    for (const auto& object : group_->instances) {
      if (object.what == kv_named::inst) {
        elements_.look_at(visits_.of_leaf(object.index));
        whole &= elements_.write(object.index);
      } else {
        write_call(object);
      }
    }
    return whole;
  }

  void write_call(kv_object_t block) {
    const auto name = dk_visits_t::last_name(netlist_.path(block));
    const auto* const drawn = visits_.drawn(visits_.at(block.index).parent, name);
    const bool is_drawn = drawn != nullptr && !drawn->lines.empty();
    const std::string_view called = is_drawn ? drawn->lines.front().name : name;
    std::string line;
    if (gx_upper_case(called.front()) != 'X') line = "X";
    line.append(called).append(elements_.nodes_of(block));
    const auto& group = gx_at(groups_.all(), groups_.group_of(block.index));
    for (const auto& global : globals_beside(group.ports)) line.append(" ").append(global);
    line.append(" ").append(group.name);
    sources_.output.line(line);
  }

  dk_naming_t naming() {
    return {.element =
                [](std::string_view letter, std::string_view name) {
                  return (name.starts_with(letter) ? "" : std::string(letter) + ".") +
                         std::string(name);
                },
            .node = [this](std::int32_t net) { return node_of(net); },
            .node_of_pin =
                [this](kv_object_t pin, std::int32_t bit) {
                  const auto name = groups_.node(*group_, pin, bit);
                  return name.empty() ? open_.node(pin) : std::string(name);
                }};
  }

  // The node that a flat net is in the subcircuit.
  std::string node_of(std::int32_t net) const {
    const std::int32_t node = names_.node(net);
    const auto found = std::ranges::find(group_->nets, node);
    if (found == group_->nets.end()) return names_.of(net);
    const auto bit = found - group_->nets.begin();
    return gx_at(group_->nodes, gx_at(group_->same_as, bit));
  }

  const dk_sources_t& sources_;
  const dk_visits_t& visits_;
  kvi_netlist_t netlist_;
  dk_names_of_nets_t names_;
  dk_open_pins_t open_;
  dk_elements_t elements_;
  dk_statement_writer_t statements_;
  dk_groups_t groups_;
  const dk_group_t* group_ = nullptr;
};

}  // namespace

bool dk_write_hierarchy(const dk_sources_t& sources) { return hierarchy_writer(sources).run(); }
