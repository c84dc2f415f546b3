// What a sheet looks like: each shape with its place, look and marks.
#include <algorithm>

#include "gx/db/object_flags.h"
#include "gx/picture/sheet_shapes.h"
#include "tests/support/drawing_board.h"
#include "tests/support/session_case.h"

namespace {

// "kind points cCOLOR sSTYLE wWIDTH size" and marks: * selected, # filled, @ in an instance; texts
// with their rotation.
lines_t shapes(const drawing_board& board) {
  lines_t told;
  const gx_sink_t sink{.draw = [&](const gx_shape_t& shape) {
    constexpr const char* kinds[] = {"line", "polyline", "arc",  "circle",    "box",
                                     "text", "dot",      "page", "loose_pin", "vertex"};
    std::string line = kinds[static_cast<int>(shape.kind)];
    for (const auto& p : shape.points)
      line += ' ' + std::to_string(p.x) + ',' + std::to_string(p.y);
    line += " c" + std::to_string(shape.color) + " s" + std::to_string(shape.style) + " w" +
            std::to_string(shape.width) + ' ' + std::to_string(shape.size);
    if (!shape.text.empty())
      line += ' ' + std::string(shape.text) + ' ' + std::to_string(shape.rotation);
    if (shape.kind == gx_shape_kind::arc)
      line += ' ' + std::to_string(shape.start / 64) + '+' + std::to_string(shape.extent / 64);
    if (shape.selected) line += '*';
    if (shape.filled) line += '#';
    if (shape.inst > 0) line += '@';
    told.push_back(line);
  }};
  lb_frame_shapes(board.file(), sink);
  lb_all_instance_shapes(board.file(), sink);
  lb_all_net_shapes(board.file(), sink);
  return told;
}

// A sheet; "shapes" are all of it, "ACTION TYPE N" what becomes of them with one object so.
class shapes_session {
 public:
  explicit shapes_session(std::string_view design) : board_(design), all_(shapes(board_)) {}
  lines_t answer(const std::string& line) const {
    if (line == "shapes") return all_;
    EXPECT_TRUE(change_object(board_, line));
    const lines_t now = shapes(board_);
    change_object(board_, line, false);
    lines_t lines;
    for (const auto& one : all_)
      if (std::ranges::find(now, one) == now.end()) lines.push_back("-" + one);
    for (const auto& one : now)
      if (std::ranges::find(all_, one) == all_.end()) lines.push_back("+" + one);
    return lines;
  }

 private:
  drawing_board board_;
  lines_t all_;
};

TEST(Shapes, HaveThePlaceAndLookOfTheirObjects) {
  expect_sessions<shapes_session>("picture/shapes.txt");
}

}  // namespace
