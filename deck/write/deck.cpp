// The frame of both kinds of decks.
#include "deck/write/deck.h"

#include <set>

#include "deck/write/common.h"

bool dk_write_deck(kvi_netlist_t netlist, const dk_cells_t& cells, const dk_options_t& options,
                   const dk_output_t& output) {
  const dk_visits_t visits(netlist, cells);
  const dk_sources_t sources{visits, cells, options, output};
  return options.hierarchy ? dk_write_hierarchy(sources) : dk_write_flat(sources);
}

std::string dk_open_pins_t::node(kv_object_t pin) {
  output_.complain(std::string(netlist_.path(pin)) + " is on no net");
  std::string name = "NC::" + std::to_string(pin.index);
  if (const int n = bits_[pin.index]++; n > 0) name += ":" + std::to_string(n);
  return name;
}

const dk_cell_t* dk_cell_of(const dk_visits_t& visits, std::int32_t visit) {
  const auto* const sheet = visits.at(visit).sheet;
  return sheet == nullptr ? nullptr : &sheet->cell();
}

void dk_begin(const dk_sources_t& sources, dk_statement_writer_t& statements) {
  sources.output.line("* " + std::string(sources.options.title));
  if (const auto* const top = dk_cell_of(sources.visits, 0)) statements.write_top(top->header);
}

void dk_end(const dk_sources_t& sources, dk_statement_writer_t& statements,
            dk_elements_t& elements) {
  for (const auto& [directory, cell] : sources.cells) statements.write_once(cell.definition);
  elements.write_saved();
  if (const auto* const top = dk_cell_of(sources.visits, 0)) statements.write_top(top->end);
  for (const std::string_view file : sources.options.includes)
    sources.output.line(".include \"" + std::string(file) + "\"");
  sources.output.line(".end");
}
