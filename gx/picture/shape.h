// What a sheet looks like: shapes in design units, at absolute places.
//
// Placement, hidden and deleted objects, the texts that an instance replaces and the form of pins
// are decided when shapes are made; a sink (screen, plotter, drawing file) draws what it is given.
// A shape has the colour, style and width of its object, which the sink may use or not.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

#include "gx/text/records.h"

enum class gx_shape_kind : std::uint8_t {
  line,             // two points
  polyline,         // any number of points, also one or none
  arc,              // its start, a point on it, its end, and the centre
  circle,           // the centre
  box,              // two opposite corners
  text,             // the start of its baseline
  dot,              // the centre of a filled square, where wires are joined
  page,             // two opposite corners of the sheet
  loose_pin,        // a pin on a wire that leads nowhere
  selected_vertex,  // a point of a net that is selected
};

struct gx_shape_t {
  gx_shape_kind kind{};
  int object = 0;         // the object that is drawn; of dots and marks the segment
  int inst = 0;           // the instance that places it, 0 for none
  int net = 0;            // the net that it belongs to, 0 for none
  int color = 0;          // 0..255, of which 0..7 have a colour
  int style = 0;          // as the file has it; a sink that draws styles refuses others than 0..4
  int width = 1;          // 1..255, of lines
  std::int32_t size = 0;  // radius of a round shape, height of a text, half a dot's side
  bool selected = false;
  bool filled = false;                     // of boxes
  std::span<const gx_pointreal_t> points;  // valid while it is drawn
  std::int32_t start = 0, extent = 0;      // of arcs: 1/64 degree, y up, within one turn
  std::int32_t angle1 = 0, angle2 = 0;     // the same as the file has them, in any turn
  std::string_view text;                   // UTF-8, valid while it is drawn
  int rotation = 0;                        // of texts: 1 reads upwards, 3 downwards, 0 and 2 right
  int file_rotation = 0;                   // as file and instance say, before mirroring: 0..255
};

// Where shapes go. What is not needed stays empty.
struct gx_sink_t {
  const char* name = "";           // begins what the trace reports of a damaged object
  const char* instance_name = "";  // the same of an instance
  std::function<void(const gx_shape_t& shape)> draw = {};
  // Whether an object, placed by the instance (0 for none), is to be drawn: asked before anything
  // of it is worked out.
  std::function<bool(int object, int inst)> sees = {};
  // Whether the sign of a pin is drawn, asked with its property family; empty: always. One that is
  // selected always is.
  std::function<bool(int pinpropfam)> marks_pin = {};
  // Before the first shape of a net or instance, and after its last one.
  std::function<void(int object)> opens = {}, closes = {};
};
