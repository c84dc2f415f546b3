// Shapes as elements of SVG, in hundredths of design units; strokes of one look that follow one
// another are one path.
#include "gx/vector/svg_picture.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "gx/db/geometry.h"
#include "gx/db/object_access.h"
#include "gx/db/page.h"
#include "gx/db/queries.h"
#include "gx/picture/sheet_shapes.h"
#include "gx/text/characters.h"

namespace {
int sound_color(int color) {
  return color >= 0 && color < gx_nb_of_inks ? color : gx_nb_of_inks - 1;
}

class svg_writer {
 public:
  // Texts go to `out`, which is not emptied.
  explicit svg_writer(std::string& out) : out_(out) {}

  void draw(const gx_shape_t& shape) {
    switch (shape.kind) {
      case gx_shape_kind::line:
      case gx_shape_kind::polyline:
        if (shape.points.size() < 2) return;
        use_stroke(shape);
        for (std::size_t i = 0; i < shape.points.size(); ++i) add_point(i > 0, shape.points[i]);
        return;
      case gx_shape_kind::arc:
        return draw_arc(shape);
      case gx_shape_kind::circle:
        use_stroke(shape);
        return add_circle(shape.points[0], shape.size);
      case gx_shape_kind::box:
        if (shape.filled) return draw_filled(shape, shape.points[0], shape.points[1]);
        use_stroke(shape);
        return add_box(shape.points[0], shape.points[1]);
      case gx_shape_kind::text:
        return draw_text(shape);
      case gx_shape_kind::dot: {
        const std::int32_t r = shape.size;
        if (r <= 0) return;
        const auto box = gx_move({-r, -r, r, r}, shape.points[0]);
        return draw_filled(shape, {box.xmin, box.ymin}, {box.xmax, box.ymax});
      }
      case gx_shape_kind::page:
      case gx_shape_kind::loose_pin:
      case gx_shape_kind::selected_vertex:
        return;
    }
  }

  // Ends the path under way: what is written next lies on top of it.
  void flush() {
    if (!path_.empty()) {
      out_.append("<path").append(look_).append(" d=\"").append(path_).append("\"/>\n");
      path_.clear();
    }
  }

  // A text with its baseline at a point; `attributes` follow the tag.
  void add_text(gx_pointreal_t at, std::int32_t height, int rotation, std::string_view attributes,
                std::string_view text) {
    const auto length = static_cast<double>(gx_characters(text).size());
    if (length == 0 || height <= 0) return;
    flush();
    out_.append("<text").append(attributes);
    attribute("x", at.x);
    attribute("y", at.y);
    attribute("font-size", std::llround(height * gx_font_size));
    attribute("textLength", std::llround(length * height * gx_text_advance));
    out_ += " lengthAdjust=\"spacingAndGlyphs\"";
    if (rotation == 1 || rotation == 3) {
      out_.append(" transform=\"rotate(").append(rotation == 1 ? "-90 " : "90 ");
      gx_append_units(out_, at.x);
      out_ += ' ';
      gx_append_units(out_, at.y);
      out_ += ")\"";
    }
    out_.append(">").append(gx_xml(text)).append("</text>\n");
  }

  std::string& out() {
    flush();
    return out_;
  }

 private:
  void attribute(std::string_view name, std::int64_t units) {
    out_.append(" ").append(name).append("=\"");
    gx_append_units(out_, units);
    out_ += '"';
  }

  void use_look(std::string look) {
    if (look == look_) return;
    flush();
    look_ = std::move(look);
  }

  void use_stroke(const gx_shape_t& shape) {
    std::string look = " class=\"c" + std::to_string(sound_color(shape.color));
    if (!gx_dashes(shape.style).empty()) look += " s" + std::to_string(shape.style);
    look += '"';
    if (shape.width > 1) {
      look += " stroke-width=\"";
      gx_append_units(look, std::int64_t{shape.width} * gx_thin_line);
      look += '"';
    }
    use_look(std::move(look));
  }

