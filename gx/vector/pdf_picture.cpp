// Shapes as operators of PDF, in hundredths of design units with y downwards: the page's matrix
// turns them over.
#include "gx/vector/pdf_picture.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/db/place/page.h"
#include "gx/picture/sheet_shapes.h"
#include "gx/text/at.h"

namespace {
constexpr double points_per_mm = 72 / 25.4;
constexpr double margin = 18;           // of a page, points
constexpr double fit_scale = 7.2 / 50;  // points in a unit of the file, on paper of any size
constexpr double largest_page = 14400;  // points

void append_numbers(std::string& out, std::initializer_list<double> numbers, std::string_view op) {
  for (const double number : numbers) {
    gx_append_number(out, number);
    out += ' ';
  }
  out += op;
  out += '\n';
}

std::string with_decimals(std::initializer_list<double> numbers) {
  std::string text;
  for (const double number : numbers) {
    char digits[40];
    std::snprintf(digits, sizeof digits, "%.6g ", number);
    text += digits;
  }
  return text;
}

class pdf_writer {
 public:
  pdf_writer(std::string& out, gx_colours colours) : out_(out), colours_(colours) {}

  void draw(const gx_shape_t& shape) {
    switch (shape.kind) {
      case gx_shape_kind::line:
      case gx_shape_kind::polyline:
        if (shape.points.size() < 2) return;
        use_stroke(shape);
        for (std::size_t i = 0; i < shape.points.size(); ++i)
          add_point(shape.points[i], i > 0 ? "l\n" : "m\n");
        is_stroking_ = true;
        return;
      case gx_shape_kind::arc: {
        use_stroke(shape);
        const bool is_full = std::abs(shape.extent) >= gx_full_turn;
        return add_arc(shape.points[3], shape.size, is_full ? 0 : shape.start,
                       is_full ? gx_full_turn : shape.extent);
      }
      case gx_shape_kind::circle:
        use_stroke(shape);
        return add_arc(shape.points[0], shape.size, 0, gx_full_turn);
      case gx_shape_kind::box:
        if (shape.filled) return fill(shape.color, shape.points[0], shape.points[1]);
        use_stroke(shape);
        add_box(shape.points[0], shape.points[1]);
        is_stroking_ = true;
        return;
      case gx_shape_kind::text:
        return add_text(shape.points[0], shape.size, shape.rotation, shape.color, shape.text);
      case gx_shape_kind::dot: {
        const std::int32_t r = shape.size;
        if (r <= 0) return;
        const auto box = gx_move({-r, -r, r, r}, shape.points[0]);
        return fill(shape.color, {box.xmin, box.ymin}, {box.xmax, box.ymax});
      }
      case gx_shape_kind::page:
      case gx_shape_kind::loose_pin:
      case gx_shape_kind::selected_vertex:
        return;
    }
  }

  void flush() {
    if (is_stroking_) out_ += "S\n";
    is_stroking_ = false;
  }

  // Until end_place, places are written from this one on: what looks the same there is written in
  // the same bytes wherever it stands, and packs well.
  void begin_place(gx_pointreal_t origin) {
    flush();
    out_ += "q 1 0 0 1 ";
    add_point(origin, "cm\n");
    around_ = state_;
    state_ = {};
    origin_ = origin;
  }
  void end_place() {
    flush();
    out_ += "Q\n";
    state_ = around_;
    origin_ = {};
  }

  void fill(int color, gx_pointreal_t p, gx_pointreal_t q) { fill(gx_ink(colours_, color), p, q); }
  void fill(gx_ink_t color, gx_pointreal_t p, gx_pointreal_t q) {
    flush();
    use_fill(color);
    add_box(p, q);
    out_ += "f\n";
  }

  void add_text(gx_pointreal_t at, std::int32_t height, int rotation, int color,
                std::string_view text) {
    if (text.empty() || height <= 0) return;
    flush();
    use_fill(gx_ink(colours_, color));
    out_ += "BT\n";
    if (height != state_.text_height) {
      out_ += "/F ";
      gx_append_units(out_, std::llround(height * gx_font_size));
      out_ += " Tf\n";
      if (state_.text_height == 0) append_numbers(out_, {gx_text_stretch * 100}, "Tz");
      state_.text_height = height;
    }
    out_ += rotation == 1 ? "0 -1 -1 0 " : rotation == 3 ? "0 1 1 0 " : "1 0 0 -1 ";
    add_point(at, "Tm\n");
    out_.append(gx_pdf_shown(text)).append("Tj ET\n");
  }

