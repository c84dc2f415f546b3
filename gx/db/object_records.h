// The records of the design objects, one per object type.
//
// Every record begins with the general record `gene`; the type code in it says which record it is.
// Field order and names are those of the file format (gx/db/file/record_tables.h). Ids are 1..30000
// within a file, 0 = none. Points and bounds are design units.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "gx/db/ids.h"
#include "gx/text/records.h"

enum class gx_type : std::int16_t {
  nil = 0,
  main = 1,
  page = 2,
  component_family = 3,
  instance_family = 4,
  symbol_family = 5,
  net_family = 6,
  component = 7,
  instance = 8,
  symbol = 9,
  bodpropfam = 10,
  pinpropfam = 11,
  net = 12,
  vertex_family = 13,
  segment = 14,
  body = 15,
  pin_family = 16,
  tag_family = 17,
  frame_family = 18,
  frame = 19,
  pin = 20,
  graphics = 21,
  property_family = 22,
  tag = 23,
  vertex_2d = 24,
  arc3p_2d = 25,
  circle_2d = 26,
  grid_2d = 27,
  line_2d = 28,
  polyline5_2d = 29,
  polyline_2d = 30,
  rectangle_2d = 31,
  property_2d = 32,
};
inline constexpr int gx_max_type = 32;

// The name of a type; "nil" for codes outside 1..32.
std::string_view gx_type_name(gx_type type);

// Bits of `status`.
enum gx_flag : std::int16_t {
  gx_flag_selected = 1,
  gx_flag_temporary = 2,
  gx_flag_create = 4,
  gx_flag_open = 8,
  gx_flag_picked = 16,
  gx_flag_deleted = 32,
  gx_flag_unvisible = 64,
  gx_flag_fixed = 128,
};

inline constexpr std::int16_t gx_object_fin = -10;
inline constexpr std::int16_t gx_file_fin = -20;
inline constexpr gx_boundsreal_t gx_empty_bounds{1000000000, 1000000000, -1000000000, -1000000000};

struct gx_object_gene_rec_t {
  gx_object_id_t object_id = 0;
  gx_object_id_t father = 0;
  gx_object_id_t previous = 0;
  gx_object_id_t following = 0;
  gx_object_id_t child1 = 0;
  std::int16_t id_tmp = 0;
  gx_type object_type = gx_type::nil;
  std::int16_t status = 0;                   // gx_flag bits
  gx_pointreal_t origin;                     // relative to the father
  gx_boundsreal_t bounds = gx_empty_bounds;  // relative to the object's own origin
};

// --- one bit of a status; by id and with undo: object_flags.h
inline bool gx_has_flag(const gx_object_gene_rec_t& object, gx_flag flag) {
  return (object.status & flag) != 0;
}
inline void gx_put_flag(gx_object_gene_rec_t& object, gx_flag flag, bool on) {
  object.status = static_cast<std::int16_t>(on ? object.status | flag : object.status & ~flag);
}
inline bool gx_is_deleted(const gx_object_gene_rec_t& object) {
  return gx_has_flag(object, gx_flag_deleted);
}
inline bool gx_is_selected(const gx_object_gene_rec_t& object) {
  return gx_has_flag(object, gx_flag_selected);
}
inline bool gx_is_unvisible(const gx_object_gene_rec_t& object) {
  return gx_has_flag(object, gx_flag_unvisible);
}
// Deleted or switched off.
inline bool gx_is_hidden(const gx_object_gene_rec_t& object) {
  return gx_is_deleted(object) || gx_is_unvisible(object);
}

// The types that hold nothing of their own: main, page, the families, component, body, frame, pin,
// graphics.
struct gx_object_plain_rec_t {
  gx_object_gene_rec_t gene;
  std::int16_t fin = gx_object_fin;
};

struct gx_object_instance_rec_t {
  static constexpr gx_type type = gx_type::instance;
  gx_object_gene_rec_t gene;
  std::uint8_t rotate = 0;  // quarter turns, 0..3
  std::uint8_t fliph = 0;   // mirrored
  gx_object_id_t symbol = 0;
  std::int16_t n0_version = 0;
  gx_object_id_t previous_inst = 0;
  gx_object_id_t following_inst = 0;
  std::int16_t fin = gx_object_fin;
};

struct gx_object_symbol_rec_t {
  static constexpr gx_type type = gx_type::symbol;
  gx_object_gene_rec_t gene;
  gx_object_id_t instance = 0;  // first instance of this symbol
  gx_string_record_t path;      // of the symbol's file, with version suffix
  std::int16_t fin = gx_object_fin;
};

struct gx_object_pinpropfam_rec_t {
  static constexpr gx_type type = gx_type::pinpropfam;
  gx_object_gene_rec_t gene;
  std::uint8_t dotted = 0;
  std::uint8_t reserved = 0;
  gx_object_id_t net = 0;
  std::int16_t pin_start = 0, pin_end = 0;  // bus pin range
  std::int16_t pin_net_start = 0;           // first bit of the net it meets
  std::int16_t fin = gx_object_fin;
};

struct gx_display_probe_rec_t {
  gx_object_id_t vertex = 0;  // vertex or pin it is attached to
  std::int32_t net_type = 0;
  gx_string_record_t name;
};