  void add_point(bool is_next, gx_pointreal_t p) {
    if (is_next && p.y == last_.y) {
      path_ += 'H';
      gx_append_units(path_, p.x);
    } else if (is_next && p.x == last_.x) {
      path_ += 'V';
      gx_append_units(path_, p.y);
    } else {
      path_ += is_next ? 'L' : 'M';
      gx_append_units(path_, p.x);
      path_ += ' ';
      gx_append_units(path_, p.y);
    }
    last_ = p;
  }

  void add_arc_to(gx_pointreal_t p, std::int32_t radius, bool is_large, bool is_clockwise) {
    path_ += 'A';
    gx_append_units(path_, radius);
    path_ += ' ';
    gx_append_units(path_, radius);
    path_.append(is_large ? " 0 1 " : " 0 0 ").append(is_clockwise ? "1 " : "0 ");
    gx_append_units(path_, p.x);
    path_ += ' ';
    gx_append_units(path_, p.y);
    last_ = p;
  }

  void add_box(gx_pointreal_t p, gx_pointreal_t q) {
    add_point(false, p);
    add_point(true, {q.x, p.y});
    add_point(true, q);
    add_point(true, {p.x, q.y});
    path_ += 'Z';
  }

  void add_circle(gx_pointreal_t centre, std::int32_t radius) {
    const gx_pointreal_t left{gx_saturated(std::int64_t{centre.x} - radius), centre.y};
    const gx_pointreal_t right{gx_saturated(std::int64_t{centre.x} + radius), centre.y};
    add_point(false, left);
    add_arc_to(right, radius, true, true);
    add_arc_to(left, radius, true, true);
  }

  void draw_arc(const gx_shape_t& arc) {
    use_stroke(arc);
    if (std::abs(arc.extent) >= gx_full_turn) return add_circle(arc.points[3], arc.size);
    const auto at = [&](std::int32_t angle) -> gx_pointreal_t {
      const double a = angle * std::numbers::pi / (gx_full_turn / 2.0);
      return {gx_saturated(arc.points[3].x + std::llround(arc.size * std::cos(a))),
              gx_saturated(arc.points[3].y - std::llround(arc.size * std::sin(a)))};
    };
    add_point(false, at(arc.start));
    add_arc_to(at(arc.start + arc.extent), arc.size, std::abs(arc.extent) > gx_full_turn / 2,
               arc.extent < 0);
  }

  void draw_filled(const gx_shape_t& shape, gx_pointreal_t p, gx_pointreal_t q) {
    use_look(" class=\"f" + std::to_string(sound_color(shape.color)) + "\"");
    add_box(p, q);
  }

  void draw_text(const gx_shape_t& text) {
    add_text(text.points[0], text.size, text.rotation,
             " class=\"f" + std::to_string(sound_color(text.color)) + "\"", text.text);
  }

  std::string& out_;
  std::string look_, path_;  // of the path under way
  gx_pointreal_t last_;      // its last point
};

std::string hex_of(gx_ink_t color) {
  constexpr char digits[] = "0123456789abcdef";
  std::string hex = "#";
  for (const int part : color) {
    hex += digits[part / 16];
    hex += digits[part % 16];
  }
  return hex;
}

// The classes of strokes, of what is filled, and of dashes.
std::string style_sheet(gx_colours colours) {
  std::string css =
      "path{stroke-linecap:round;stroke-linejoin:round;fill:none}\n"
      "text{font-family:'DejaVu Sans Mono','Liberation Mono','Courier New',monospace;"
      "white-space:pre}\na:hover{opacity:.6}\n";
  for (int color = 0; color < gx_nb_of_inks; ++color) {
    const std::string n = std::to_string(color), hex = hex_of(gx_ink(colours, color));
    css += ".c" + n + "{stroke:" + hex + "}.f" + n + "{fill:" + hex + "}\n";
  }
  for (int style = 1; style <= 4; ++style) {
    css += ".s" + std::to_string(style) + "{stroke-linecap:butt;stroke-dasharray:";
    for (const int dash : gx_dashes(style)) css += std::to_string(dash) + " ";
    css.back() = '}';
    css += '\n';
  }
  return css;
}
}  // namespace