 private:
  void add_point(gx_pointreal_t p, std::string_view op) {
    gx_append_units(out_, std::int64_t{p.x} - origin_.x);
    out_ += ' ';
    gx_append_units(out_, std::int64_t{p.y} - origin_.y);
    out_ += ' ';
    out_ += op;
  }

  void add_box(gx_pointreal_t p, gx_pointreal_t q) {
    add_point(p, "");
    gx_append_units(out_, std::int64_t{q.x} - p.x);
    out_ += ' ';
    gx_append_units(out_, std::int64_t{q.y} - p.y);
    out_ += " re\n";
  }

  // Quarters of a turn and what is left, each a curve.
  void add_arc(gx_pointreal_t centre, std::int32_t radius, std::int32_t start,
               std::int32_t extent) {
    const int pieces = std::max(1, (std::abs(extent) + gx_full_turn / 4 - 1) / (gx_full_turn / 4));
    const double turn = std::numbers::pi / (gx_full_turn / 2.0);
    const double step = extent * turn / pieces;
    const double reach = 4.0 / 3 * std::tan(step / 4);
    const double x = (double{1} * centre.x - origin_.x) / gx_vector_scale;
    const double y = (double{1} * centre.y - origin_.y) / gx_vector_scale;
    const double r = 1.0 * radius / gx_vector_scale;
    double a = start * turn;
    append_numbers(out_, {x + r * std::cos(a), y - r * std::sin(a)}, "m");
    for (int i = 0; i < pieces; ++i, a += step) {
      const double b = a + step;
      append_numbers(
          out_,
          {x + r * (std::cos(a) - reach * std::sin(a)), y - r * (std::sin(a) + reach * std::cos(a)),
           x + r * (std::cos(b) + reach * std::sin(b)), y - r * (std::sin(b) - reach * std::cos(b)),
           x + r * std::cos(b), y - r * std::sin(b)},
          "c");
    }
    is_stroking_ = true;
  }

  void use_color(gx_ink_t color, gx_ink_t& used, std::string_view op) {
    if (color == used) return;
    used = color;
    append_numbers(out_, {color[0] / 255.0, color[1] / 255.0, color[2] / 255.0}, op);
  }
  void use_fill(gx_ink_t color) { use_color(color, state_.fill, "rg"); }

  void use_stroke(const gx_shape_t& shape) {
    const gx_ink_t color = gx_ink(colours_, shape.color);
    const int style = gx_dashes(shape.style).empty() ? 0 : shape.style;
    if (color == state_.stroke && style == state_.style && shape.width == state_.width) return;
    flush();
    use_color(color, state_.stroke, "RG");
    if (shape.width != state_.width) {
      gx_append_units(out_, std::int64_t{shape.width} * gx_thin_line);
      out_ += " w\n";
      state_.width = shape.width;
    }
    if (style == state_.style) return;
    out_ += style == 0 ? "1 J [" : "0 J [";
    for (const int dash : gx_dashes(style)) out_ += std::to_string(dash) + " ";
    out_ += "] 0 d\n";
    state_.style = style;
  }

  // What the operators before have set; -1 and 0 for what is not known.
  struct state_t {
    gx_ink_t stroke{-1, -1, -1}, fill{-1, -1, -1};
    int style = -1, width = -1;
    std::int32_t text_height = 0;
  };

  std::string& out_;
  gx_colours colours_;
  bool is_stroking_ = false;  // a path is under way
  state_t state_, around_;
  gx_pointreal_t origin_;
};
}  // namespace

gx_pdf_document::gx_pdf_document(int pages, gx_colours colours, const gx_paper_t& paper,
                                 gx_deflate_t deflate)
    : colours_(colours),
      paper_(paper),
      out_(std::move(deflate)),
      font_(out_.reserve()),
      tree_(out_.reserve()) {
  out_.write(font_, "<</Type/Font/Subtype/Type1/BaseFont/Courier/Encoding/WinAnsiEncoding>>");
  for (int i = 0; i < pages; ++i) pages_.push_back(out_.reserve());
}

