// The walk over a sheet or a symbol file that never stops: every look at an object checks its id
// and its type, and what is missing or of the wrong type is simply not there. A run, a request to
// the simulator, status, selection, check and drawing all walk by it, so they see the same objects.
// The queries under the names of the package (queries.h) are its checked form.
//
// Every chain of a decoded file ends (gx_reference_fault). Deleted objects are met like any other;
// the lookups by name pass over deleted properties.
#pragma once

#include <cstddef>
#include <string_view>

#include "gx/db/file/file_records.h"
#include "gx/db/ids.h"
#include "gx/text/at.h"

// The object, or nullptr when the id names none.
inline const gx_object_gene_rec_t* gx_object(const gx_file_gene_recf_t& file, int id) {
  return id >= 1 && id <= file.object_id_max ? gx_at(file.ptr_to_ar_objindex, id - 1) : nullptr;
}

// The object as a record of its type, or nullptr when it is none.
template <typename Rec>
const Rec* gx_object_as(const gx_file_gene_recf_t& file, int id) {
  const auto* object = gx_object(file, id);
  return object != nullptr && object->object_type == Rec::type
             ? reinterpret_cast<const Rec*>(object)
             : nullptr;
}

// The ids from a first one on, each given by the one before it: for (const int id :
// gx_children(..)).
template <typename Next>
class gx_id_range {
 public:
  class iterator {
   public:
    iterator(int id, const Next* next) : id_(id), next_(next) {}
    int operator*() const { return id_; }
    iterator& operator++() {
      id_ = (*next_)(id_);
      return *this;
    }
    bool operator!=(std::nullptr_t) const { return id_ != 0; }

   private:
    int id_;
    const Next* next_;
  };
  gx_id_range(int first, Next next) : first_(first), next_(next) {}
  iterator begin() const { return {first_, &next_}; }
  std::nullptr_t end() const { return nullptr; }
  int first() const { return first_; }
  bool empty() const { return first_ == 0; }

 private:
  int first_;
  Next next_;
};

// A chain of siblings in child order.
struct gx_next_sibling_t {
  const gx_file_gene_recf_t* file;
  int operator()(int id) const {
    const int next = gx_at((*this->file).ptr_to_ar_objindex, id - 1)->following;
    return gx_object(*file, next) != nullptr ? next : 0;
  }
};
using gx_siblings = gx_id_range<gx_next_sibling_t>;

inline gx_siblings gx_siblings_from(const gx_file_gene_recf_t& file, int first) {
  return {gx_object(file, first) != nullptr ? first : 0, {&file}};
}
// The children of an object in child order.
inline gx_siblings gx_children(const gx_file_gene_recf_t& file, int father) {
  const auto* object = gx_object(file, father);
  return gx_siblings_from(file, object != nullptr ? object->child1 : 0);
}

// Child of that type, 0 when there is none: the first, and the last that a symbol is known by.
int gx_first_child_of(const gx_file_gene_recf_t& file, int father, gx_type type);
int gx_last_child_of(const gx_file_gene_recf_t& file, int father, gx_type type);

// --- families: the members of one under the main object, of its type (nets of the net_family ..);
// none when it is missing.
struct gx_next_member_t {
  const gx_file_gene_recf_t* file;
  gx_type member;
  int operator()(int id) const;
};
using gx_members = gx_id_range<gx_next_member_t>;

gx_members lb_instances(const gx_file_gene_recf_t& file);
gx_members lb_symbols(const gx_file_gene_recf_t& file);
gx_members lb_nets(const gx_file_gene_recf_t& file);
gx_members lb_frames(const gx_file_gene_recf_t& file);
gx_members wn_components(const gx_file_gene_recf_t& file);

