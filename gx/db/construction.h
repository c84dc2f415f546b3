// Building objects: the bracket of create, open and close, and the constructors that fill the
// object it holds.
//
// Objects are created in the current file, inside the bracket of their father. A constructor fills
// the object being created or open; when that has another type the program stops with the code of
// the constructor. Points are given in the father's coordinates; a primitive's origin becomes its
// first point, its box is returned in those coordinates, and the boxes of its fathers grow.
#pragma once

#include <span>
#include <string_view>

#include "gx/db/file_records.h"
#include "gx/db/ids.h"

// --- bracket
gx_object_id_t gx_object_create(gx_file_index_t file_index, gx_type type, std::int32_t x,
                                std::int32_t y);
gx_type gx_object_open(gx_file_index_t file_index, int id);
void gx_object_close(gx_file_index_t file_index, int id);

// --- objects that hold nothing of their own; `type` is one of the 17 below
void gx_plain(gx_type type);
inline void gx_main() { gx_plain(gx_type::main); }
inline void gx_page() { gx_plain(gx_type::page); }
inline void gx_component_family() { gx_plain(gx_type::component_family); }
inline void gx_instance_family() { gx_plain(gx_type::instance_family); }
inline void gx_symbol_family() { gx_plain(gx_type::symbol_family); }
inline void gx_net_family() { gx_plain(gx_type::net_family); }
inline void gx_component() { gx_plain(gx_type::component); }
inline void gx_bodpropfam() { gx_plain(gx_type::bodpropfam); }
inline void gx_vertex_family() { gx_plain(gx_type::vertex_family); }
inline void gx_body() { gx_plain(gx_type::body); }
inline void gx_pin_family() { gx_plain(gx_type::pin_family); }
inline void gx_tag_family() { gx_plain(gx_type::tag_family); }
inline void gx_frame_family() { gx_plain(gx_type::frame_family); }
inline void gx_frame() { gx_plain(gx_type::frame); }
inline void gx_pin() { gx_plain(gx_type::pin); }
inline void gx_graphics() { gx_plain(gx_type::graphics); }
inline void gx_property_family() { gx_plain(gx_type::property_family); }

// --- objects of a sheet
void gx_symbol(std::string_view path);
void gx_instance(int symbol, int rotate, bool fliph);
void gx_pinpropfam();
void gx_net();
void gx_vertex_2dreal(std::int32_t x, std::int32_t y);
gx_boundsreal_t gx_segment(int style, int color, int width, int vertex1, int vertex2);

// --- primitives
gx_boundsreal_t gx_line_2dreal(int style, int color, int width, gx_pointreal_t pt1,
                               gx_pointreal_t pt2);
gx_boundsreal_t gx_rectangle_2dreal(int style, int color, gx_pointreal_t pt1, gx_pointreal_t pt2,
                                    bool filled, int fill_color);
gx_boundsreal_t gx_circle_real(int style, int color, bool filled, gx_pointreal_t center,
                               std::int32_t radius);
// An arc from pt1 over pt2 to pt3. Angles are counterclockwise on the screen, angle1 0..23039,
// angle2 above it by the extent. Points on one line give a straight arc: radius 0, box of the
// points.
gx_boundsreal_t gx_arc3p_2dreal(gx_pointreal_t pt1, gx_pointreal_t pt2, gx_pointreal_t pt3,
                                int style, int color);
// The points, circle and angles of such an arc in its record; returns the box.
gx_boundsreal_t gx_arc_through(gx_object_arc_rec_t& arc, gx_pointreal_t pt1, gx_pointreal_t pt2,
                               gx_pointreal_t pt3);
gx_boundsreal_t gx_grid_real(gx_pointreal_t corner, gx_pointreal_t opposite,
                             std::int32_t step_point, std::int32_t step_pin, bool grid_on,
                             bool snap_on);
gx_boundsreal_t gx_polyline5_2dreal(int style, int color, std::span<const gx_pointreal_t> points);
gx_boundsreal_t gx_polyline_2dreal(int style, int color, std::span<const gx_pointreal_t> points);
void gx_tag(std::string_view name, std::string_view value);

// How a property's text looks: quarter turns, and its switches.
struct gx_property_look_t {
  std::int32_t height = 2500;
  int rotate = 0;
  int color = 7;
  bool fixed = true;
  bool visible = true;
};
gx_boundsreal_t gx_property_2dreal(std::string_view name, std::string_view value,
                                   gx_pointreal_t position, const gx_property_look_t& look);

// --- vertex and segment lists of file 1, by cells of its page; kept while vertex_list_to_do is on
void gx_put_vertex_list(const gx_file_gene_recf_t& file, int vertex);
void gx_put_segment_list(const gx_file_gene_recf_t& file, int segment);
void gx_init_vertex_segment_list(gx_file_index_t file_index);