const gx_pdf_document::sheet_t& gx_pdf_document::sheet_of(const gx_file_gene_recf_t& file) {
  const auto [at, is_new] = sheets_.try_emplace(&file);
  sheet_t& sheet = at->second;
  if (!is_new) return sheet;
  sheet.size = gx_inq_page_dim(file);
  sheet.instances = gx_placed_instances(file);
  sheet.nets = gx_net_places(file);
  std::string content = "1 j\n";
  pdf_writer writer(content, colours_);
  gx_sink_t sink;
  sink.draw = [&](const gx_shape_t& shape) { writer.draw(shape); };
  sink.opens = [&](int id) {
    const auto& object = gx_object_id_ptr(file, id);
    if (object.object_type == gx_type::instance) writer.begin_place(object.origin);
  };
  sink.closes = [&](int id) {
    if (gx_object_id_ptr(file, id).object_type == gx_type::instance) writer.end_place();
  };
  const std::array<gx_pointreal_t, 2> corners{gx_pointreal_t{}, sheet.size};
  gx_shape_t frame;
  frame.kind = gx_shape_kind::box;
  frame.color = 6;
  frame.points = corners;
  writer.draw(frame);
  lb_frame_shapes(file, sink);
  lb_all_instance_shapes(file, sink);
  lb_all_net_shapes(file, sink);
  writer.flush();
  sheet.form = out_.reserve();
  std::string entries = "/Type/XObject/Subtype/Form/BBox[-1 -1 ";
  gx_append_units(entries, std::int64_t{sheet.size.x} + 100);
  entries += ' ';
  gx_append_units(entries, std::int64_t{sheet.size.y} + 100);
  entries += "]/Resources<</Font<</F " + gx_pdf_reference(font_) + ">>>>";
  out_.write_stream(sheet.form, entries, content);
  return sheet;
}

void gx_pdf_document::add_page(const gx_file_gene_recf_t& file, const gx_sheet_labels_t& labels) {
  const sheet_t& sheet = sheet_of(file);
  const double wide = std::max(sheet.size.x, 1) / 100.0;
  const double high = (std::max(sheet.size.y, 1) + gx_title_room) / 100.0;
  double scale = fit_scale, width = 0, height = 0;
  if (paper_.longer > 0) {
    width = (wide >= high ? paper_.longer : paper_.shorter) * points_per_mm;
    height = (wide >= high ? paper_.shorter : paper_.longer) * points_per_mm;
    scale = std::min((width - 2 * margin) / wide, (height - 2 * margin) / high);
  } else {
    scale = std::min(scale, (largest_page - 2 * margin) / std::max(wide, high));
    width = wide * scale + 2 * margin;
    height = high * scale + 2 * margin;
  }
  // From the sheet's left upper corner to points: x, and y downwards from the page's upper edge.
  const double left = (width - wide * scale) / 2;
  const double top = height - (height - high * scale) / 2 - gx_title_room / 100.0 * scale;

  std::string content = "q\n" + with_decimals({scale, 0, 0, -scale, left, top}) + "cm\n";
  pdf_writer writer(content, colours_);
  if (colours_ == gx_colours::screen) {
    const auto units = [&](double points) {
      return static_cast<std::int32_t>(std::clamp(points / scale * 100, -2e9, 2e9));
    };
    writer.fill(gx_paper_color(colours_), {-units(left) - 1, -units(height - top) - 1},
                {units(width - left) + 1, units(top) + 1});
  }
  content += "/S Do\n";
  constexpr std::int32_t title_base = -(gx_title_room - gx_title_height) / 2;
  writer.add_text({0, title_base}, gx_title_height, 0, 7, labels.title);
  if (labels.net_name) {
    for (const auto& [net, point, is_upright] : sheet.nets) {
      gx_pointreal_t at = point;
      (is_upright ? at.x : at.y) -= gx_flat_name_gap;
      writer.add_text(at, gx_flat_name_height, is_upright ? 1 : 0, 6, labels.net_name(net));
    }
  }
  content += "Q\n";

  std::string links;
  const auto add_link = [&](const gx_boundsreal_t& box, int target) {
    if (target < 0 || target >= std::ssize(pages_)) return;
    const auto x = [&](double units) { return left + units / 100 * scale; };
    const auto y = [&](double units) { return top - units / 100 * scale; };
    links += "<</Type/Annot/Subtype/Link/Border[0 0 0]/Rect[" +
             with_decimals({x(box.xmin), y(box.ymax), x(box.xmax), y(box.ymin)}) + "]/Dest[" +
             gx_pdf_reference(gx_at(pages_, target)) + "/Fit]>>\n";
  };
  const auto title_length = static_cast<double>(labels.title.size());
  add_link({0, -gx_title_room,
            gx_saturated(std::llround(title_length * gx_title_height * gx_text_advance)), 0},
           labels.above);
  if (labels.below)
    for (const auto& [inst, box] : sheet.instances) add_link(box, labels.below(inst));

  const int stream = out_.reserve();
  out_.write_stream(stream, "", content);
  std::string page = "<</Type/Page/Parent " + gx_pdf_reference(tree_) + "/MediaBox[0 0 " +
                     with_decimals({width, height}) + "]/Contents " + gx_pdf_reference(stream) +
                     "/Resources<</Font<</F " + gx_pdf_reference(font_) + ">>/XObject<</S " +
                     gx_pdf_reference(sheet.form) + ">>>>";
  if (!links.empty()) page += "/Annots[" + links + "]";
  out_.write(gx_at(pages_, added_), page + ">>");
  add_outline(labels.path);
  ++added_;
}

