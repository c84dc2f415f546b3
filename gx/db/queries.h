// The queries that walk sheets (lb_) and symbol files (wn_), and the lookup of properties by name.
//
// A "first" query gives the family object and its first member (0 when the family is empty), the
// matching "next" query the next member (0 at the end). Deleted objects are returned like any
// other. Missing families, bad ids and wrong types stop the program.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "gx/db/file_records.h"
#include "gx/db/ids.h"

struct gx_first_t {
  gx_object_id_t family = 0, member = 0;
};

// A symbol's pin and the instance's pin property family at the same position; (0, 0) at the end.
struct gx_pin_pair_t {
  gx_object_id_t pin = 0, pinpropfam = 0;
  explicit operator bool() const { return pin != 0 && pinpropfam != 0; }
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

// --- children
gx_inst_children_t lb_inq_inst_child_id(const gx_file_gene_recf_t& file, int inst);
gx_symbol_children_t lb_inq_symbol_child_id(const gx_file_gene_recf_t& file, int symbol);
// Of a body, frame or net: both, at any place among the children; 0 for one it has not.
gx_graphics_property_t lb_inq_graphics_property_id(const gx_file_gene_recf_t& file, int holder);

// --- pins
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
// The value of a named property of an object; nothing when it has none. An instance falls back on
// its symbol's body, a net looks in its property family.
std::optional<gx_string_record_t> lb_get_valueof_prop_pin(const gx_file_gene_recf_t& file, int pin,
                                                          std::string_view name);
std::optional<gx_string_record_t> lb_get_valueof_prop_pinpropfam(const gx_file_gene_recf_t& file,
                                                                 int pinpropfam,
                                                                 std::string_view name);
std::optional<gx_string_record_t> lb_get_valueof_prop_inst(const gx_file_gene_recf_t& file,
                                                           int inst, std::string_view name);
std::optional<gx_string_record_t> lb_get_valueof_prop_net(const gx_file_gene_recf_t& file, int net,
                                                          std::string_view name);

// --- segments and properties of a net, under it or under its graphics and property family
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
gx_graphics_property_t wn_inq_graphics_property_id(const gx_file_gene_recf_t& file, int holder);
gx_object_id_t wn_inq_comp_first_pin_id(const gx_file_gene_recf_t& file, int comp);
gx_object_id_t wn_inq_comp_next_pin_id(const gx_file_gene_recf_t& file, int pin);
gx_object_id_t wn_inq_symbol_first_pin_id(const gx_file_gene_recf_t& file, int symbol);
gx_object_id_t wn_inq_symbol_next_pin_id(const gx_file_gene_recf_t& file, int pin);

// The record of a named property, found as above; nullptr when there is none. The value need not
// be copied then.
const gx_object_property_rec_t* lb_find_prop_inst(const gx_file_gene_recf_t& file, int inst,
                                                  std::string_view name);
const gx_object_property_rec_t* lb_find_prop_net(const gx_file_gene_recf_t& file, int net,
                                                 std::string_view name);

// What a file lacks for being walked as a sheet: a family, the symbol of an instance, a family of
// pins. "" when no query of this header can stop on what a sound file holds (see gx_decode_file).
std::string gx_sheet_fault(const gx_file_gene_recf_t& file);

// --- ranges over the queries, for loops: for (const int inst : lb_instances(file)) ...
// A chain of siblings in child order. Every chain of a decoded file ends.
class gx_siblings {
 public:
  class iterator {
   public:
    iterator(const gx_file_gene_recf_t* file, int id) : file_(file), id_(id) {}
    int operator*() const { return id_; }
    iterator& operator++();
    bool operator!=(const iterator& other) const { return id_ != other.id_; }

   private:
    const gx_file_gene_recf_t* file_;
    int id_;
  };
  gx_siblings(const gx_file_gene_recf_t& file, int first) : file_(&file), first_(first) {}
  iterator begin() const { return {file_, first_}; }
  iterator end() const { return {file_, 0}; }

 private:
  const gx_file_gene_recf_t* file_;
  int first_;
};
// Children of an object in child order.
gx_siblings gx_children(const gx_file_gene_recf_t& file, int father);

// The members of the families of a sheet.
inline gx_siblings lb_instances(const gx_file_gene_recf_t& file) {
  return {file, lb_inq_first_inst_id(file).member};
}
inline gx_siblings lb_symbols(const gx_file_gene_recf_t& file) {
  return {file, lb_inq_first_symbol_id(file).member};
}
inline gx_siblings lb_nets(const gx_file_gene_recf_t& file) {
  return {file, lb_inq_first_net_id(file).member};
}
inline gx_siblings lb_vertices(const gx_file_gene_recf_t& file) {
  return {file, lb_inq_first_vertex_id(file).member};
}
inline gx_siblings lb_frames(const gx_file_gene_recf_t& file) {
  return {file, lb_inq_first_frame_id(file).member};
}

// A walk from a first value by a "next" query; a default value ends it.
template <typename Value, typename Next>
class gx_walk {
 public:
  class iterator {
   public:
    iterator(Value value, const Next* next) : value_(value), next_(next) {}
    Value operator*() const { return value_; }
    iterator& operator++() {
      value_ = (*next_)(value_);
      return *this;
    }
    bool operator!=(std::nullptr_t) const { return static_cast<bool>(value_); }

   private:
    Value value_;
    const Next* next_;
  };
  gx_walk(Value first, Next next) : first_(first), next_(next) {}
  iterator begin() const { return {first_, &next_}; }
  std::nullptr_t end() const { return nullptr; }

 private:
  Value first_;
  Next next_;
};

// The pin pairs of an instance.
inline auto lb_pins(const gx_file_gene_recf_t& file, int inst) {
  return gx_walk(lb_inq_inst_first_pin_id(file, inst),
                 [&file](gx_pin_pair_t pair) { return lb_inq_inst_next_pin_id(file, pair); });
}
// The segments and the properties of a net.
inline auto lb_segments(const gx_file_gene_recf_t& file, int net) {
  return gx_walk(gx_inq_first_net_segment_id(file, net), [&file, net](gx_object_id_t segment) {
    return gx_inq_next_net_segment_id(file, net, segment);
  });
}
inline auto lb_net_properties(const gx_file_gene_recf_t& file, int net) {
  return gx_walk(gx_inq_first_net_property_id(file, net), [&file, net](gx_object_id_t property) {
    return gx_inq_next_net_property_id(file, net, property);
  });
}
// The children of what holds the properties of an object, which are properties: an instance's own,
// those of a symbol's body, those of a frame. Empty where there is no such holder.
gx_siblings lb_inst_properties(const gx_file_gene_recf_t& file, int inst);
gx_siblings lb_symbol_properties(const gx_file_gene_recf_t& file, int symbol);
gx_siblings lb_frame_properties(const gx_file_gene_recf_t& file, int frame);