std::string gx_svg_picture(const gx_file_gene_recf_t& file, const gx_svg_page_t& page) {
  const gx_pointreal_t size = gx_inq_page_dim(file);
  std::string out =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<svg xmlns=\"http://www.w3.org/2000/svg\"";
  const std::int64_t height = std::int64_t{size.y} + gx_title_room;
  const auto attribute = [&](std::string_view name, double number, std::string_view unit) {
    out.append(" ").append(name).append("=\"");
    gx_append_number(out, number);
    out.append(unit).append("\"");
  };
  if (page.paper.longer > 0) {
    const bool is_wide = size.x >= height;
    attribute("width", is_wide ? page.paper.longer : page.paper.shorter, "mm");
    attribute("height", is_wide ? page.paper.shorter : page.paper.longer, "mm");
  }
  out += " viewBox=\"0 ";
  gx_append_units(out, -gx_title_room);
  out += ' ';
  gx_append_units(out, size.x);
  out += ' ';
  gx_append_units(out, height);
  out += "\" stroke-width=\"";
  gx_append_units(out, gx_thin_line);
  out += '"';
  const auto& labels = page.labels;
  const auto link = [&](int target) {
    return target >= 0 && target < std::ssize(page.files)
               ? "<a href=\"" + gx_xml(page.files[static_cast<std::size_t>(target)]) + "\">\n"
               : std::string();
  };
  out.append(">\n<title>").append(gx_xml(labels.title)).append("</title>\n<style>\n");
  out.append(style_sheet(page.colours)).append("</style>\n");
  svg_writer writer(out);
  const auto page_box = [&](std::string_view look, std::int32_t top) {
    out.append("<rect x=\"0\" y=\"");
    gx_append_units(out, top);
    out += "\" width=\"";
    gx_append_units(out, size.x);
    out += "\" height=\"";
    gx_append_units(out, std::int64_t{size.y} - top);
    out.append("\" ").append(look).append("/>\n");
  };
  page_box("fill=\"" + hex_of(gx_paper_color(page.colours)) + "\"", -gx_title_room);
  page_box("class=\"c6\" fill=\"none\" stroke-width=\"1\"", 0);
  const std::string up = link(labels.above);
  out += up;
  writer.add_text({0, -(gx_title_room - gx_title_height) / 2}, gx_title_height, 0, " class=\"f7\"",
                  labels.title);
  if (!up.empty()) out += "</a>\n";

  bool is_link = false;
  gx_sink_t sink;
  sink.draw = [&](const gx_shape_t& shape) { writer.draw(shape); };
  sink.opens = [&](int id) {
    auto& text = writer.out();
    const bool is_net = gx_object_id_ptr(file, id).object_type == gx_type::net;
    const std::string leads = !is_net && labels.below ? link(labels.below(id)) : std::string();
    is_link = !leads.empty();
    text += is_link ? leads : "<g>\n";
    std::string title = is_net ? lb_net_name(file, id) : gx_instance_words(file, id);
    if (is_net && labels.net_name && !labels.net_name(id).empty())
      title = labels.net_name(id);
    else if (!labels.title.empty())
      title = labels.title + ": " + title;
    text.append("<title>").append(gx_xml(title)).append("</title>\n");
  };
  sink.closes = [&](int) { writer.out() += is_link ? "</a>\n" : "</g>\n"; };
  lb_frame_shapes(file, sink);
  writer.flush();
  lb_all_instance_shapes(file, sink);
  is_link = false;
  lb_all_net_shapes(file, sink);
  writer.flush();
  if (labels.net_name) {
    for (const auto& [net, point, is_upright] : gx_net_places(file)) {
      const gx_pointreal_t at =
          is_upright
              ? gx_pointreal_t{gx_saturated(std::int64_t{point.x} - gx_flat_name_gap), point.y}
              : gx_pointreal_t{point.x, gx_saturated(std::int64_t{point.y} - gx_flat_name_gap)};
      writer.add_text(at, gx_flat_name_height, is_upright ? 1 : 0, " class=\"f6\"",
                      labels.net_name(net));
    }
  }
  out += "</svg>\n";
  return out;
}
