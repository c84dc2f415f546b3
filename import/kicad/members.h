// What can be joined on a sheet of KiCad, by the numbers that groups know it by.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "import/kicad/nets.h"

// Wires, entries of buses, labels, junctions, pins of symbols, members of the pins of blocks,
// names.
class gxi_kicad_members_t {
 public:
  // Throws std::runtime_error "NAME:1: what" where the buses have too many members.
  explicit gxi_kicad_members_t(const gxi_kicad_sheet_t& of);

  const gxi_kicad_sheet_t& sheet;
  const gxi_kicad_file_t& file;
  std::vector<gxi_kicad_bus_t> label_buses{};             // without members: of no bus
  std::vector<std::vector<gxi_kicad_bus_t>> pin_buses{};  // by block and pin

  std::size_t count() const { return count_; }
  int wire(std::size_t i) const { return static_cast<int>(i); }
  int entry(std::size_t i) const { return first_entry_ + static_cast<int>(i); }
  int label(std::size_t i) const { return first_label_ + static_cast<int>(i); }
  int junction(std::size_t i) const { return first_junction_ + static_cast<int>(i); }
  int pin(std::size_t symbol, std::size_t i) const;
  int block_pin(std::size_t block, std::size_t i, std::size_t member = 0) const;
  // Of all pins of the port's name, the first one first; empty: the block has none.
  std::vector<int> block_ports(std::size_t block, const gxi_kicad_port_t& port) const;
  // Names are known that labels, power symbols and members of buses have.
  int name(const std::string& text) const { return names_.at(text); }
  bool has_name(const std::string& text) const { return names_.contains(text); }

  // Labels that name nets, and those that name buses, by their places in the file.
  std::vector<std::size_t> net_labels{}, bus_labels{};

  // take(symbol, its pin, the member)
  template <typename Take>
  void each_pin(Take take) const {
    for (std::size_t i = 0; i < sheet.pins.size(); ++i)
      for (std::size_t k = 0; k < sheet.pins[i].size(); ++k) take(i, sheet.pins[i][k], pin(i, k));
  }
  // take(block, place of the pin, its bus, the first member)
  template <typename Take>
  void each_block_pin(Take take) const {
    for (std::size_t i = 0; i < pin_buses.size(); ++i)
      for (std::size_t k = 0; k < pin_buses[i].size(); ++k)
        take(i, k, pin_buses[i][k], block_pin(i, k));
  }

 private:
  gxi_kicad_bus_t bus_of(const std::string& name);
  int take(std::size_t count);
  void add_name(const std::string& text);

  std::size_t count_ = 0, nb_of_bits_ = 0;
  int first_entry_ = 0, first_label_ = 0, first_junction_ = 0;
  std::vector<int> first_pin_{};                                                 // by symbol
  std::vector<std::vector<int>> first_of_block_{};                               // by block and pin
  std::vector<std::map<std::string, std::vector<std::size_t>>> pins_of_name_{};  // by block
  std::map<std::string, int> names_{};
};

// What names a net or a bus, the stronger the greater.
enum : int { gxi_of_block_pin = 1, gxi_of_hierarchical, gxi_of_local, gxi_of_global };
int gxi_kicad_strength(gxi_kicad_label kind);
