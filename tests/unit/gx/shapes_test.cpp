// What a sheet looks like: each shape with its place, look and marks.
#include <algorithm>

#include "gx/db/object_flags.h"
#include "gx/picture/sheet_shapes.h"
#include "tests/support/drawing_board.h"

namespace {

constexpr const char* sheet_of_all = R"(
symbol part
  line 0,0 1,0 color red width 2 style 3
  show VAL 0,4
  text FIX at 0,5 height 2 vertical
  pin A 0,2 IN
sheet top
  page 40,40
  rect 1,1 2,3 filled color green style 1
  rect 1,1 2,3
  circle 5,5 2 color red style 2
  arc 8,0 10,2 8,4 color red
  polyline 1,9 2,9 2,8 style 4 color red
  part X part 20,20 rotate 1 VAL=mine
  part Y part 35,3
  net N
    wire X.A 30,20 width 3 style 1 color red
    wire 30,20 30,30
    wire 30,20 30,10
  net
    wire Y.A 36,5
)";

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

TEST(Shapes, HaveThePlaceAndLookOfTheirObjects) {
  const drawing_board board(sheet_of_all);
  const lines_t all = shapes(board);
  EXPECT_EQ(all, (lines_t{
                     "box 5000,5000 10000,15000 c2 s1 w1 0#",
                     "box 5000,5000 10000,15000 c3 s0 w1 0",
                     "circle 25000,25000 c1 s2 w1 10000",
                     "arc 40000,0 50000,10000 40000,20000 40000,10000 c1 s0 w1 10000 270+180",
                     "polyline 5000,45000 10000,45000 10000,40000 c1 s4 w1 0",
                     "line 100000,100000 100000,95000 c1 s3 w2 0@",
                     "text 89000,105000 c7 s0 w1 10000 FIX 2@",
                     "polyline 110000,101000 111000,100000 110000,99000 109000,100000 "
                     "110000,101000 c1 s0 w1 0@",
                     "text 100000,120000 c7 s0 w1 2500 mine 0@",
                     "line 175000,15000 180000,15000 c1 s3 w2 0@",
                     "text 175000,40000 c7 s0 w1 10000 FIX 1@",
                     "polyline 174000,25000 175000,26000 176000,25000 175000,24000 "
                     "174000,25000 c1 s0 w1 0@",
                     "dot 150000,100000 c1 s1 w3 1000",
                     "line 110000,100000 150000,100000 c1 s1 w3 0",
                     "dot 150000,100000 c4 s0 w1 1000",
                     "line 150000,100000 150000,150000 c4 s0 w1 0",
                     "dot 150000,100000 c4 s0 w1 1000",
                     "line 150000,100000 150000,50000 c4 s0 w1 0",
                     "loose_pin 175000,25000 c4 s0 w1 1000",
                     "line 175000,25000 180000,25000 c4 s0 w1 0",
                 }));
  // What is selected, hidden or deleted, with what belongs to it.
  const auto& file = board.file();
  const auto changes = [&](auto change, gx_type type, int n) {
    const int id = board.id(type, n);
    change(file, id, true);
    const lines_t now = shapes(board);
    lines_t lines;
    for (const auto& line : all)
      if (std::ranges::find(now, line) == now.end()) lines.push_back("-" + line);
    for (const auto& line : now)
      if (std::ranges::find(all, line) == all.end()) lines.push_back(line);
    change(file, id, false);
    return lines;
  };
  const auto select = gx_set_object_selected, hide = gx_set_object_unvisible,
             remove = gx_set_object_deleted;
  EXPECT_EQ(
      changes(select, gx_type::segment, 1),
      (lines_t{"-dot 150000,100000 c1 s1 w3 1000", "-line 110000,100000 150000,100000 c1 s1 w3 0",
               "dot 150000,100000 c1 s1 w3 1000*",
               "line 110000,100000 150000,100000 c1 s1 w3 0*"}));
  EXPECT_EQ(changes(select, gx_type::vertex_2d, 1),
            (lines_t{"-dot 150000,100000 c1 s1 w3 1000", "-dot 150000,100000 c4 s0 w1 1000",
                     "-dot 150000,100000 c4 s0 w1 1000", "vertex 150000,100000 c1 s1 w3 1000*",
                     "dot 150000,100000 c1 s1 w3 1000*", "vertex 150000,100000 c4 s0 w1 1000*",
                     "dot 150000,100000 c4 s0 w1 1000*", "vertex 150000,100000 c4 s0 w1 1000*",
                     "dot 150000,100000 c4 s0 w1 1000*"}));
  EXPECT_EQ(changes(select, gx_type::instance, 1),
            (lines_t{"-line 100000,100000 100000,95000 c1 s3 w2 0@",
                     "-text 89000,105000 c7 s0 w1 10000 FIX 2@",
                     "line 100000,100000 100000,95000 c1 s3 w2 0*@",
                     "text 89000,105000 c7 s0 w1 10000 FIX 2*@"}));
  EXPECT_EQ(changes(select, gx_type::circle_2d, 1),
            (lines_t{"-circle 25000,25000 c1 s2 w1 10000", "circle 25000,25000 c1 s2 w1 10000*"}));
  EXPECT_EQ(changes(remove, gx_type::segment, 2),
            (lines_t{"-line 150000,100000 150000,150000 c4 s0 w1 0"}));
  EXPECT_EQ(changes(hide, gx_type::net, 2),
            (lines_t{"-loose_pin 175000,25000 c4 s0 w1 1000",
                     "-line 175000,25000 180000,25000 c4 s0 w1 0"}));
  EXPECT_EQ(changes(remove, gx_type::net, 1).size(), 6U);
  EXPECT_EQ(changes(remove, gx_type::instance, 1).size(), 4U);
  EXPECT_EQ(changes(hide, gx_type::pin, 1).size(), 2U);  // of the symbol: of both parts
}

}  // namespace