// --- pins: a symbol's pin and the instance's pin property family at the same position.
struct gx_pin_pair_t {
  gx_object_id_t pin = 0, pinpropfam = 0;
  explicit operator bool() const { return pin != 0 && pinpropfam != 0; }
};
// The first pair of an instance; either may be 0. The pair after one: (0, 0) when a chain ends.
gx_pin_pair_t gx_first_pin(const gx_file_gene_recf_t& file, int inst);
gx_pin_pair_t gx_next_pin(const gx_file_gene_recf_t& file, gx_pin_pair_t pair);

// The pairs of an instance: for (const auto [pin, pinpropfam] : lb_pins(file, inst)).
class lb_pins {
 public:
  class iterator {
   public:
    iterator(const gx_file_gene_recf_t* file, gx_pin_pair_t pair) : file_(file), pair_(pair) {}
    gx_pin_pair_t operator*() const { return pair_; }
    iterator& operator++() {
      pair_ = gx_next_pin(*file_, pair_);
      return *this;
    }
    bool operator!=(std::nullptr_t) const { return static_cast<bool>(pair_); }

   private:
    const gx_file_gene_recf_t* file_;
    gx_pin_pair_t pair_;
  };
  lb_pins(const gx_file_gene_recf_t& file, int inst) : file_(&file), inst_(inst) {}
  iterator begin() const { return {file_, gx_first_pin(*file_, inst_)}; }
  std::nullptr_t end() const { return nullptr; }

 private:
  const gx_file_gene_recf_t* file_;
  int inst_;
};

// --- parts of a net of one type, in child order: those directly under it and those under its
// graphics (segments) or property families (properties), wherever these stand.
struct gx_net_part_t {
  gx_type part, wrapper;
};
inline constexpr gx_net_part_t gx_net_segments{gx_type::segment, gx_type::graphics};
inline constexpr gx_net_part_t gx_net_properties{gx_type::property_2d, gx_type::property_family};

int gx_first_net_part(const gx_file_gene_recf_t& file, int net, gx_net_part_t wanted);
int gx_next_net_part(const gx_file_gene_recf_t& file, int net, int id, gx_net_part_t wanted);

struct gx_next_part_t {
  const gx_file_gene_recf_t* file;
  int net;
  gx_net_part_t wanted;
  int operator()(int id) const { return gx_next_net_part(*file, net, id, wanted); }
};
inline gx_id_range<gx_next_part_t> lb_segments(const gx_file_gene_recf_t& file, int net) {
  return {gx_first_net_part(file, net, gx_net_segments), {&file, net, gx_net_segments}};
}
inline gx_id_range<gx_next_part_t> lb_net_properties(const gx_file_gene_recf_t& file, int net) {
  return {gx_first_net_part(file, net, gx_net_properties), {&file, net, gx_net_properties}};
}

// --- what holds the properties of an object: its children are the properties
gx_siblings lb_inst_properties(const gx_file_gene_recf_t& file, int inst);
gx_siblings lb_symbol_properties(const gx_file_gene_recf_t& file, int symbol);
gx_siblings lb_frame_properties(const gx_file_gene_recf_t& file, int frame);

// --- lookup by name, letters in either case; nullptr when there is none
// The first of that name directly under a holder.
const gx_object_property_rec_t* gx_find_prop(const gx_file_gene_recf_t& file, int holder,
                                             std::string_view name);
// Under the first of two holders that has it.
const gx_object_property_rec_t* gx_find_prop_of_two(const gx_file_gene_recf_t& file, int first,
                                                    int second, std::string_view name);
// Of an instance: its own, else its symbol's.
const gx_object_property_rec_t* gx_find_inst_prop(const gx_file_gene_recf_t& file, int inst,
                                                  std::string_view name);
// Of a net: in its property families, else directly under it.
const gx_object_property_rec_t* gx_find_net_prop(const gx_file_gene_recf_t& file, int net,
                                                 std::string_view name);

// The value of a property; empty for nullptr.
inline std::string_view gx_prop_text(const gx_object_property_rec_t* property) {
  return property != nullptr ? gx_view(property->nvalue) : std::string_view{};
}
