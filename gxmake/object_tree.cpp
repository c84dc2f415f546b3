// Links, shapes and boxes of a file under construction.
#include "gxmake/object_tree.h"

#include <algorithm>

#include "gx/db/construction.h"
#include "gx/db/geometry.h"
#include "gx/text/strings.h"

namespace {

constexpr std::int32_t dot_half_size = 1000;
constexpr std::int32_t pin_half_size = 1000;  // of the diamond that marks a pin

void include(gx_boundsreal_t& box, gx_pointreal_t p) {
  box.xmin = std::min(box.xmin, p.x);
  box.ymin = std::min(box.ymin, p.y);
  box.xmax = std::max(box.xmax, p.x);
  box.ymax = std::max(box.ymax, p.y);
}

void include(gx_boundsreal_t& box, const gx_boundsreal_t& other) {
  if (gx_bounds_empty(other)) return;
  include(box, gx_pointreal_t{other.xmin, other.ymin});
  include(box, gx_pointreal_t{other.xmax, other.ymax});
}

gx_pointreal_t minus(gx_pointreal_t a, gx_pointreal_t b) { return {a.x - b.x, a.y - b.y}; }

// What is not shown takes no place, so that it cannot be hit by the pointer.
bool is_hidden(const gx_object_gene_rec_t& object) {
  return object.object_type == gx_type::property_2d &&
         reinterpret_cast<const gx_object_property_rec_t&>(object).visible == 0;
}

}  // namespace

gx_object_id_t gxm_link(gxm_tree_t& tree, gx_object_gene_rec_t& object, int father,
                        gx_pointreal_t origin) {
  auto& objects = tree.file->ptr_to_ar_objindex;
  if (objects.size() >= gx_max_object_id) throw gxm_too_many_objects();
  const auto id = static_cast<gx_object_id_t>(objects.size() + 1);
  object.object_id = id;
  object.father = static_cast<gx_object_id_t>(father);
  object.origin = origin;
  gx_object_id_t& last = tree.last_child[static_cast<std::size_t>(father)];
  object.previous = last;
  if (last)
    objects[static_cast<std::size_t>(last - 1)]->following = id;
  else if (father)
    objects[static_cast<std::size_t>(father - 1)]->child1 = id;
  last = id;
  objects.push_back(&object);
  tree.last_child.push_back(0);
  tree.file->object_id_max = id;
  return id;
}

gx_object_id_t gxm_add_plain(gxm_tree_t& tree, gx_type type, int father, gx_pointreal_t origin) {
  auto& record = gx_new_record<gx_object_plain_rec_t>(*tree.file);
  record.gene.object_type = type;
  const auto id = gxm_link(tree, record.gene, father, origin);
  if (type == gx_type::pin)
    record.gene.bounds = {-pin_half_size, -pin_half_size, pin_half_size, pin_half_size};
  return id;
}

gxm_tree_t gxm_start_tree(const gxm_date_t& date, gx_pointreal_t page, std::int32_t grid_step,
                          bool grid_on) {
  gxm_tree_t tree{std::make_shared<gx_file_gene_recf_t>(), {0}};
  auto& file = *tree.file;
  file.day = date.day;
  file.month = date.month;
  file.year = date.year;
  file.hour = date.hour;
  file.minute = date.minute;
  file.dot_width = dot_half_size;
  file.primary_object = gxm_add_plain(tree, gx_type::main, 0);
  file.page_obj_id = gxm_add_plain(tree, gx_type::page, file.primary_object);
  auto& grid = gxm_add<gx_object_grid_rec_t>(tree, file.page_obj_id, {});
  file.grid_obj_id = grid.gene.object_id;
  grid.opposite_pt = page;
  grid.step_point = grid.step_pin = grid_step;
  grid.grid_on = grid_on;
  grid.snap_on = 1;
  grid.gene.bounds = {0, 0, page.x, page.y};
  return tree;
}

