#include "gx/display/sheet/highlight.h"

#include <algorithm>

#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {
using mark_t = gx_highlight_t;

bool is_before(const mark_t& a, const mark_t& b) {
  return a.file_index != b.file_index ? a.file_index < b.file_index : a.id < b.id;
}

// Where the mark stands, or would stand, in the ordered list.
auto place_of_mark(gx_file_index_t file_index, int id) {
  auto& marks = gx_vext.highlights;
  mark_t wanted;
  wanted.file_index = file_index;
  wanted.id = static_cast<gx_object_id_t>(id);
  return std::lower_bound(marks.begin(), marks.end(), wanted, is_before);
}

void put_mark(gx_file_index_t file_index, int id, int vertex, std::string_view name, int color) {
  const mark_t mark{file_index, static_cast<gx_object_id_t>(id),
                    static_cast<gx_object_id_t>(vertex), gx_string(name),
                    static_cast<std::uint8_t>(std::clamp(color, 1, gx_nb_of_highlights))};
  const auto at = place_of_mark(file_index, id);
  if (at != gx_vext.highlights.end() && !is_before(mark, *at))
    *at = mark;
  else
    gx_vext.highlights.insert(at, mark);
}
}  // namespace

void gx_highlight_net(gx_file_index_t file_index, int net_id, std::string_view name, int vertex,
                      int color) {
  put_mark(file_index, net_id, vertex, name, color);
}

void gx_highlight_segment(gx_file_index_t file_index, int segment_id) {
  put_mark(file_index, segment_id, 0, {}, 1);
}

void gx_highlight_instance(gx_file_index_t file_index, int inst_id, int color) {
  put_mark(file_index, inst_id, 0, {}, color);
}

void gx_highlight_clear(gx_file_index_t file_index) {
  std::erase_if(gx_vext.highlights,
                [&](const mark_t& mark) { return mark.file_index == file_index; });
}

void gx_highlight_clear_all() { gx_vext.highlights.clear(); }

const gx_highlight_t* gx_highlight_of(gx_file_index_t file_index, int id) {
  if (gx_vext.highlights.empty()) return nullptr;
  const auto at = place_of_mark(file_index, id);
  return at != gx_vext.highlights.end() && at->file_index == file_index && at->id == id ? &*at
                                                                                        : nullptr;
}
