// Statements of a deck: lines that are no devices, and blocks of them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct dk_statement_t {
  enum class kind_t : std::uint8_t {
    parameter,   // .param
    definition,  // a model, a subcircuit, a library, an option: once in a deck
    local,       // of nodes and devices: .ic, .nodeset, .save, .measure ...
    analysis,    // what is simulated, and blocks of control
  };
  kind_t kind = kind_t::definition;
  std::string text{};  // whole lines, with what continues them
};

// Comments and empty lines are left out.
std::vector<dk_statement_t> dk_statements(std::string_view text);

// The names and values of a .param line.
std::vector<std::pair<std::string, std::string>> dk_parameters(std::string_view line);
