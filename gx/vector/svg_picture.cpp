// Shapes as elements of SVG, in hundredths of design units; strokes of one look that follow one
// another are one path.
#include "gx/vector/svg_picture.h"

#include <cmath>
#include <string>
#include <utility>

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
// One picture: its parts are appended in the order of the file.
class svg_picture {
 public:
  svg_picture(const gx_file_gene_recf_t& file, const gx_svg_page_t& page)
      : file_(file), page_(page), size_(gx_inq_page_dim(file)) {}

  std::string make() {
    add_head();
    add_page();
    add_objects();
    if (page_.labels.net_name) add_net_names();
    return std::move(out_) + "</svg>\n";
  }

 private:
  std::int64_t height() const { return std::int64_t{size_.y} + gx_title_room; }

  void add_head() {
    out_ =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<svg xmlns=\"http://www.w3.org/2000/svg\"";
    if (page_.paper.longer > 0) {
      const bool is_wide = size_.x >= height();
      add_length("width", is_wide ? page_.paper.longer : page_.paper.shorter);
      add_length("height", is_wide ? page_.paper.shorter : page_.paper.longer);
    }
    out_ += " viewBox=\"0 ";
    gx_append_units(out_, -gx_title_room);
    out_ += ' ';
    gx_append_units(out_, size_.x);
    out_ += ' ';
    gx_append_units(out_, height());
    out_ += "\" stroke-width=\"";
    gx_append_units(out_, gx_thin_line);
    out_.append("\">\n<title>").append(gx_xml(page_.labels.title)).append("</title>\n<style>\n");
    out_.append(style_sheet(page_.colours)).append("</style>\n");
  }

  void add_length(std::string_view name, double millimetres) {
    out_.append(" ").append(name).append("=\"");
    gx_append_number(out_, millimetres);
    out_ += "mm\"";
  }

  // The paper with the title over it, and the edge of the page.
  void add_page() {
    add_box("fill=\"" + hex_of(gx_paper_color(page_.colours)) + "\"", -gx_title_room);
    add_box("class=\"c6\" fill=\"none\" stroke-width=\"1\"", 0);
    const std::string up = link_to(page_.labels.above);
    out_ += up;
    writer_.add_text({0, -(gx_title_room - gx_title_height) / 2}, gx_title_height, 0,
                     " class=\"f7\"", page_.labels.title);
    if (!up.empty()) out_ += "</a>\n";
  }

  void add_box(std::string_view look, std::int32_t top) {
    out_ += "<rect x=\"0\" y=\"";
    gx_append_units(out_, top);
    out_ += "\" width=\"";
    gx_append_units(out_, size_.x);
    out_ += "\" height=\"";
    gx_append_units(out_, std::int64_t{size_.y} - top);
    out_.append("\" ").append(look).append("/>\n");
  }

  // The begin of a link to one of the files; "" where there is none.
  std::string link_to(int target) const {
    if (target < 0 || target >= std::ssize(page_.files)) return {};
    return "<a href=\"" + gx_xml(page_.files[static_cast<std::size_t>(target)]) + "\">\n";
  }

  // Instances and nets are groups with titles; an instance of a block leads to its sheet.
  void add_objects() {
    bool is_link = false;
    gx_sink_t sink;
    sink.draw = [&](const gx_shape_t& shape) { writer_.draw(shape); };
    sink.opens = [&](int id) {
      const bool is_net = gx_object_id_ptr(file_, id).object_type == gx_type::net;
      const bool may_lead = !is_net && page_.labels.below;
      const std::string link = may_lead ? link_to(page_.labels.below(id)) : std::string();
      is_link = !link.empty();
      auto& out = writer_.out();
      out += is_link ? link : "<g>\n";
      out.append("<title>").append(gx_xml(title_of(id, is_net))).append("</title>\n");
    };
    sink.closes = [&](int) { writer_.out() += is_link ? "</a>\n" : "</g>\n"; };
    lb_frame_shapes(file_, sink);
    writer_.flush();
    lb_all_instance_shapes(file_, sink);
    lb_all_net_shapes(file_, sink);
    writer_.flush();
  }

  std::string title_of(int id, bool is_net) const {
    const auto& labels = page_.labels;
    if (is_net && labels.net_name)
      if (const auto name = labels.net_name(id); !name.empty()) return std::string(name);
    std::string title = is_net ? lb_net_name(file_, id) : gx_instance_words(file_, id);
    return labels.title.empty() ? title : labels.title + ": " + title;
  }

  // The names of the flat nets, each at the longest piece of its net.
  void add_net_names() {
    for (const auto& [net, point, is_upright] : gx_net_places(file_)) {
      gx_pointreal_t at = point;
      auto& side = is_upright ? at.x : at.y;
      side = gx_saturated(std::int64_t{side} - gx_flat_name_gap);
      writer_.add_text(at, gx_flat_name_height, is_upright ? 1 : 0, " class=\"f6\"",
                       page_.labels.net_name(net));
    }
  }

  const gx_file_gene_recf_t& file_;
  const gx_svg_page_t& page_;
  const gx_pointreal_t size_;
  std::string out_;
  svg_writer writer_{out_};
};
}  // namespace

std::string gx_svg_picture(const gx_file_gene_recf_t& file, const gx_svg_page_t& page) {
  return svg_picture(file, page).make();
}
