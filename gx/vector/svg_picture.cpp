// Shapes as elements of SVG, in hundredths of design units; strokes of one look that follow one
// another are one path.
#include "gx/vector/svg_picture.h"

#include <cmath>

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/db/place/page.h"
#include "gx/db/queries.h"
#include "gx/picture/sheet_shapes.h"
#include "gx/text/characters.h"
#include "gx/vector/path_data.h"

namespace {
class svg_writer {
 public:
  // Texts go to `out`, which is not emptied.
  explicit svg_writer(std::string& out) : out_(out) {}

  void draw(const gx_shape_t& shape) {
    if (shape.kind == gx_shape_kind::text) {
      const std::string color = std::to_string(gx_look_of(shape).color);
      add_text(shape.points[0], shape.size, shape.rotation, " class=\"f" + color + "\"",
               shape.text);
    }
    if (!gx_has_path(shape)) return;
    const gx_look_t look = gx_look_of(shape);
    if (look != look_) flush();
    look_ = look;
    path_.add(shape);
  }

  // Ends the path under way: what is written next lies on top of it.
  void flush() {
    if (path_.text().empty()) return;
    out_.append("<path class=\"").append(look_.filled ? "f" : "c");
    out_ += std::to_string(look_.color);
    if (look_.style > 0) out_ += " s" + std::to_string(look_.style);
    out_ += '"';
    if (look_.width > 1) attribute("stroke-width", std::int64_t{look_.width} * gx_thin_line);
    out_.append(" d=\"").append(path_.text()).append("\"/>\n");
    path_.clear();
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

  std::string& out_;
  gx_path_data path_;  // under way
  gx_look_t look_;     // of it
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