struct gx_object_net_rec_t {
  static constexpr gx_type type = gx_type::net;
  gx_object_gene_rec_t gene;
  std::int32_t net_index = 0;
  gx_display_probe_rec_t* ptrto_probe = nullptr;  // in memory only; not owned
  std::uint8_t is_bus = 0;
  std::uint8_t reserved = 0;
  std::int16_t bus_start = 0, bus_end = 0;
  std::int16_t fin = gx_object_fin;  // in memory only
};

struct gx_object_segment_rec_t {
  static constexpr gx_type type = gx_type::segment;
  gx_object_gene_rec_t gene;
  std::int16_t reserved = 0;
  std::uint8_t line_color = 0;
  std::uint8_t line_width = 1;
  gx_object_id_t vertex1 = 0, vertex2 = 0;  // each a vertex_2d or an instance's pinpropfam
  std::int16_t line_style = 0;
  std::int16_t fin = gx_object_fin;
};

struct gx_object_tag_rec_t {
  static constexpr gx_type type = gx_type::tag;
  gx_object_gene_rec_t gene;
  gx_name_record_t name;
  gx_value_record_t nvalue;
  std::int16_t reserved = 0;
  std::int16_t fin = gx_object_fin;
};

struct gx_object_vertex_rec_t {
  static constexpr gx_type type = gx_type::vertex_2d;
  gx_object_gene_rec_t gene;
  std::uint8_t dotted = 0;
  std::uint8_t reserved = 0;
  gx_object_id_t net = 0;
  std::int16_t fin = gx_object_fin;
};

struct gx_object_arc_rec_t {
  static constexpr gx_type type = gx_type::arc3p_2d;
  gx_object_gene_rec_t gene;
  gx_pointreal_t pt2, pt3, center;  // relative to the origin
  std::int32_t rad = 0;
  std::int32_t angle1 = 0, angle2 = 0;  // 1/64 degree
  std::uint8_t border_color = 0;
  std::uint8_t c_reserved = 0;
  std::int16_t border_style = 0;
  std::int16_t i_reserved = 0;
  std::int16_t fin = gx_object_fin;
};

struct gx_object_circle_rec_t {
  static constexpr gx_type type = gx_type::circle_2d;
  gx_object_gene_rec_t gene;
  std::uint8_t reserved = 0;
  std::uint8_t border_color = 0;
  std::uint8_t filled = 0;
  std::uint8_t fill_color = 0;
  std::int32_t rad = 0;
  std::int16_t border_style = 0;
  std::int16_t fin = gx_object_fin;
};

struct gx_object_grid_rec_t {
  static constexpr gx_type type = gx_type::grid_2d;
  gx_object_gene_rec_t gene;
  gx_pointreal_t opposite_pt;  // page width and height
  std::int32_t step_point = 0, step_pin = 0;
  std::uint8_t grid_on = 0, snap_on = 0;
  std::int16_t fin = gx_object_fin;
};

struct gx_object_line_rec_t {
  static constexpr gx_type type = gx_type::line_2d;
  gx_object_gene_rec_t gene;
  std::int16_t reserved = 0;
  std::uint8_t line_color = 0;
  std::uint8_t line_width = 1;
  gx_pointreal_t pt2;
  std::int16_t line_style = 0;
  std::int16_t fin = gx_object_fin;
};

template <int Points, gx_type Code>
struct gx_object_polyline_of {
  static constexpr gx_type type = Code;
  static constexpr int max_points = Points;
  gx_object_gene_rec_t gene;
  std::int16_t line_style = 0;
  std::int16_t n_points = 0;
  std::array<gx_pointreal_t, Points> points;  // after the first relative to the first
  std::uint8_t line_color = 0;
  std::uint8_t reserved = 0;
  std::int16_t fin = gx_object_fin;
};
using gx_object_polyline5_rec_t = gx_object_polyline_of<5, gx_type::polyline5_2d>;
using gx_object_polyline_rec_t = gx_object_polyline_of<16, gx_type::polyline_2d>;

struct gx_object_rectangle_rec_t {
  static constexpr gx_type type = gx_type::rectangle_2d;
  gx_object_gene_rec_t gene;
  std::uint8_t reserved = 0;
  std::uint8_t line_color = 0;
  std::uint8_t filled = 0;
  std::uint8_t fill_color = 0;
  gx_pointreal_t pt2;
  std::int16_t line_style = 0;
  std::int16_t fin = gx_object_fin;
};

struct gx_object_property_rec_t {
  static constexpr gx_type type = gx_type::property_2d;
  gx_object_gene_rec_t gene;
  std::uint8_t fixed = 0;
  std::uint8_t visible = 0;
  std::uint8_t line_color = 0;
  std::uint8_t rotate = 0;  // quarter turns
  gx_name_record_t name;
  gx_value_record_t nvalue;
  std::int32_t height = 0;  // of the text, design units
  std::int16_t reserved = 0;
  std::int16_t fin = gx_object_fin;
};

// A primitive is a type that is drawn (vertices count for picking).
constexpr bool gx_is_primitive(gx_type t) {
  return t >= gx_type::vertex_2d && t <= gx_type::property_2d;
}
