// What a netlist sees of the components of a page: their parts, pins and names.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "import/lepton/library.h"

enum class gxi_lepton_role_t : std::uint8_t {
  part,     // a line of the netlist
  block,    // stands for a sheet
  port,     // brings a net of the sheet above in
  power,    // only names nets
  noconn,   // marks pins that are meant to be joined to nothing
  picture,  // only drawn
};

// Of `net=`: a net and the number of a pin on it, which the symbol may show or not.
struct gxi_lepton_link_t {
  std::string net{}, pin{};
};

struct gxi_lepton_placed_t {
  const gxi_lepton_component_t* component = nullptr;
  const gxi_lepton_symbol_t* symbol = nullptr;
  std::string_view file{};     // of its page
  gxi_lepton_point_t shift{};  // of its page
  gxi_lepton_role_t role = gxi_lepton_role_t::picture;
  std::string name{};                           // refdes
  std::vector<const gxi_lepton_pin_t*> pins{};  // those that are joined, in the order of a netlist
  std::vector<std::string> numbers{};           // of each of them, by the slot of the component
  std::vector<gxi_lepton_link_t> links{};       // one for a pin
  std::vector<std::filesystem::path> sheets{};  // of a block: its pages

  gxm_source_t source() const { return {file, component->line.number}; }
  // The attribute of the component, else of its symbol.
  std::string_view value(std::string_view attribute) const;
  // The link of a pin that the symbol shows; nullptr for most.
  const gxi_lepton_link_t* link_of(std::size_t pin) const;
  // The links of pins that it does not show.
  std::vector<const gxi_lepton_link_t*> hidden_links() const;
};

// Attributes that have no effect are reported in `messages`.
gxi_lepton_placed_t gxi_lepton_place(gxi_lepton_library_t& library,
                                     const gxi_lepton_component_t& component, std::string_view page,
                                     gxm_messages_t& messages);
