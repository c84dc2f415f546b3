// A deck without subcircuits of its own: all leaf instances, by their whole names.
#include <algorithm>
#include <set>

#include "deck/write/common.h"

namespace {

class flat_writer {
 public:
  explicit flat_writer(const dk_sources_t& sources)
      : sources_(sources),
        visits_(sources.visits),
        names_(visits_.netlist()),
        open_(visits_.netlist(), sources.output),
        elements_(visits_, sources.options, sources.output, naming()),
        statements_(elements_, sources.options) {}

  bool run() {
    dk_begin(sources_, statements_);
    bool whole = true;
    if (sources_.cells.empty()) {
      for (std::int32_t inst = 1; inst <= visits_.netlist().count(kv_named::inst); ++inst)
        whole &= write_leaf(inst);
    } else {
      const auto instances = visits_.instances();
      whole = write_visit(0, instances);
    }
    write_statements();
    dk_end(sources_, statements_, elements_);
    return whole;
  }

 private:
  dk_naming_t naming() {
    return {.element = [this](auto letter, auto name) { return element(letter, name); },
            .node = [this](std::int32_t net) { return names_.of(net); },
            .node_of_pin =
                [this](kv_object_t pin, std::int32_t bit) {
                  const std::int32_t net = visits_.netlist().bits(pin).net(bit);
                  return net == 0 || visits_.netlist().net(pin) == 0 ? open_.node(pin)
                                                                     : names_.of(net);
                }};
  }

  // "R1" at the top, "R.X1.R1" below.
  std::string element(std::string_view letter, std::string_view name) const {
    const std::string_view path = visits_.at(visit_).path;
    if (path.empty() && name.starts_with(letter)) return std::string(name);
    std::string whole = std::string(path) + "/" + std::string(name);
    std::ranges::replace(whole, '/', '.');
    return std::string(letter) + whole;
  }

  bool write_leaf(std::int32_t inst) {
    look_at(visits_.of_leaf(inst));
    return elements_.write(inst);
  }

  // In the order of the drawing, as a simulator comes to them in one with subcircuits.
  bool write_visit(std::int32_t visit, const std::vector<std::vector<kv_object_t>>& instances) {
    bool whole = true;
    for (const auto& object : gx_at(instances, visit))
      whole &= object.what == kv_named::inst ? write_leaf(object.index)
                                             : write_visit(object.index, instances);
    return whole;
  }

  void look_at(std::int32_t visit) {
    visit_ = visit;
    elements_.look_at(visit);
  }

  void write_statements() {
    using kind_t = dk_statement_t::kind_t;
    std::set<const dk_cell_t*> seen;
    for (std::int32_t visit = 0; visit < visits_.count(); ++visit) {
      const auto* const cell = dk_cell_of(visits_, visit);
      if (cell == nullptr) continue;
      look_at(visit);
      if (visit == 0) {
        statements_.write_top(cell->statements);
        continue;
      }
      const std::string text = cell->header + cell->statements + cell->end;
      if (text.empty()) continue;
      if (seen.insert(cell).second) {
        statements_.write_below(text, kind_t::definition);
        statements_.write_below(text, kind_t::analysis);
      }
      statements_.write_below(text, kind_t::local);
    }
  }

  const dk_sources_t& sources_;
  const dk_visits_t& visits_;
  dk_names_of_nets_t names_;
  dk_open_pins_t open_;
  std::int32_t visit_ = 0;
  dk_elements_t elements_;
  dk_statement_writer_t statements_;
};

}  // namespace

bool dk_write_flat(const dk_sources_t& sources) { return flat_writer(sources).run(); }
