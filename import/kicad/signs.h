// Symbols, blocks and labels of KiCad as symbols here, and what their instances show.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "import/drawing/drawing.h"
#include "import/kicad/net_names.h"
#include "import/kicad/records.h"

// The pins of a unit in a body style, those that all units share first.
std::vector<const gxi_kicad_pin_t*> gxi_kicad_pins(const gxi_kicad_symbol_t& symbol, int unit,
                                                   int style);
// Which of them become pins here: of pins of one number at one place the first.
std::vector<std::size_t> gxi_kicad_kept_pins(const std::vector<const gxi_kicad_pin_t*>& pins);

// A part's symbol: its pins have their numbers as names. `functions` are those that a part chose
// for pins, by number. A power symbol, which only names a net, has one pin, P.
gxi_symbol_t gxi_kicad_part_sign(
    const gxi_kicad_symbol_t& symbol, int unit, int style,
    const std::map<std::string, std::string, std::less<>>& functions = {});
gxi_symbol_t gxi_kicad_power_sign(const gxi_kicad_symbol_t& symbol, int unit, int style);
// What a symbol that is missing leaves: a box with its name.
gxi_symbol_t gxi_kicad_missing_sign(const std::string& name);

// A block, and the names of its pins: of those that are buses, one for each member; of a further
// pin of one name none.
struct gxi_kicad_block_sign_t {
  gxi_symbol_t symbol{};
  std::vector<std::vector<std::string>> names{};  // by pin and member
};
gxi_kicad_block_sign_t gxi_kicad_block_sign(const gxi_kicad_block_t& block,
                                            const std::vector<std::string>& pins,
                                            const gxi_kicad_aliases_t& aliases);

// The flag of a hierarchical label at its place, with a pin, P, where it joins.
gxi_symbol_t gxi_kicad_port_sign(const gxi_kicad_label_t& label);

// Two symbols with one key are the same.
std::string gxi_kicad_sign_key(const gxi_symbol_t& sign);

// IN, OUT or IO, of the electrical type of a pin or the shape of a label.
std::string_view gxi_kicad_pin_type(std::string_view type);
// The letters of a reference: what a part is.
std::string gxi_kicad_class(std::string_view reference);
