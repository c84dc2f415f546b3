// The bracket of create, open and close, and the records and boxes that the constructors make.
#include "gx/db/geometry.h"
#include "tests/unit/db_fixture.h"
#include "tests/unit/fatal_stop.h"

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

TEST(Construction, RefusesWhatDoesNotFit) {
  empty_file f;
  const int main = f.make(gx_type::main);
  expect_stop([&] { gx_object_close(f.index, main); }, gx_code::object_close_invalid);
  expect_stop([&] { gx_object_create(f.index, gx_type{33}, 0, 0); }, gx_code::object_type_invalid);
  expect_stop(
      [&] {
        gx_object_open(f.index, main);
        gx_object_open(f.index, main);
      },
      gx_code::object_already_open);
  expect_stop(
      [&] {
        gx_set_object_deleted(f.file(), main, true);
        gx_object_open(f.index, main);
      },
      gx_code::object_open_invalid, "object deleted : 1");
  expect_stop(
      [&] {
        gx_object_create(f.index, gx_type::net, 0, 0);
        gx_plain(gx_type::frame);
      },
      gx_code::object_create_invalid, " gx_frame : object_create_invalid ");
  const auto fill = [&](gx_type type, auto constructor) {
    gx_object_create(f.index, type, 0, 0);
    constructor();
  };
  const gx_pointreal_t points[17] = {};
  expect_stop([&] { fill(gx_type::tag, [] { gx_line_2dreal(0, 1, 1, {}, {}); }); },
              gx_code::invalid_line_2d);
  expect_stop(
      [&] {
        fill(gx_type::polyline5_2d, [&] { gx_polyline5_2dreal(0, 1, std::span(points, 6)); });
      },
      gx_code::invalid_polyline5_2d);
  expect_stop([&] { fill(gx_type::polyline_2d, [&] { gx_polyline_2dreal(0, 1, points); }); },
              gx_code::invalid_polyline_2d);
  expect_stop([&] { fill(gx_type::segment, [] { gx_segment(0, 1, 1, 1, 99); }); },
              gx_code::file_data_invalid);
  expect_stop([&] { fill(gx_type::instance, [] { gx_instance(77, 0, false); }); },
              gx_code::object_id_invalid, "symbol_id_invalid");
  expect_stop(
      [&] {
        const int symbol = f.make(gx_type::symbol, {}, [] { gx_symbol("lib/symbol"); });
        fill(gx_type::instance, [&] { gx_instance(symbol, 0, false); });
      },
      gx_code::object_id_invalid, "symbol n0 version invalid");
  // 33 levels
  expect_stop(
      [&] {
        for (int level = 0; level < 33; ++level) gx_object_create(f.index, gx_type::frame, 0, 0);
      },
      gx_code::invalid_level);
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

TEST(Construction, InstancesOfASymbolFormAChain) {
  empty_file f;
  const int a = f.symbol({1, 1}, {}), b = f.symbol({1, 1}, {});
  const int i1 = f.instance(a, {}, 0, false, {}), i2 = f.instance(a, {}, 0, false, {});
  const int i3 = f.instance(a, {}, 0, false, {});
  const auto chain = [&](int symbol) {
    std::vector<int> ids;
    for (int i = lb_inq_first_inst_ofsymb_id(f.file(), symbol); i != 0;
         i = lb_inq_next_inst_ofsymb_id(f.file(), symbol, i)) {
      ids.push_back(i);
    }
    return ids;
  };
  EXPECT_EQ(chain(a), (std::vector{i3, i2, i1}));
  EXPECT_EQ(gx_instance_info_ptr(f.file(), i1).n0_version, 3);
  // Filled once more with another symbol, the middle one changes chains.
  gx_object_open(f.index, i2);
  gx_instance(b, 1, true);
  gx_object_close(f.index, i2);
  EXPECT_EQ(chain(a), (std::vector{i3, i1}));
  EXPECT_EQ(chain(b), (std::vector{i2}));
  EXPECT_EQ(gx_reference_fault(f.file()), "");
  expect_stop([&] { lb_inq_next_inst_ofsymb_id(f.file(), a, i2); }, gx_code::object_id_invalid,
              "instance dont belong at this symbol");
}

TEST(Construction, VertexAndSegmentListsByCellsOfThePage) {
  empty_file f;
  f.make(gx_type::grid_2d, {}, [] { gx_grid_real({0, 0}, {8000, 800}, 5000, 5000, true, true); });
  gx_vext.vertex_list_to_do = true;
  const auto vertex = [&](std::int32_t x, std::int32_t y) {
    return f.make(gx_type::vertex_2d, {}, [=] { gx_vertex_2dreal(x, y); });
  };
  const int inside = vertex(1999, 200), outside = vertex(-50, 900);
  const int segment = f.make(gx_type::segment, {}, [&] { gx_segment(0, 1, 1, inside, outside); });
  const auto check = [&] {
    EXPECT_EQ(gx_vext.vertex_list_ar[1][2], (std::vector<gx_object_id_t>{gx_object_id_t(inside)}));
    EXPECT_EQ(gx_vext.vertex_list_ar[0][7], (std::vector<gx_object_id_t>{gx_object_id_t(outside)}));
    EXPECT_EQ(gx_vext.segment_list_ar[1][2].size(), 1U);
  };
  check();
  EXPECT_EQ(gx_object_id_ptr(f.file(), segment).bounds, (gx_boundsreal_t{-2049, 0, 0, 700}));
  gx_init_vertex_segment_list(f.index);  // rebuilt: the same
  check();
}

// Children are appended without a walk over those before them.
TEST(Construction, ThirtyThousandObjectsAndNoMore) {
  empty_file f;
  f.make_with(gx_type::main, [&] {
    f.make_with(gx_type::net_family, [&] {
      while (f.file().object_id_max < gx_max_object_id) f.make(gx_type::net);
    });
  });
  EXPECT_EQ(lb_inq_first_net_id(f.file()).member, 3);
  EXPECT_EQ(ids_of(lb_nets(f.file())).size(), 29998U);
  expect_stop([&] { gx_object_create(f.index, gx_type::net, 0, 0); }, gx_code::too_many_objects);
}

}  // namespace
