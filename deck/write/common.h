// What flat decks and those with subcircuits share.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>

#include "deck/write/deck.h"
#include "deck/write/statement_writer.h"
#include "deck/write/visits.h"
#include "netlist/simulator_names.h"

using dk_names_of_nets_t = kv_simulator_names_t<kvi_design_t>;

// Nodes of their own for pins, or bits of them, that are on no net: "NC::17".
class dk_open_pins_t {
 public:
  dk_open_pins_t(kvi_netlist_t netlist, const dk_output_t& output)
      : netlist_(netlist), output_(output) {}
  std::string node(kv_object_t pin);

 private:
  kvi_netlist_t netlist_;
  const dk_output_t& output_;
  std::unordered_map<std::int32_t, int> bits_;
};

struct dk_sources_t {
  const dk_visits_t& visits;
  const dk_cells_t& cells;
  const dk_options_t& options;
  const dk_output_t& output;
};

bool dk_write_flat(const dk_sources_t& sources);
bool dk_write_hierarchy(const dk_sources_t& sources);

// The first lines: title, header of the primary sheet.
void dk_begin(const dk_sources_t& sources, dk_statement_writer_t& statements);
// The last ones: what cells define, what ends the deck, files that are included.
void dk_end(const dk_sources_t& sources, dk_statement_writer_t& statements,
            dk_elements_t& elements);

// The cell of a visit in the file "deck"; null when it has none.
const dk_cell_t* dk_cell_of(const dk_visits_t& visits, std::int32_t visit);
