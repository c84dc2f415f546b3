// What is joined with what on a sheet of KiCad: by place, by name, by buses, and by the sheets
// below.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "import/kicad/net_names.h"
#include "import/kicad/records.h"

// A pin of a symbol on its sheet. `power` is the name of the net that it joins, if any.
struct gxi_kicad_met_t {
  const gxi_kicad_pin_t* pin = nullptr;
  gxi_kicad_point_t at{};
  std::string power{};
  bool everywhere = false;  // the name is one of the whole design
};

// A pin of a block, or a hierarchical label: its name, and the members of it that is a bus.
struct gxi_kicad_port_t {
  std::string name{};
  int member = 0;
  friend auto operator<=>(const gxi_kicad_port_t&, const gxi_kicad_port_t&) = default;
};

// What a sheet does to the one above it.
struct gxi_kicad_face_t {
  // Ports that are one net within; global names that such a net has.
  struct net_t {
    std::vector<gxi_kicad_port_t> ports{};
    std::vector<std::string> globals{};
  };
  std::vector<net_t> nets{};
};

struct gxi_kicad_net_t {
  std::string name{};  // empty without one
  std::vector<std::string> globals{};
  std::vector<gxi_kicad_port_t> ports{};
  bool no_connect = false;
  int line = 0;
};

// A global name of a sheet below that has another one here.
struct gxi_kicad_overridden_t {
  int line = 0;  // of the block
  std::string name{}, here{};
};

struct gxi_kicad_joined_t {
  std::vector<gxi_kicad_net_t> nets{};
  std::vector<int> of_wire{}, of_entry{};
  std::vector<int> of_label{};                            // -1: a bus
  std::vector<std::vector<int>> of_pin{};                 // by symbol and pin
  std::vector<std::vector<std::vector<int>>> of_block{};  // by block, pin and member
  std::vector<gxi_kicad_overridden_t> overridden{};
};

struct gxi_kicad_sheet_t {
  const gxi_kicad_file_t* file = nullptr;
  std::string_view name{};  // of the file, for messages
  // As they are on the sheet, their variables put in: of the labels, and of pins by block.
  std::vector<std::string> labels{};
  std::vector<std::vector<std::string>> block_pins{};
  std::vector<std::vector<gxi_kicad_met_t>> pins{};        // by symbol
  std::vector<std::vector<std::pair<int, int>>> joined{};  // by symbol: pins joined within
  std::vector<const gxi_kicad_face_t*> faces{};            // by block
  gxi_kicad_aliases_t aliases{};
};

// Throws std::runtime_error "NAME:1: what" where its buses have too many members.
gxi_kicad_joined_t gxi_kicad_join(const gxi_kicad_sheet_t& sheet);

// The face of the sheet to the one above.
gxi_kicad_face_t gxi_kicad_face(const gxi_kicad_joined_t& joined);
