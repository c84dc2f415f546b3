// The queries over sheets and symbol files, and the lookup of properties.
#include "gx/db/queries.h"
#include "tests/support/db_builder.h"
#include "tests/support/fatal_stop.h"
#include "tests/support/make_design.h"
#include "tests/support/objects.h"

namespace {

constexpr char queried[] = R"(
symbol two
  line 0,0 0,4
  pin 1 0,0 IN
  pin 2 0,4 OUT
  prop CLASS=R VALUE=1k
sheet top
  part R1 two 5,5 OWN=a OTHER=b
  part R2 two 9,5
  net A
    wire R1.1 R2.1
  net
    wire R1.2 R2.2
)";

std::string text(const std::optional<gx_string_record_t>& value) {
  return value ? std::string(gx_view(*value)) : "(none)";
}

TEST(Queries, WalkASheet) {
  const auto files = build_design(queried);
  const auto& file = *files.back().file;
  const auto instances = ids_of(lb_instances(file));
  ASSERT_EQ(instances.size(), 2U);
  EXPECT_EQ(lb_inq_first_inst_id(file).member, instances[0]);
  EXPECT_EQ(lb_inq_next_inst_id(file, instances[1]), 0);
  EXPECT_EQ(ids_of(lb_symbols(file)).size(), 1U);
  EXPECT_EQ(ids_of(lb_nets(file)).size(), 2U);
  EXPECT_EQ(lb_inq_first_frame_id(file).member, 0);  // the family is there, and empty

  std::vector<std::string> pins;
  for (const auto [pin, pinpropfam] : lb_pins(file, instances[0])) {
    pins.push_back(text(lb_get_valueof_prop_pin(file, pin, "pin")) + " of " +
                   std::to_string(lb_instance_of_pin_id(file, pinpropfam) == instances[0]));
  }
  EXPECT_EQ(pins, (std::vector<std::string>{"1 of 1", "2 of 1"}));

  EXPECT_EQ(text(lb_get_valueof_prop_inst(file, instances[1], "value")), "1k");  // the symbol's
  EXPECT_EQ(text(lb_get_valueof_prop_inst(file, instances[1], "VAL")), "(none)");
  const auto nets = ids_of(lb_nets(file));
  EXPECT_EQ(text(lb_get_valueof_prop_net(file, nets[0], "NET")), "A");
  EXPECT_EQ(text(lb_get_valueof_prop_net(file, nets[1], "NET")), "(none)");

  expect_stop([&] { lb_inq_next_inst_id(file, 0); }, gx_code::object_id_invalid);
  expect_stop([&] { lb_get_valueof_prop_net(file, instances[0], "NET"); },
              gx_code::object_type_invalid);
  expect_stop([&] { lb_instance_of_pin_id(file, nets[0]); }, gx_code::object_type_invalid,
              "LB_INSTANCE_OF_PIN_ID");
}

TEST(Queries, WalkASymbolFile) {
  const auto files = build_design(queried);
  const auto& file = *files.front().file;
  const auto component = wn_inq_first_comp_id(file).member;
  ASSERT_NE(component, 0);
  EXPECT_EQ(wn_inq_next_comp_id(file, component), 0);
  const auto children = wn_inq_comp_child_id(file, component);
  const auto body = wn_inq_graphics_property_id(file, children.body);
  EXPECT_EQ(ids_of(gx_children(file, body.graphics)).size(), 1U);
  EXPECT_EQ(
      gx_view(gx_property_info_ptr(file, gx_find_property_name(file, body.property_family, "CLASS"))
                  .nvalue),
      "R");
  const int pin = wn_inq_comp_first_pin_id(file, component);
  const int next = wn_inq_comp_next_pin_id(file, pin);
  EXPECT_EQ(text(lb_get_valueof_prop_pin(file, next, "PINTYPE")), "OUT");
  EXPECT_EQ(wn_inq_comp_next_pin_id(file, next), 0);
  expect_stop([&] { wn_inq_graphics_property_id(file, pin); }, gx_code::object_id_invalid);
  // A symbol file has no nets to ask for.
  expect_stop([&] { lb_inq_first_net_id(file); }, gx_code::object_id_invalid, "fam_net_id");
}

// Parts of a net directly under it and under its families, wherever these stand.
TEST(Queries, PartsOfANetInAnyOrder) {
  gx_builder sheet;
  const auto& file = sheet.file;
  const int net = sheet.add(gx_type::net);
  sheet.add(gx_type::graphics, net);  // empty
  std::vector<int> segments{sheet.add(gx_type::segment, net)};
  const int graphics = sheet.add(gx_type::graphics, net);
  for (int i = 0; i < 2; ++i) segments.push_back(sheet.add(gx_type::segment, graphics));
  const int first = sheet.add_property(net, "NET", "direct");
  const int inner = sheet.add_property(sheet.add(gx_type::property_family, net), "NET", "inner");
  segments.push_back(sheet.add(gx_type::segment, net));
  const int second = sheet.add_property(net, "WIDTH", "2");
  EXPECT_EQ(ids_of(lb_segments(file, net)), segments);
  EXPECT_EQ(ids_of(lb_net_properties(file, net)), (std::vector{first, inner, second}));
  EXPECT_EQ(gx_find_property_name(file, net, "width"), second);
  EXPECT_EQ(text(lb_get_valueof_prop_net(file, net, "Net")), "inner");  // the family's first
  gx_set_object_deleted(file, inner, true);
  EXPECT_EQ(text(lb_get_valueof_prop_net(file, net, "Net")), "direct");
  const int bare = sheet.add(gx_type::net);
  EXPECT_EQ(gx_inq_first_net_segment_id(file, bare), 0);
  EXPECT_EQ(gx_inq_first_net_property_id(file, bare), 0);
}

TEST(Queries, DeletedPropertiesAreSkippedAndDeletedPinsRefused) {
  const auto files = build_design(queried);
  const auto& file = *files.back().file;
  const int inst = *lb_instances(file).begin();
  const auto properties = ids_of(lb_inst_properties(file, inst));
  const int own = properties[1], other = properties[2];
  gx_property_info_ptr(file, own).name = gx_name("VALUE");
  gx_property_info_ptr(file, other).name = gx_name("Value");
  EXPECT_EQ(text(lb_get_valueof_prop_inst(file, inst, "VALUE")), "a");
  gx_set_object_deleted(file, own, true);
  EXPECT_EQ(text(lb_get_valueof_prop_inst(file, inst, "VALUE")), "b");
  gx_set_object_deleted(file, other, true);
  EXPECT_EQ(text(lb_get_valueof_prop_inst(file, inst, "VALUE")), "1k");
  const auto pair = lb_inq_inst_first_pin_id(file, inst);
  expect_stop(
      [&] {
        gx_set_object_deleted(file, pair.pin, true);
        lb_inq_inst_first_pin_id(file, inst);
      },
      gx_code::file_data_invalid, " LB_INQ_INST_FIRST_PIN_ID :  child_s : deleted ");
  expect_stop([&] { gx_find_property_name(file, inst, "VALUE"); }, gx_code::object_type_invalid,
              "father type invalid");
}

}  // namespace
