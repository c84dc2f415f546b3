// A sheet file of KiCad 6 and later, as plain records. What joins what is not known here.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "import/kicad/symbols.h"

struct gxi_kicad_wire_t {
  int line = 0;
  gxi_kicad_point_t from{}, to{};
};

enum class gxi_kicad_label : std::uint8_t { local, global, hierarchical, other };

struct gxi_kicad_label_t {
  gxi_kicad_label kind = gxi_kicad_label::local;
  gxi_kicad_text_t text{};
  std::string shape{};  // input, output, bidirectional, tri_state, passive
};

// One use of the sheet that holds an item: the ids of the sheets down to it, each after "/".
struct gxi_kicad_use_t {
  std::string path{}, reference{};
  int unit = 0;  // 0: not said
};

struct gxi_kicad_placed_t {
  int line = 0;
  std::string id{}, symbol{};  // `symbol` names one of the library of the sheet
  gxi_kicad_point_t at{};
  int rotate = 0;
  char mirror = 0;  // 'x' or 'y', after the turn
  int unit = 1, style = 1;
  bool on_board = true, in_bom = true, in_simulation = true, populated = true;
  std::vector<gxi_kicad_field_t> fields{};
  std::map<std::string, std::string, std::less<>> alternates{};  // by number: name of the function
  std::vector<gxi_kicad_use_t> uses{};
};

struct gxi_kicad_block_t {  // stands for a sheet
  int line = 0;
  std::string id{};
  gxi_kicad_point_t at{}, size{};
  std::vector<gxi_kicad_field_t> fields{};
  std::vector<gxi_kicad_label_t> pins{};

  std::string_view field(std::string_view name, std::string_view older_name) const;
  std::string_view name() const { return field("Sheetname", "Sheet name"); }
  std::string_view file() const { return field("Sheetfile", "Sheet file"); }
};

struct gxi_kicad_file_t {
  int version = 0;
  std::string id{};
  gxi_kicad_point_t paper{};                                 // its size; (0, 0): not said
  std::vector<std::pair<std::string, std::string>> title{};  // of the title block, by keyword
  gxi_kicad_symbols_t symbols{};
  std::vector<gxi_kicad_wire_t> wires{}, buses{}, entries{};
  std::vector<gxi_kicad_point_t> junctions{}, no_connects{};
  std::vector<gxi_kicad_label_t> labels{};
  std::vector<gxi_kicad_placed_t> placed{};
  std::vector<gxi_kicad_block_t> blocks{};
  std::vector<gxi_kicad_shape_t> shapes{};
  std::vector<gxi_kicad_text_t> texts{};
  std::vector<std::pair<std::string, std::vector<std::string>>> aliases{};  // of buses
  // Of a root sheet up to 20211123: by the ids down to the symbol.
  std::vector<gxi_kicad_use_t> all_uses{};
  int images = 0;  // left out
};

// Throws std::runtime_error "NAME:LINE: what" where the text is no such file.
gxi_kicad_file_t gxi_kicad_read_records(std::string_view text, std::string_view name);
