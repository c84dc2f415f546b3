// The queries over sheets (lb_) and symbol files (wn_) under the names of the package: the checked
// form of the walk in objects_of.h, by which KIVO itself goes. They check the type of every object
// that they hand out.
//
// A "first" query gives the family object and its first member (0 when the family is empty), the
// matching "next" query the next member (0 at the end). Deleted objects are returned like any
// other. Missing families, bad ids and wrong types stop the program.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "gx/db/file/file_records.h"
#include "gx/db/ids.h"
#include "gx/db/objects_of.h"

struct gx_first_t {
  gx_object_id_t family = 0, member = 0;
};
struct gx_inst_children_t {
  gx_object_id_t bodpropfam = 0, pin_family = 0;
};
struct gx_symbol_children_t {
  gx_object_id_t body = 0, pin_family = 0, instance = 0;
};
struct gx_graphics_property_t {
  gx_object_id_t graphics = 0, property_family = 0;
};
struct gx_comp_children_t {
  gx_object_id_t body = 0, pin_family = 0, symbol_family = 0, frame = 0;
};

// --- families of a sheet
gx_first_t lb_inq_first_inst_id(const gx_file_gene_recf_t& file);
gx_object_id_t lb_inq_next_inst_id(const gx_file_gene_recf_t& file, int inst);
gx_first_t lb_inq_first_symbol_id(const gx_file_gene_recf_t& file);
gx_object_id_t lb_inq_next_symbol_id(const gx_file_gene_recf_t& file, int symbol);
gx_first_t lb_inq_first_net_id(const gx_file_gene_recf_t& file);
gx_object_id_t lb_inq_next_net_id(const gx_file_gene_recf_t& file, int net);
gx_first_t lb_inq_first_vertex_id(const gx_file_gene_recf_t& file);
gx_object_id_t lb_inq_next_vertex_id(const gx_file_gene_recf_t& file, int vertex);
gx_first_t lb_inq_first_frame_id(const gx_file_gene_recf_t& file);
gx_object_id_t lb_inq_next_frame_id(const gx_file_gene_recf_t& file, int frame);

// --- instances of one symbol
gx_object_id_t lb_inq_first_inst_ofsymb_id(const gx_file_gene_recf_t& file, int symbol);
gx_object_id_t lb_inq_next_inst_ofsymb_id(const gx_file_gene_recf_t& file, int symbol, int inst);

// --- children by their type, at any place; 0 for those that are not there
gx_inst_children_t lb_inq_inst_child_id(const gx_file_gene_recf_t& file, int inst);
// The last of each type.
gx_symbol_children_t lb_inq_symbol_child_id(const gx_file_gene_recf_t& file, int symbol);
// Of a body, frame or net.
gx_graphics_property_t lb_inq_graphics_property_id(const gx_file_gene_recf_t& file, int holder);

// --- pins; (0, 0) at the end. A deleted pin of an instance stops the program.
gx_pin_pair_t lb_inq_inst_first_pin_id(const gx_file_gene_recf_t& file, int inst);
gx_pin_pair_t lb_inq_inst_next_pin_id(const gx_file_gene_recf_t& file, gx_pin_pair_t pair);
gx_pin_pair_t lb_inq_symbol_first_pin_id(const gx_file_gene_recf_t& file, int symbol);
gx_pin_pair_t lb_inq_symbol_next_pin_id(const gx_file_gene_recf_t& file, gx_pin_pair_t pair);
gx_object_id_t lb_instance_of_pin_id(const gx_file_gene_recf_t& file, int pinpropfam);
gx_pointreal_t lb_inq_inst_origin(const gx_file_gene_recf_t& file, int inst);

// --- property lookup
// The first not deleted property of a holder (bodpropfam, pinpropfam, pin, property_family) with
// that name; 0 when there is none. A net also counts as a holder of the properties directly
// under it.
gx_object_id_t gx_find_property_name(const gx_file_gene_recf_t& file, int holder,
                                     std::string_view name);
// The record of a named property; nullptr when there is none. An instance falls back on its
// symbol's body; a net looks in its property family, then directly under it.
const gx_object_property_rec_t* lb_find_prop_inst(const gx_file_gene_recf_t& file, int inst,
                                                  std::string_view name);
const gx_object_property_rec_t* lb_find_prop_net(const gx_file_gene_recf_t& file, int net,
                                                 std::string_view name);
// A copy of the value of a property found in the same way; nothing when there is none.
std::optional<gx_string_record_t> lb_get_valueof_prop_pin(const gx_file_gene_recf_t& file, int pin,
                                                          std::string_view name);
std::optional<gx_string_record_t> lb_get_valueof_prop_pinpropfam(const gx_file_gene_recf_t& file,
                                                                 int pinpropfam,
                                                                 std::string_view name);
std::optional<gx_string_record_t> lb_get_valueof_prop_inst(const gx_file_gene_recf_t& file,
                                                           int inst, std::string_view name);
std::optional<gx_string_record_t> lb_get_valueof_prop_net(const gx_file_gene_recf_t& file, int net,
                                                          std::string_view name);

// The name of an instance, a net or a pin: its INST, NET or PIN value; without one "I_", "N_" or
// "P_" and its id (of a pin that of its pinpropfam).
std::string lb_inst_name(const gx_file_gene_recf_t& file, int inst);
std::string lb_net_name(const gx_file_gene_recf_t& file, int net);
std::string lb_pin_name(const gx_file_gene_recf_t& file, gx_pin_pair_t pin);

// --- segments and properties of a net
gx_object_id_t gx_inq_first_net_segment_id(const gx_file_gene_recf_t& file, int net);
gx_object_id_t gx_inq_next_net_segment_id(const gx_file_gene_recf_t& file, int net, int segment);
gx_object_id_t gx_inq_first_net_property_id(const gx_file_gene_recf_t& file, int net);
gx_object_id_t gx_inq_next_net_property_id(const gx_file_gene_recf_t& file, int net, int property);

// --- symbol files
gx_first_t wn_inq_first_comp_id(const gx_file_gene_recf_t& file);
gx_object_id_t wn_inq_next_comp_id(const gx_file_gene_recf_t& file, int comp);
gx_comp_children_t wn_inq_comp_child_id(const gx_file_gene_recf_t& file, int comp);
gx_object_id_t wn_inq_first_symbol_id(const gx_file_gene_recf_t& file, int comp);
gx_object_id_t wn_inq_next_symbol_id(const gx_file_gene_recf_t& file, int symbol);
gx_symbol_children_t wn_inq_symbol_child_id(const gx_file_gene_recf_t& file, int symbol);
// Of a body or frame.
gx_graphics_property_t wn_inq_graphics_property_id(const gx_file_gene_recf_t& file, int holder);
gx_object_id_t wn_inq_comp_first_pin_id(const gx_file_gene_recf_t& file, int comp);
gx_object_id_t wn_inq_comp_next_pin_id(const gx_file_gene_recf_t& file, int pin);
gx_object_id_t wn_inq_symbol_first_pin_id(const gx_file_gene_recf_t& file, int symbol);
gx_object_id_t wn_inq_symbol_next_pin_id(const gx_file_gene_recf_t& file, int pin);
