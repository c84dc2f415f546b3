// Placement through instances, boxes, picking, the snap grid and the page.
#include <climits>
#include <utility>

#include "gx/db/place/geometry.h"
#include "gx/db/queries.h"
#include "gx/display/window.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "tests/support/fatal_stop.h"
#include "tests/support/make_design.h"
#include "tests/support/objects.h"

namespace {

TEST(Geometry, EightPlacements) {
  struct {
    int rotate;
    bool fliph;
    gx_pointreal_t point;
    gx_boundsreal_t box;
  } cases[] = {
      {0, false, {10, 3}, {-1, -2, 7, 4}},   {0, true, {10, -3}, {-1, -4, 7, 2}},
      {1, false, {3, -10}, {-2, -7, 4, 1}},  {1, true, {3, 10}, {-2, -1, 4, 7}},
      {2, false, {-10, -3}, {-7, -4, 1, 2}}, {2, true, {-10, 3}, {-7, -2, 1, 4}},
      {3, false, {-3, 10}, {-4, -1, 2, 7}},  {3, true, {-3, -10}, {-4, -7, 2, 1}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(gx_turn(gx_pointreal_t{10, 3}, c.rotate, c.fliph), c.point) << c.rotate << c.fliph;
    EXPECT_EQ(gx_turn(gx_boundsreal_t{-1, -2, 7, 4}, c.rotate, c.fliph), c.box) << c.rotate;
  }
  EXPECT_EQ(gx_turn(gx_empty_bounds, 2, true), gx_empty_bounds);
  EXPECT_EQ(gx_turn(gx_pointreal_t{INT_MIN, 1}, 2, false), (gx_pointreal_t{INT_MAX, -1}));
  expect_stop([] { gx_turn(gx_pointreal_t{}, 4, false); }, gx_code::coordonate_conversion_overflow);
}

// A symbol of a rectangle of 20 by 10 units and a pin at (20, 4), placed at (1000, 2000).
struct placed_t {
  placed_t(int rotate, bool mirror)
      : files(build_design("symbol s\n rect 0,0 0.004,0.002\n pin 1 0.004,0.0008\n"
                           "symbol other\n pin 1 0,0\n"
                           "sheet top\n part U1 s 0.2,0.4 rotate " +
                           std::to_string(rotate) + (mirror ? " mirror" : "") +
                           "\n part V other 0,0\n")) {}
  int id(gx_type type) const { return nth_object(file, type); }

  std::vector<gxm_file_t> files;
  gx_file_gene_recf_t& file = *files.back().file;
  int inst = id(gx_type::instance), other = nth_object(file, gx_type::instance, 2);
};

TEST(Geometry, ArcAnglesThroughInstances) {
  const std::int32_t turned[4][2] = {{0, 0}, {5760, -5760}, {11520, -11520}, {-5760, 5760}};
  for (int rotate = 0; rotate < 4; ++rotate) {
    for (const bool fliph : {false, true}) {
      const placed_t p(rotate, fliph);
      std::int32_t angle1 = 100, angle2 = 5760;
      gx_arc_abs_difang(p.file, p.inst, angle1, angle2);
      const int sign = fliph ? -1 : 1;
      EXPECT_EQ(angle1, turned[rotate][fliph] + sign * 100);
      EXPECT_EQ(angle2, turned[rotate][fliph] + sign * 5760);
    }
  }
  const placed_t p(1, true);
  std::int32_t angle1 = 7, angle2 = 8;
  gx_arc_abs_difang(p.file, p.id(gx_type::symbol), angle1, angle2);  // no instance: unchanged
  EXPECT_EQ(angle1, 7);
  EXPECT_EQ(angle2, 8);
}

TEST(Geometry, PlacesSymbolContentsPinsAndOwnPropertiesThroughTheInstance) {
  const placed_t p(1, true);  // (x, y) -> (y, x)
  const auto& file = p.file;
  const int rectangle = p.id(gx_type::rectangle_2d);
  const auto placed = gx_object_abs_origin_bounds(file, rectangle, p.inst);
  EXPECT_EQ(placed.origin, (gx_pointreal_t{1000, 2000}));
  EXPECT_EQ(placed.bounds, (gx_boundsreal_t{1000, 2000, 1010, 2020}));
  const auto pins = lb_inq_inst_first_pin_id(file, p.inst);
  EXPECT_EQ(gx_object_abs_origin(file, pins.pin, p.inst), (gx_pointreal_t{1004, 2020}));
  EXPECT_EQ(gx_pin_abs_origin(file, pins.pinpropfam), (gx_pointreal_t{1004, 2020}));
  EXPECT_EQ(gx_object_abs_origin(file, p.inst, 0), (gx_pointreal_t{1000, 2000}));
  // Of another instance's symbol, and an instance through an instance.
  expect_stop([&] { gx_object_abs_origin(file, rectangle, p.other); }, gx_code::object_id_invalid,
              "symbol<>father");
  expect_stop([&] { gx_object_abs_origin(file, p.inst, p.other); }, gx_code::object_id_invalid);
  expect_stop([&] { gx_pin_abs_origin(file, pins.pin); }, gx_code::object_type_invalid);
}

TEST(Geometry, TextsOfTurnedInstancesStayReadable) {
  // The property lies at (0, 200) in the symbol; its box there is (0, -2500, 6000, 1250).
  struct {
    int rotate;
    bool fliph;
    gx_pointreal_t anchor;
  } cases[] = {
      {0, false, {1000, 2200}},   // as it stands
      {1, false, {1200, 2000}},   // t = 1: at the turned origin
      {2, false, {-5000, 3050}},  // t = 2: to the other corner of the box
      {0, true, {1000, 3050}},    // mirrored: flipped up and down
      {2, true, {-5000, 2200}},  {3, true, {2050, 2000}},
  };
  for (const auto& c : cases) {
    const placed_t p(c.rotate, c.fliph);
    const int name = lb_inst_properties(p.file, p.inst).first();
    gx_object_id_ptr(p.file, name).origin = {0, 200};
    EXPECT_EQ(gx_object_abs_origin(p.file, name, p.inst), c.anchor) << c.rotate << c.fliph;
  }
}

TEST(Geometry, TextBoxes) {
  gx_object_property_rec_t property;
  property.gene.object_type = gx_type::property_2d;
  property.nvalue = gx_value("abcde");
  property.height = 1001;
  const gx_boundsreal_t boxes[] = {
      {0, -1001, 6006, 500}, {-1001, -6006, 500, 0}, {0, -1001, 6006, 500}, {-500, 0, 1001, 6006}};
  for (std::uint8_t rotate = 0; rotate < 4; ++rotate) {
    property.rotate = rotate;
    EXPECT_EQ(gx_property_compute_newbounds(property), boxes[rotate]);
  }
  property.height = INT_MAX;  // held at the ends
  EXPECT_EQ(gx_property_compute_newbounds(property).ymax, INT_MAX);
}

TEST(Geometry, PickApertureMeetsPrimitivesExactlyAndOthersOnTheSnapGrid) {
  const auto files = build_design("sheet top\n rect 0,0 2,2\n");
  const auto& file = *files.back().file;
  const int rectangle = nth_object(file, gx_type::rectangle_2d);
  const int frame = nth_object(file, gx_type::frame);
  const int empty = nth_object(file, gx_type::net_family);
  gx_reset_state();
  gx_init_nograph();
  gx_pick_set_size(100, 100);
  gx_pick_set_center(11000, 5000);
  EXPECT_FALSE(gx_obj_intersect_pick_aperture(file, rectangle, 0));
  EXPECT_TRUE(gx_obj_intersect_pick_aperture(file, frame, 0));  // 10900..11100 snaps to 10000
  EXPECT_FALSE(gx_obj_intersect_pick_aperture(file, empty, 0));
  gx_pick_set_center(10100, 5000);
  EXPECT_TRUE(gx_obj_intersect_pick_aperture(file, rectangle, 0));
  EXPECT_EQ(gx_vext.pick_ap_bounds, (gx_boundsreal_t{10000, 4900, 10200, 5100}));
  expect_stop([] { gx_pick_set_size(-1, 5); }, gx_code::pick_aperture_size_invalid);

  const placed_t p(2, false);
  const int pin = lb_inq_inst_first_pin_id(p.file, p.inst).pinpropfam;
  gx_object_id_ptr(p.file, pin).bounds = {-1, -1, 1, 1};
  gx_pick_set_size(1, 1);
  gx_pick_set_center(980, 1996);
  EXPECT_TRUE(gx_pin_intersect_pick_aperture(p.file, pin));
  gx_pick_set_center(1020, 2004);
  EXPECT_FALSE(gx_pin_intersect_pick_aperture(p.file, pin));
}

TEST(Geometry, SnapGridAndAngles) {
  for (const auto& [v, snapped] : {std::pair{2500, 0},
                                   {2501, 5000},
                                   {-2501, -5000},
                                   {-2500, 0},
                                   {7500, 5000},
                                   {12501, 15000}}) {
    EXPECT_EQ(gx_round_snap(v, -v), (gx_pointreal_t{snapped, -snapped})) << v;
  }
  EXPECT_EQ(gx_round_snap(INT_MAX, INT_MIN), (gx_pointreal_t{INT_MAX, INT_MIN}));
  struct {
    std::int32_t y, x, angle;
  } cases[] = {
      {0, 0, 17280},  {1, 0, 5760},     {-1, 0, 17280},     {0, 5, 0},
      {5, 5, 2880},   {0, -5, 11520},   {5, -5, 8640},      {-5, -5, 14400},
      {-5, 5, 20160}, {-1, 1000000, 0}, {1000, 1732, 1920},
  };
  for (const auto& c : cases) EXPECT_EQ(gx_atan(c.y, c.x), c.angle) << c.y << ' ' << c.x;
}

}  // namespace
