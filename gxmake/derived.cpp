#include "gxmake/derived.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "gx/db/file/reference_check.h"
#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/db/place/geometry.h"
#include "gx/edit/primitives.h"
#include "gx/text/at.h"

namespace {

constexpr gx_boundsreal_t pin_box = {-1000, -1000, 1000, 1000};  // the diamond that marks a pin

// What is not shown takes no place, so that it cannot be hit by the pointer.
bool is_hidden(const gx_object_gene_rec_t& object) {
  return object.object_type == gx_type::property_2d &&
         reinterpret_cast<const gx_object_property_rec_t&>(object).visible == 0;
}

int symbol_of(const gx_object_gene_rec_t& object) {
  return object.object_type == gx_type::instance
             ? reinterpret_cast<const gx_object_instance_rec_t&>(object).symbol
             : 0;
}

template <typename Rec>
Rec& as(gx_object_gene_rec_t& object) {
  return reinterpret_cast<Rec&>(object);
}

// The objects in the order of their ids: siblings are linked in it, and the header names the first
// main object, page and grid.
void link(gx_file_gene_recf_t& file, std::span<const int> fathers) {
  auto& objects = file.ptr_to_ar_objindex;
  file.object_id_max = static_cast<std::int16_t>(objects.size());
  file.primary_object = file.page_obj_id = file.grid_obj_id = 0;
  std::vector<gx_object_gene_rec_t*> last(objects.size() + 1);  // child of each; [0]: of none
  for (std::size_t i = 0; i < objects.size(); ++i) {
    auto& object = *objects[i];
    const int father = fathers[i];
    object.object_id = static_cast<gx_object_id_t>(i + 1);
    object.father = static_cast<gx_object_id_t>(father);
    object.previous = object.following = object.child1 = 0;
    auto*& before = gx_at(last, father);
    if (before != nullptr) {
      object.previous = before->object_id;
      before->following = object.object_id;
    } else if (father > 0) {
      gx_at(objects, father - 1)->child1 = object.object_id;
    }
    before = &object;
    for (const auto& [type, first] : {std::pair{gx_type::main, &file.primary_object},
                                      {gx_type::page, &file.page_obj_id},
                                      {gx_type::grid_2d, &file.grid_obj_id}})
      if (object.object_type == type && *first == 0) *first = object.object_id;
  }
}

// The place of a segment's end, which is a vertex or a pin of an instance.
gx_pointreal_t place_of(const gx_file_gene_recf_t& file, int end) {
  const auto* object = gx_object(file, end);
  if (object == nullptr) return {};
  return object->object_type == gx_type::pinpropfam ? gx_pin_abs_origin(file, end)
                                                    : gx_object_abs_origin(file, end, 0);
}

gx_pointreal_t sum(gx_pointreal_t a, gx_pointreal_t b) {
  return {gx_saturated(std::int64_t{a.x} + b.x), gx_saturated(std::int64_t{a.y} + b.y)};
}
gx_pointreal_t opposite(gx_pointreal_t p) {
  return {gx_saturated(-std::int64_t{p.x}), gx_saturated(-std::int64_t{p.y})};
}

gx_boundsreal_t box_of(std::span<const gx_pointreal_t> points) {
  gx_boundsreal_t box{0, 0, 0, 0};
  for (const auto& point : points) gx_include(box, point);
  return box;
}

template <typename Rec>
gx_boundsreal_t polyline_box(const Rec& line) {
  const auto many = std::clamp<int>(line.n_points, 1, Rec::max_points);
  return box_of(std::span(line.points).subspan(1, static_cast<std::size_t>(many - 1)));
}

// The arc through the three points of another, which is worked out where it lies, and its box.
std::pair<gx_object_arc_rec_t, gx_boundsreal_t> arc_through(const gx_object_arc_rec_t& arc) {
  gx_object_arc_rec_t made;
  const auto at = arc.gene.origin;
  const auto box = gx_arc_through(made, at, sum(at, arc.pt2), sum(at, arc.pt3));
  return {made, gx_move(box, opposite(at))};
}

void set_circle(gx_object_arc_rec_t& arc) {
  const auto made = arc_through(arc).first;
  arc.center = made.center;
  arc.rad = made.rad;
  arc.angle1 = made.angle1;
  arc.angle2 = made.angle2;
}

// The box of an object that is drawn itself, relative to its origin.
gx_boundsreal_t box_of(const gx_file_gene_recf_t& file, gx_object_gene_rec_t& object) {
  switch (object.object_type) {
    case gx_type::arc3p_2d:
      return arc_through(as<gx_object_arc_rec_t>(object)).second;
    case gx_type::circle_2d: {
      const auto radius = as<gx_object_circle_rec_t>(object).rad;
      const auto before = gx_saturated(-std::int64_t{radius});
      return {before, before, radius, radius};
    }
    case gx_type::grid_2d:
      return box_of({&as<gx_object_grid_rec_t>(object).opposite_pt, 1});
    case gx_type::line_2d:
      return box_of({&as<gx_object_line_rec_t>(object).pt2, 1});
    case gx_type::rectangle_2d:
      return box_of({&as<gx_object_rectangle_rec_t>(object).pt2, 1});
    case gx_type::polyline5_2d:
      return polyline_box(as<gx_object_polyline5_rec_t>(object));
    case gx_type::polyline_2d:
      return polyline_box(as<gx_object_polyline_rec_t>(object));
    case gx_type::property_2d:
      return gx_property_compute_newbounds(as<gx_object_property_rec_t>(object));
    case gx_type::segment: {
      const auto end = place_of(file, as<gx_object_segment_rec_t>(object).vertex2);
      const auto way = sum(end, opposite(object.origin));
      return box_of({&way, 1});
    }
    default:
      return {0, 0, 0, 0};
  }
}

bool is_drawn(const gx_object_gene_rec_t& object) {
  return gx_is_primitive(object.object_type) || object.object_type == gx_type::segment;
}

struct derived_t {
  gx_type type;  // nil: of all objects, and of the header
  std::string_view field;
};
constexpr derived_t derived[] = {{gx_type::nil, "father"},
                                 {gx_type::nil, "previous"},
                                 {gx_type::nil, "following"},
                                 {gx_type::nil, "child1"},
                                 {gx_type::nil, "bounds"},
                                 {gx_type::nil, "primary_object"},
                                 {gx_type::nil, "page_obj_id"},
                                 {gx_type::nil, "grid_obj_id"},
                                 {gx_type::instance, "previous_inst"},
                                 {gx_type::instance, "following_inst"},
                                 {gx_type::symbol, "instance"},
                                 {gx_type::segment, "origin"},
                                 {gx_type::arc3p_2d, "center"},
                                 {gx_type::arc3p_2d, "rad"},
                                 {gx_type::arc3p_2d, "angle1"},
                                 {gx_type::arc3p_2d, "angle2"}};

}  // namespace

