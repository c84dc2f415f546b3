// What a picture in a file says of a sheet besides its drawing: links, titles and names of nets.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "gx/db/file/file_records.h"

// A caller's knowledge of the sheet on one page. Pages are numbered from 0; -1 is none. What is
// empty says nothing.
struct gx_sheet_labels_t {
  std::string path;                                        // "/XR/X0", where an outline has it
  std::string title;                                       // above the sheet; leads to
  int above = -1;                                          // the page of the sheet above
  std::function<int(int inst)> below = {};                 // the page of a block's sheet
  std::function<std::string_view(int net)> net_name = {};  // a flat name
};

// The instances of a sheet in the order of drawing, with their boxes; absolute, design units.
struct gx_placed_instance_t {
  int inst = 0;
  gx_boundsreal_t box;
};
std::vector<gx_placed_instance_t> gx_placed_instances(const gx_file_gene_recf_t& file);

// Where a name fits to each net: on the middle of its longest segment, or at a pin that is on it.
// Nets with neither have no place.
struct gx_net_place_t {
  int net = 0;
  gx_pointreal_t point;
  bool is_upright = false;  // the segment is: the text reads upwards
};
std::vector<gx_net_place_t> gx_net_places(const gx_file_gene_recf_t& file);

inline constexpr std::int32_t gx_flat_name_height = 1000;  // design units
inline constexpr std::int32_t gx_flat_name_gap = 400;      // from the segment

// "R1: cell/symbol, VALUE=1k": an instance in a line, its own properties before its symbol's.
std::string gx_instance_words(const gx_file_gene_recf_t& file, int inst);
