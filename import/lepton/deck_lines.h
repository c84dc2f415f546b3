// What a component of Lepton EDA says in a deck for SPICE.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "import/lepton/parts.h"

// Its lines (deck/deck_file.h) by its SPICE attributes: device, value, model-name, file ... `name`
// is its refdes. Components that are statements alone (model, directive, include, options, K) have
// lines that begin with "." or K.
std::string gxi_lepton_deck_lines(const gxi_lepton_placed_t& placed, const std::string& name);

// ".SUBCKT NAME PORT..." of a sheet that a component says is one, "" of others. Its ports are the
// nets of components for this, in the order of their refdes.
std::string gxi_lepton_subcircuit(
    std::span<const gxi_lepton_placed_t> sheet,
    const std::function<std::string_view(std::size_t part)>& net_of_first_pin);

// The file of its model, as it is written; "" for none, and for statements.
std::string gxi_lepton_model_file(const gxi_lepton_placed_t& placed);
