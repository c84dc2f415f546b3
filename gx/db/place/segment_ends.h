// The ends of a net's segment, for the screen and for paper.
#pragma once

#include "gx/db/file/file_records.h"

// A vertex, or the pin of an instance.
struct gx_segment_end_t {
  gx_pointreal_t point;  // absolute
  bool is_pin = false;
  bool is_dotted = false;
  bool is_selected = false;
};

// A segment of a net on its way. `operation` begins the trace's line on a segment that cannot
// be drawn, which then stops.
struct gx_net_segment_t {
  const gx_file_gene_recf_t& file;
  const char* operation;
  int net = 0;
  int segment = 0;

  // End 1 or 2; a deleted or other object there stops with object_id_invalid.
  gx_segment_end_t end(int which) const;
  // A line width below 1 stops with invalid_line_2d.
  void check_width() const;
};
