// From (file, object id) to the object's record: the checked accessors.
// A bad index, id or type writes debug lines and stops the program.
#pragma once

#include "gx/db/file/file_records.h"
#include "gx/db/ids.h"
#include "gx/db/object_flags.h"
#include "gx/text/at.h"

// The general record of a file slot. Not open: init_or_open_file_not_done; without record:
// file_index_invalid.
gx_file_gene_recf_t& gx_ptrto_gene_file_buf(gx_file_index_t file_index);

inline bool gx_object_id_ok(const gx_file_gene_recf_t& file, int id) {
  return id >= 1 && id <= file.object_id_max;
}

// The stops of the two accessors below, out of their line.
[[noreturn]] void gx_object_id_refused(const gx_file_gene_recf_t& file, int id);
[[noreturn]] void gx_object_type_refused(const gx_object_gene_rec_t& object, gx_type type);

// The record of object id. Outside 1..object_id_max: object_id_invalid.
inline gx_object_gene_rec_t& gx_object_id_ptr(const gx_file_gene_recf_t& file, int id) {
  if (!gx_object_id_ok(file, id)) gx_object_id_refused(file, id);
  return *gx_at(file.ptr_to_ar_objindex, id - 1);
}

// Stops with object_type_invalid unless the object has the type.
inline void gx_check_object_type(const gx_object_gene_rec_t& object, gx_type type) {
  if (object.object_type != type) gx_object_type_refused(object, type);
}

// The typed record; the stored type must be the record's type.
template <typename Rec>
Rec& gx_info_ptr(const gx_file_gene_recf_t& file, int id) {
  auto& object = gx_object_id_ptr(file, id);
  gx_check_object_type(object, Rec::type);
  return reinterpret_cast<Rec&>(object);
}
inline auto& gx_instance_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_instance_rec_t>(f, id);
}
inline auto& gx_symbol_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_symbol_rec_t>(f, id);
}
inline auto& gx_pinpropfam_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_pinpropfam_rec_t>(f, id);
}
inline auto& gx_net_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_net_rec_t>(f, id);
}
inline auto& gx_segment_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_segment_rec_t>(f, id);
}
inline auto& gx_tag_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_tag_rec_t>(f, id);
}
inline auto& gx_vertex_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_vertex_rec_t>(f, id);
}
inline auto& gx_arc_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_arc_rec_t>(f, id);
}
inline auto& gx_circle_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_circle_rec_t>(f, id);
}
inline auto& gx_grid_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_grid_rec_t>(f, id);
}
inline auto& gx_line_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_line_rec_t>(f, id);
}
inline auto& gx_polyline5_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_polyline5_rec_t>(f, id);
}
inline auto& gx_polyline_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_polyline_rec_t>(f, id);
}
inline auto& gx_rectangle_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_rectangle_rec_t>(f, id);
}
inline auto& gx_property_info_ptr(const gx_file_gene_recf_t& f, int id) {
  return gx_info_ptr<gx_object_property_rec_t>(f, id);
}

gx_object_id_t gx_file_inq_max_object_id(const gx_file_gene_recf_t& file);
gx_object_id_t gx_file_inq_primary_object(const gx_file_gene_recf_t& file);
void gx_file_set_primary_object(gx_file_gene_recf_t& file, int id);
void gx_file_select(gx_file_index_t file_index);  // makes it the current file
gx_boundsreal_t gx_file_inq_bounds(const gx_file_gene_recf_t& file);
