// The bracket of create, open and close, and the records and boxes that the constructors make.
#include <algorithm>

#include "gx/db/file/reference_check.h"
#include "gx/db/place/geometry.h"
#include "gx/edit/vertex_lists.h"
#include "gx/vext.h"
#include "tests/support/drawing_board.h"
#include "tests/support/fatal_stop.h"
#include "tests/unit/gx/edit_fixture.h"

namespace {

TEST(Construction, ObjectsKnowTheirPlaceInTheTree) {
  empty_file f;
  const int main = gx_object_create(f.index, gx_type::main, 0, 0);
  const int family = gx_object_create(f.index, gx_type::instance_family, 0, 0);
  const int inst = gx_object_create(f.index, gx_type::instance, 3, 4);
  EXPECT_EQ((std::vector{main, family, inst}), (std::vector{1, 2, 3}));
  const auto& file = f.file();
  EXPECT_EQ(gx_object_id_ptr(file, 1).child1, 2);
  EXPECT_EQ(gx_object_id_ptr(file, 2).child1, 3);
  EXPECT_EQ(gx_object_id_ptr(file, 3).father, 2);
  EXPECT_EQ(gx_object_id_ptr(file, 3).origin, (gx_pointreal_t{3, 4}));
  EXPECT_EQ(gx_object_id_ptr(file, 3).bounds, gx_empty_bounds);
  EXPECT_TRUE(gx_inq_object_create(file, 3));
  EXPECT_EQ(gx_file_inq_primary_object(file), 1);
  for (const int id : {3, 2, 1}) gx_object_close(f.index, id);
  EXPECT_FALSE(gx_inq_object_create(file, 3));
  EXPECT_EQ(gx_vext.cur_obj_level, 0);

  // A child added later follows its siblings; so does one in between two of another father.
  EXPECT_EQ(gx_object_open(f.index, family), gx_type::instance_family);
  const int second = gx_object_create(f.index, gx_type::instance, 0, 0);
  gx_object_close(f.index, second);
  gx_object_close(f.index, family);
  gx_object_open(f.index, main);
  const int nets = f.make(gx_type::net_family);
  gx_object_close(f.index, main);
  gx_object_open(f.index, family);
  const int third = gx_object_create(f.index, gx_type::instance, 0, 0);
  gx_object_close(f.index, third);
  gx_object_close(f.index, family);
  EXPECT_EQ(ids_of(gx_children(file, family)), (std::vector{inst, second, third}));
  EXPECT_EQ(gx_object_id_ptr(file, third).previous, second);
  EXPECT_EQ(ids_of(gx_children(file, main)), (std::vector{family, nets}));
  EXPECT_EQ(gx_reference_fault(file), "");
}

TEST(Construction, PrimitivesStorePointsRelativeToTheFirst) {
  empty_file f;
  const auto box_of = [&](gx_type type, auto constructor) {
    gx_boundsreal_t box;
    const int id = f.make(type, {}, [&] { box = constructor(); });
    const auto& object = gx_object_id_ptr(f.file(), id);
    EXPECT_EQ(gx_move(object.bounds, object.origin), box);
    return box;
  };
  EXPECT_EQ(box_of(gx_type::line_2d,
                   [] {
                     return gx_line_2dreal(1, 2, 3, {10, 20}, {0, 50});
                   }),
            (gx_boundsreal_t{0, 20, 10, 50}));
  const auto& line = gx_line_info_ptr(f.file(), 1);
  EXPECT_EQ(line.gene.origin, (gx_pointreal_t{10, 20}));
  EXPECT_EQ(line.gene.bounds, (gx_boundsreal_t{-10, 0, 0, 30}));
  EXPECT_EQ(line.pt2, (gx_pointreal_t{-10, 30}));
  EXPECT_EQ(line.line_style, 1);
  EXPECT_EQ(line.line_color, 2);
  EXPECT_EQ(line.line_width, 3);
  EXPECT_EQ(box_of(gx_type::circle_2d,
                   [] {
                     return gx_circle_real(0, 1, true, {7, 8}, 5);
                   }),
            (gx_boundsreal_t{2, 3, 12, 13}));
  const gx_pointreal_t points[] = {{5, 5}, {-1, 9}, {8, 2}};
  EXPECT_EQ(box_of(gx_type::polyline_2d, [&] { return gx_polyline_2dreal(0, 1, points); }),
            (gx_boundsreal_t{-1, 2, 8, 9}));
  const auto& polyline = gx_polyline_info_ptr(f.file(), 3);
  EXPECT_EQ(polyline.n_points, 3);
  EXPECT_EQ(polyline.points[2], (gx_pointreal_t{3, -3}));
  EXPECT_EQ(box_of(gx_type::property_2d,
                   [] {
                     return gx_property_2dreal("N", "ab", {100, 0}, {.height = 10, .rotate = 3});
                   }),
            (gx_boundsreal_t{95, 0, 110, 24}));
}

TEST(Construction, ArcsThroughThreePoints) {
  empty_file f;
  struct {
    gx_pointreal_t p1, p2, p3;
    std::int32_t angle1, angle2;
    gx_boundsreal_t box;
  } cases[] = {
      // upper half from the right, and the same from the left
      {{100, 0}, {0, -100}, {-100, 0}, 0, 11520, {-100, -100, 100, 0}},
      {{-100, 0}, {0, -100}, {100, 0}, 0, 11520, {-100, -100, 100, 0}},
      // lower half
      {{-100, 0}, {0, 100}, {100, 0}, 11520, 23040, {-100, 0, 100, 100}},
      // three quarters, over the start of the circle
      {{0, -100}, {-100, 0}, {100, 0}, 5760, 23040, {-100, -100, 100, 100}},
      {{0, 100}, {100, 0}, {-100, 0}, 17280, 34560, {-100, -100, 100, 100}},
  };
  for (const auto& c : cases) {
    gx_boundsreal_t box;
    const int id =
        f.make(gx_type::arc3p_2d, {}, [&] { box = gx_arc3p_2dreal(c.p1, c.p2, c.p3, 0, 1); });
    const auto& arc = gx_arc_info_ptr(f.file(), id);
    EXPECT_EQ(arc.rad, 100);
    EXPECT_EQ(arc.angle1, c.angle1);
    EXPECT_EQ(arc.angle2, c.angle2);
    EXPECT_EQ(arc.gene.origin, c.p1);
    EXPECT_EQ((gx_pointreal_t{c.p1.x + arc.center.x, c.p1.y + arc.center.y}), gx_pointreal_t{});
    EXPECT_EQ(box, c.box);
  }
  const int straight = f.make(gx_type::arc3p_2d, {}, [] {
    gx_arc3p_2dreal({0, 0}, {5, 5}, {10, 10}, 0, 1);
  });
  EXPECT_EQ(gx_arc_info_ptr(f.file(), straight).rad, 0);
}

TEST(Construction, VerticesAndSegmentsAreListedByCellsOfThePage) {
  const drawing_board board("sheet top\n page 16,16\n net A\n  wire 1,1 5,1 5,16 15,16\n");
  gx_put_vertex_list(board.file(), 1);  // nobody asked for the lists
  gx_vext.vertex_list_to_do = true;
  const auto cells = [](const auto& lists) {
    std::string text;
    for (std::size_t x = 0; x < 8; ++x)
      for (std::size_t y = 0; y < 8; ++y)
        for (std::size_t n = lists[x][y].size(); n > 0; --n)
          text += std::to_string(x) + std::to_string(y) + " ";
    return text;
  };
  gx_init_vertex_segment_list(1);
  EXPECT_EQ(cells(gx_vext.vertex_list_ar), "00 20 27 77 ");
  EXPECT_EQ(std::ranges::count(cells(gx_vext.segment_list_ar), ' '), 3);
  const int vertex = board.id(gx_type::vertex_2d), segment = board.id(gx_type::segment);
  gx_put_vertex_list(board.file(), vertex);
  gx_put_segment_list(board.file(), segment);
  EXPECT_EQ(std::ranges::count(cells(gx_vext.vertex_list_ar), ' '), 5);
  EXPECT_EQ(std::ranges::count(cells(gx_vext.segment_list_ar), ' '), 4);
  expect_stop([&] { gx_put_vertex_list(board.file(), segment); }, gx_code::object_type_invalid);
  expect_stop([&] { gx_put_segment_list(board.file(), 0); }, gx_code::file_id_invalid);
  gx_set_object_deleted(board.file(), vertex, true);
  gx_put_vertex_list(board.file(), vertex);
  gx_init_vertex_segment_list(2);  // of file 1 alone
  EXPECT_EQ(std::ranges::count(cells(gx_vext.vertex_list_ar), ' '), 5);
  gx_init_vertex_segment_list(1);
  EXPECT_EQ(std::ranges::count(cells(gx_vext.vertex_list_ar), ' '), 3);
}

}  // namespace
