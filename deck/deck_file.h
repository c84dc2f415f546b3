// The file "deck" of a design directory: the lines that the instances of its sheets become in a
// deck for SPICE, and the statements that belong to its cells. docs/deck.md shows it.
//
// An importer writes it, kvspice reads it, people may write one. It is text: a word at the start of
// a line says what follows, lines of a deck begin with ":". Lines that begin with "#" are comments.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

inline constexpr std::string_view dk_file_name = "deck";

// Of an instance on a sheet: its lines. "@3" in one is the node of the third pin of its symbol,
// "@@" the sign itself; names of nodes in "v(x)" and of devices in "i(x)" are those of the sheet.
struct dk_instance_t {
  std::string name{};  // INST
  std::string lines{};
};

struct dk_cell_t {
  std::string subcircuit{};  // its name in a deck; "": as its directory
  // A part of a sheet that was too large: what is in it belongs to the sheet above.
  bool is_part = false;
  // That its instances may set, with the values where they do not.
  std::vector<std::pair<std::string, std::string>> parameters{};
  // Of the primary sheet, which no block calls: its ports in order, and I, O or B for what they do.
  std::vector<std::pair<std::string, std::string>> ports{};
  std::vector<dk_instance_t> instances{};
  // Before the devices, after them, at the end of the deck; whole lines.
  std::string header{}, statements{}, end{};
  // What a deck needs once that has an instance of the cell: models, a subcircuit.
  std::string definition{};

  bool is_empty() const {
    return subcircuit.empty() && !is_part && parameters.empty() && ports.empty() &&
           instances.empty() && header.empty() && statements.empty() && end.empty() &&
           definition.empty();
  }
};

// By directory.
using dk_cells_t = std::map<std::string, dk_cell_t, std::less<>>;

std::string dk_write(const dk_cells_t& cells);

// "" when all could be read, else what is wrong, with the number of its line.
std::string dk_read(std::string_view text, dk_cells_t& cells);
