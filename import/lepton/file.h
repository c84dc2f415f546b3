// A file of Lepton EDA or gEDA, schematic or symbol, as plain records: every line of it in its
// order. What the attributes mean is not known here.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "import/lepton/texts.h"

// A step of a path: M, L, C (two control points first) or z, in absolute places.
struct gxi_lepton_step_t {
  char kind = 'M';
  std::vector<gxi_lepton_point_t> points{};
  friend bool operator==(const gxi_lepton_step_t&, const gxi_lepton_step_t&) = default;
};

// L, B, V, A, H, U (a bus) and G (a picture): the points are the ends, opposite corners, or centre.
struct gxi_lepton_shape_t {
  char kind = 'L';
  gxi_lepton_line_t line{};
  int color = 3;
  std::int32_t width = 0;
  bool dashed = false, filled = false;
  std::vector<gxi_lepton_point_t> points{};
  std::int32_t radius = 0;
  int start = 0, sweep = 360;  // of an arc; degrees, counterclockwise
  std::vector<gxi_lepton_step_t> path{};
  friend bool operator==(const gxi_lepton_shape_t&, const gxi_lepton_shape_t&) = default;
};

struct gxi_lepton_net_t {
  gxi_lepton_line_t line{};
  int color = 4;
  gxi_lepton_point_t from{}, to{};
  gxi_lepton_texts_t attributes{};
  friend bool operator==(const gxi_lepton_net_t&, const gxi_lepton_net_t&) = default;
};

struct gxi_lepton_pin_t {
  gxi_lepton_line_t line{};
  int color = 1;
  gxi_lepton_point_t tip{}, root{};  // wires are joined at the tip
  bool bus = false;                  // only drawn
  gxi_lepton_texts_t attributes{};
  friend bool operator==(const gxi_lepton_pin_t&, const gxi_lepton_pin_t&) = default;
};

struct gxi_lepton_file_t;

struct gxi_lepton_component_t {
  gxi_lepton_line_t line{};
  gxi_lepton_point_t at{};
  int rotate = 0;       // quarter turns counterclockwise, after the mirror
  bool mirror = false;  // left to right
  std::string symbol{};
  // Its symbol, when the file holds that: as it is seen, so that the component is not turned.
  std::shared_ptr<gxi_lepton_file_t> embedded{};
  gxi_lepton_texts_t attributes{};
  friend bool operator==(const gxi_lepton_component_t&, const gxi_lepton_component_t&) = default;
};

struct gxi_lepton_file_t {
  std::vector<gxi_lepton_shape_t> shapes{};
  gxi_lepton_texts_t texts{};     // of their own: attributes among them are the whole file's
  gxi_lepton_texts_t attached{};  // to shapes
  std::vector<gxi_lepton_net_t> nets{};
  std::vector<gxi_lepton_pin_t> pins{};
  std::vector<gxi_lepton_component_t> components{};
  friend bool operator==(const gxi_lepton_file_t&, const gxi_lepton_file_t&) = default;
};

// Throws std::runtime_error "NAME:LINE: what" where the text is no such file.
gxi_lepton_file_t gxi_lepton_read_file(std::string_view text, std::string_view name);
