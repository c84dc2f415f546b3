// Cells of one more level, made of instances of a sheet.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "import/drawing/drawing.h"
#include "import/drawing/names.h"

// A wire by its net and its place there.
using gxi_wire_place_t = std::pair<int, std::size_t>;

// What goes into one part: instances by their place on the sheet, and what is drawn with them.
struct gxi_part_t {
  std::vector<std::size_t> instances{};
  std::vector<gxi_wire_place_t> wires{};
  std::vector<gxm_shape_t> shapes{};
  std::vector<gxi_text_t> texts{};
};

// Makes parts of the sheets of a design.
class gxi_part_maker_t {
 public:
  explicit gxi_part_maker_t(gxi_design_t& design);
  // Moves all this from the sheet of a cell into cells at the end of the design, whose instances
  // are below what stays. The pins of a part are the nets that it shares with the rest. When
  // `drawing_moves`, the wires and labels of their nets leave the sheet, too.
  void make(std::size_t cell, std::vector<gxi_part_t> parts, bool drawing_moves);

 private:
  std::vector<bool> shared_nets(const gxi_sheet_t& sheet, const std::vector<gxi_part_t>& parts,
                                bool drawing_moves) const;
  gxi_instance_t make_part(std::size_t of, gxi_part_t part, const std::vector<bool>& shared,
                           bool drawing_moves);
  std::string name_part(std::size_t of);
  void add_ports(gxi_sheet_t& sheet);
  int port_symbol();

  gxi_design_t& design_;
  gxi_names_t cells_;
  gxi_names_t instances_, nets_;  // of the sheet that is divided
  std::size_t of_ = SIZE_MAX;
  int last_ = 0;
  std::optional<int> port_symbol_{};
};
