// A file of xschem, schematic or symbol, as plain records: every line of it in its order. What the
// attributes mean is not known here.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "gxmake/description.h"

inline constexpr int gxi_xschem_pin_layer = 5;  // boxes on it are pins

struct gxi_xschem_point_t {
  double x = 0, y = 0;
};

// L, B, A, P and N: the points are the ends, opposite corners, centre, or corners.
struct gxi_xschem_shape_t {
  char kind = 'L';
  int line = 0;
  int layer = 0;
  std::vector<gxi_xschem_point_t> points{};
  double radius = 0, start = 0, sweep = 0;  // of an arc; degrees, counterclockwise
  std::string attributes{};
};

struct gxi_xschem_text_t {
  int line = 0;
  std::string text{};
  gxi_xschem_point_t at{};
  int rotate = 0;  // quarter turns clockwise
  bool flip = false;
  double width = 0.2, height = 0.2;
  std::string attributes{};
};

struct gxi_xschem_file_t;

struct gxi_xschem_component_t {
  int line = 0;
  std::string symbol{};
  gxi_xschem_point_t at{};
  int rotate = 0;  // quarter turns clockwise, after the flip left to right
  bool flip = false;
  std::string attributes{};
  std::shared_ptr<gxi_xschem_file_t> embedded{};  // its symbol, when the file holds that
};

struct gxi_xschem_file_t {
  std::string version{};  // v
  std::string global{};   // K, in older files G: attributes of a symbol
  std::string vhdl{}, verilog{}, spice{}, tedax{}, spectre{};  // G (beside K), V, S, E, F
  int spice_line = 0;
  std::vector<gxi_xschem_shape_t> shapes{};
  std::vector<gxi_xschem_text_t> texts{};
  std::vector<gxi_xschem_component_t> components{};
};

// Throws std::runtime_error "NAME:LINE: what" where the text is no such file. A record of an
// unknown kind is reported in `messages` and passed over.
gxi_xschem_file_t gxi_xschem_read_records(std::string_view text, const gxm_source_t& name,
                                          gxm_messages_t& messages);