void gxm_add_shape(gxm_tree_t& tree, const gxm_shape_t& shape, int father) {
  const auto& p = shape.points;
  const std::uint8_t fill_color = shape.filled ? shape.color : std::uint8_t{0};
  switch (shape.type) {
    case gx_type::rectangle_2d: {
      auto& rectangle = gxm_add<gx_object_rectangle_rec_t>(tree, father, p[0]);
      rectangle.pt2 = minus(p[1], p[0]);
      rectangle.line_color = shape.color;
      rectangle.line_style = shape.style;
      rectangle.filled = shape.filled;
      rectangle.fill_color = fill_color;
      for (const auto& point : p) include(rectangle.gene.bounds, minus(point, p[0]));
      return;
    }
    case gx_type::circle_2d: {
      auto& circle = gxm_add<gx_object_circle_rec_t>(tree, father, p[0]);
      circle.rad = shape.radius;
      circle.border_color = shape.color;
      circle.border_style = shape.style;
      circle.filled = shape.filled;
      circle.fill_color = fill_color;
      circle.gene.bounds = {-shape.radius, -shape.radius, shape.radius, shape.radius};
      return;
    }
    case gx_type::arc3p_2d: {
      auto& arc = gxm_add<gx_object_arc_rec_t>(tree, father, p[0]);
      arc.border_color = shape.color;
      arc.border_style = shape.style;
      arc.gene.bounds = gx_move(gx_arc_through(arc, p[0], p[1], p[2]), minus({}, p[0]));
      return;
    }
    case gx_type::polyline_2d: {
      auto& polyline = gxm_add<gx_object_polyline_rec_t>(tree, father, p[0]);
      polyline.line_color = shape.color;
      polyline.line_style = shape.style;
      polyline.n_points = static_cast<std::int16_t>(p.size());
      polyline.points[0] = p[0];
      for (std::size_t i = 1; i < p.size(); ++i) polyline.points[i] = minus(p[i], p[0]);
      for (const auto& point : p) include(polyline.gene.bounds, minus(point, p[0]));
      return;
    }
    default: {
      auto& line = gxm_add<gx_object_line_rec_t>(tree, father, p[0]);
      line.pt2 = minus(p[1], p[0]);
      line.line_color = shape.color;
      line.line_width = shape.width;
      line.line_style = shape.style;
      for (const auto& point : p) include(line.gene.bounds, minus(point, p[0]));
      return;
    }
  }
}

void gxm_add_property(gxm_tree_t& tree, const gxm_property_t& property, int father, bool fixed,
                      int rotate, gx_pointreal_t when_hidden) {
  auto& record = gxm_add<gx_object_property_rec_t>(tree, father, property.at.value_or(when_hidden));
  record.fixed = fixed;
  record.visible = property.at.has_value();
  record.line_color = property.color;
  record.rotate = static_cast<std::uint8_t>(rotate);
  record.name = gx_name(property.name);
  record.nvalue = gx_value(property.value);
  record.height = property.height;
  record.gene.bounds = gx_property_compute_newbounds(record);
}

void gxm_grow_boxes(gxm_tree_t& tree) {
  auto& objects = tree.file->ptr_to_ar_objindex;
  const auto object = [&](int id) -> gx_object_gene_rec_t& {
    return *objects[static_cast<std::size_t>(id - 1)];
  };
  // Children have higher ids than their fathers; a symbol stands before its instances.
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
    include(object(child.father).bounds, gx_move(box, child.origin));
  };
  for (int pass = 0; pass < 2; ++pass)  // first all but the families, so that symbols are known
    for (int id = tree.file->object_id_max; id >= 1; --id) {
      auto& child = object(id);
      const bool instance_or_above = child.object_type == gx_type::instance ||
                                     child.object_type == gx_type::instance_family ||
                                     child.father == 0 || child.father == tree.file->primary_object;
      if (instance_or_above != (pass == 1)) continue;
      if (child.object_type == gx_type::instance)
        include(child.bounds,
                object(reinterpret_cast<const gx_object_instance_rec_t&>(child).symbol).bounds);
      grow(child);
    }
}