// The pages come as a walk down meets them: what a path is below was added before it.
void gx_pdf_document::add_outline(const std::string& path) {
  outline_t item{.object = out_.reserve(), .title = path, .page = added_};
  const int number = static_cast<int>(outline_.size());
  for (auto end = path.rfind('/'); end != path.npos && end > 0; end = path.rfind('/', end - 1)) {
    const auto found = outline_of_.find(std::string_view(path).substr(0, end));
    if (found == outline_of_.end()) continue;
    item.above = found->second;
    item.title = path.substr(end + 1);
    break;
  }
  if (item.above < 0 && number > 0) {
    item.above = 0;
    if (path.starts_with('/')) item.title = path.substr(1);
  }
  if (item.above >= 0) {
    outline_t& above = gx_at(outline_, item.above);
    item.before = above.last;
    if (above.last >= 0)
      gx_at(outline_, above.last).next = number;
    else
      above.first = number;
    above.last = number;
    ++above.count;
  }
  outline_of_.try_emplace(path, number);
  outline_.push_back(std::move(item));
}

void gx_pdf_document::write_outline(int root) {
  const auto object = [&](int item) { return gx_pdf_reference(gx_at(outline_, item).object); };
  for (const outline_t& item : outline_) {
    std::string text = "<</Title " + gx_pdf_text(item.title) + "/Parent " +
                       (item.above < 0 ? gx_pdf_reference(root) : object(item.above)) + "/Dest[" +
                       gx_pdf_reference(gx_at(pages_, item.page)) + "/Fit]";
    if (item.before >= 0) text += "/Prev " + object(item.before);
    if (item.next >= 0) text += "/Next " + object(item.next);
    if (item.first >= 0)
      text += "/First " + object(item.first) + "/Last " + object(item.last) + "/Count " +
              std::to_string(item.above < 0 ? item.count : -item.count);
    out_.write(item.object, text + ">>");
  }
}

std::string gx_pdf_document::finish(std::string_view title) {
  std::string kids;
  for (int i = 0; i < added_; ++i) kids += gx_pdf_reference(gx_at(pages_, i)) + "\n";
  out_.write(tree_, "<</Type/Pages/Count " + std::to_string(added_) + "/Kids[" + kids + "]>>");
  const int catalog = out_.reserve(), info = out_.reserve();
  std::string entries = "<</Type/Catalog/Pages " + gx_pdf_reference(tree_);
  if (!outline_.empty()) {
    const int root = out_.reserve();
    const auto& top = outline_.front();
    out_.write(root, "<</Type/Outlines/First " + gx_pdf_reference(top.object) + "/Last " +
                         gx_pdf_reference(top.object) + "/Count " + std::to_string(1 + top.count) +
                         ">>");
    write_outline(root);
    entries += "/Outlines " + gx_pdf_reference(root) + "/PageMode/UseOutlines";
  }
  out_.write(catalog, entries + ">>");
  out_.write(info, "<</Title " + gx_pdf_text(title) + "/Producer(KIVO)>>");
  return out_.finish(catalog, info);
}