bool gxm_is_derived(gx_type type, const gx_field_t& field) {
  return std::any_of(std::begin(derived), std::end(derived), [&](const derived_t& entry) {
    return entry.field == field.name && (entry.type == gx_type::nil || entry.type == type);
  });
}

std::string gxm_derive(gx_file_gene_recf_t& file, std::span<const int> fathers,
                       const std::function<void()>& settle) {
  const auto& objects = file.ptr_to_ar_objindex;
  link(file, fathers);
  settle();
  if (auto fault = gx_reference_fault(file); !fault.empty()) return fault;

  for (auto* object : objects)
    if (object->object_type == gx_type::symbol) as<gx_object_symbol_rec_t>(*object).instance = 0;
  gxm_chain_instances(file);
  settle();
  if (auto fault = gx_reference_fault(file); !fault.empty()) return fault;

  for (auto* object : objects) {
    if (object->object_type == gx_type::arc3p_2d) set_circle(as<gx_object_arc_rec_t>(*object));
    if (object->object_type == gx_type::segment)
      object->origin = place_of(file, as<gx_object_segment_rec_t>(*object).vertex1);
  }
  settle();
  for (auto* object : objects)
    if (is_drawn(*object)) object->bounds = box_of(file, *object);
  settle();
  gxm_grow_boxes(file);
  settle();
  return {};
}

void gxm_chain_instances(const gx_file_gene_recf_t& file) {
  std::vector<gx_object_instance_rec_t*> last(file.ptr_to_ar_objindex.size() + 1);  // by symbol
  for (auto* object : file.ptr_to_ar_objindex) {
    if (object->object_type != gx_type::instance) continue;
    auto& instance = reinterpret_cast<gx_object_instance_rec_t&>(*object);
    instance.previous_inst = instance.following_inst = 0;
    if (instance.symbol == 0) continue;
    auto*& before = gx_at(last, instance.symbol);
    if (before != nullptr) instance.previous_inst = before->gene.object_id;
    auto& link = before != nullptr ? before->following_inst
                                   : gx_symbol_info_ptr(file, instance.symbol).instance;
    link = instance.gene.object_id;
    before = &instance;
  }
}

void gxm_grow_boxes(const gx_file_gene_recf_t& file) {
  const auto& objects = file.ptr_to_ar_objindex;
  const auto object = [&](int id) -> gx_object_gene_rec_t& { return *gx_at(objects, id - 1); };
  for (auto* at : objects) {
    const gx_type type = at->object_type;
    if (gx_is_primitive(type) || type == gx_type::segment) continue;
    const bool is_pin = type == gx_type::pin || type == gx_type::pinpropfam;
    at->bounds = is_pin ? pin_box : gx_empty_bounds;
  }
  // Children have higher ids than their fathers; a symbol comes before its instances.
  const auto grow = [&](const gx_object_gene_rec_t& child) {
    if (!child.father || child.object_type == gx_type::bodpropfam ||
        child.object_type == gx_type::symbol_family || is_hidden(child))
      return;  // symbols lie in coordinates of their own
    gx_boundsreal_t box = child.bounds;
    if (gx_bounds_empty(box)) return;
    if (child.object_type == gx_type::instance) {
      const auto& instance = reinterpret_cast<const gx_object_instance_rec_t&>(child);
      box = gx_turn(box, instance.rotate, instance.fliph != 0);
    }
    gx_include(object(child.father).bounds, gx_move(box, child.origin));
  };
  for (int pass = 0; pass < 2; ++pass)  // first all but the families, so that symbols are known
    for (int id = file.object_id_max; id >= 1; --id) {
      auto& child = object(id);
      const bool instance_or_above = child.object_type == gx_type::instance ||
                                     child.object_type == gx_type::instance_family ||
                                     child.father == 0 || child.father == file.primary_object;
      if (instance_or_above != (pass == 1)) continue;
      if (const auto* symbol = gx_object(file, symbol_of(child)))
        gx_include(child.bounds, symbol->bounds);
      grow(child);
    }
}
