// From the text of a description to the objects and bytes of its files.
#include "gx/db/file/reference_check.h"
#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/db/queries.h"
#include "gxmake/memory_array.h"
#include "tests/support/make_design.h"

namespace {

constexpr char devices[] = R"(
symbol two              # pins 1 above 2
  line 0,0 0,4
  pin 1 0,0 IXO
  pin 2 0,4 IXO
  prop CLASS=R
  default VALUE=1k
  show VALUE 1,2
symbol wide
  pin D 0,0 IN bits 0:3
symbol portin
  pin P 0,0 IXO
  prop CLASS=PORTIN
symbol vdd
  pin P 0,0 IXO
  prop CLASS=G GLOBAL=VDD
)";

// The one sheet of a description that stands behind the devices; owns its file.
std::shared_ptr<gx_file_gene_recf_t> last_sheet(const std::string& text) {
  auto files = build_design(devices + text);
  return files.back().file;
}

std::string value(const std::optional<gx_string_record_t>& text) {
  return text ? std::string(gx_view(*text)) : "(none)";
}

gx_object_id_t instance(const gx_file_gene_recf_t& file, int number) {
  auto id = lb_inq_first_inst_id(file).member;
  while (number-- > 1) id = lb_inq_next_inst_id(file, id);
  return id;
}

gx_object_id_t net(const gx_file_gene_recf_t& file, int number) {
  auto id = lb_inq_first_net_id(file).member;
  while (number-- > 1) id = lb_inq_next_net_id(file, id);
  return id;
}

gx_object_pinpropfam_rec_t& pin(const gx_file_gene_recf_t& file, int instance_number,
                                int pin_number) {
  auto pair = lb_inq_inst_first_pin_id(file, instance(file, instance_number));
  while (pin_number-- > 1) pair = lb_inq_inst_next_pin_id(file, pair);
  return gx_pinpropfam_info_ptr(file, pair.pinpropfam);
}

// Every segment of a net as "x1,y1 x2,y2" in grid steps, "!" behind an end with a junction dot.
std::vector<std::string> segments(const gx_file_gene_recf_t& file, int net_id) {
  std::vector<std::string> lines;
  const auto end = [&](int id) {
    const bool is_pin = gx_object_id_ptr(file, id).object_type == gx_type::pinpropfam;
    const auto at = is_pin ? gx_pin_abs_origin(file, id) : gx_object_abs_origin(file, id, 0);
    const bool dotted = is_pin ? gx_pinpropfam_info_ptr(file, id).dotted != 0
                               : gx_vertex_info_ptr(file, id).dotted != 0;
    return std::to_string(at.x / gxm_step) + "," + std::to_string(at.y / gxm_step) +
           (dotted ? "!" : "");
  };
  for (int id = gx_inq_first_net_segment_id(file, net_id); id;
       id = gx_inq_next_net_segment_id(file, net_id, id)) {
    const auto& segment = gx_segment_info_ptr(file, id);
    lines.push_back(end(segment.vertex1) + " " + end(segment.vertex2));
  }
  return lines;
}

TEST(GxMake, SheetHasFamiliesSymbolsAndInstanceChains) {
  const auto file = last_sheet(R"(
sheet top
  page 30,20 step 2 gridoff errors 3
  part R1 two 5,5 VALUE=2k
  port IN portin 2,5
  part R2 two 9,5 rotate 1 mirror
  global VDD vdd 5,2
  net A
    wire IN R1.1
)");
  EXPECT_EQ(gx_reference_fault(*file), "");
  EXPECT_EQ(file->num_errors, 3);
  EXPECT_EQ(gx_inq_grid_step(*file), 2 * gxm_step);
  EXPECT_FALSE(gx_inq_grid_state(*file));
  EXPECT_EQ(gx_inq_page_dim(*file), (gx_pointreal_t{150000, 100000}));

  const int r1 = instance(*file, 1), r2 = instance(*file, 3);
  const int two = gx_instance_info_ptr(*file, r1).symbol;
  EXPECT_EQ(gx_view(gx_symbol_info_ptr(*file, two).path), "two/symbol.gx_1");
  EXPECT_EQ(lb_inq_first_inst_ofsymb_id(*file, two), r1);
  EXPECT_EQ(lb_inq_next_inst_ofsymb_id(*file, two, r1), r2);
  EXPECT_EQ(gx_instance_info_ptr(*file, r2).rotate, 1);
  EXPECT_EQ(gx_instance_info_ptr(*file, r2).fliph, 1);

  EXPECT_EQ(value(lb_get_valueof_prop_inst(*file, r1, "INST")), "R1");
  EXPECT_EQ(value(lb_get_valueof_prop_inst(*file, r1, "VALUE")), "2k");
  EXPECT_EQ(value(lb_get_valueof_prop_inst(*file, r2, "VALUE")), "1k");
  EXPECT_EQ(value(lb_get_valueof_prop_inst(*file, instance(*file, 2), "INST")), "(none)");
  const auto port_pin = pin(*file, 2, 1).gene.object_id;
  EXPECT_EQ(value(lb_get_valueof_prop_pinpropfam(*file, port_pin, "NET")), "IN");
  EXPECT_EQ(value(lb_get_valueof_prop_inst(*file, instance(*file, 4), "GLOBAL")), "VDD");
  EXPECT_EQ(value(lb_get_valueof_prop_net(*file, net(*file, 1), "NET")), "A");
  EXPECT_EQ(pin(*file, 1, 1).net, net(*file, 1));
  EXPECT_EQ(pin(*file, 1, 2).net, 0);
}

TEST(GxMake, WiresTurnMeetAndCarryDots) {
  const struct {
    const char* wires;
    std::vector<std::string> segments;
  } cases[] = {
      {"wire R1.2 R2.1", {"5,9 15,6"}},
      {"wire R1.2 - R2.1", {"5,9 15,9", "15,9 15,6"}},
      {"wire R1.2 | 15,12", {"5,9 5,12", "5,12 15,12"}},
      {"wire R1.1 10,. .,9", {"5,5 10,5", "10,5 10,9"}},
      {"wire 5,9 R1.1", {"5,9 5,5"}},  // a pin found by its place
      {"wire 0,12 20,12\nwire R1.2 5,12", {"0,12 5,12!", "5,12! 20,12", "5,9 5,12!"}},
      {"wire 0,12 5,12\nwire 5,12 20,12", {"0,12 5,12", "5,12 20,12"}},
      {"wire 0,12 8,12 8,12\nwire 8,12 0,12", {"0,12 8,12"}},  // drawn twice, stored once
      {"wire R1.1 0,5\nwire R1.1 5,0", {"5,5! 0,5", "5,5! 5,0"}},
  };
  for (const auto& c : cases) {
    const auto file = last_sheet("sheet t\n part R1 two 5,5\n part R2 two 15,6\n net N\n" +
                                 std::string(c.wires) + "\n");
    EXPECT_EQ(segments(*file, net(*file, 1)), c.segments) << c.wires;
    EXPECT_EQ(gx_reference_fault(*file), "");
  }
}

TEST(GxMake, NetsMayShareAVertexButCrossingsDoNot) {
  const auto file = last_sheet(R"(
sheet t
  net A
    wire 0,5 5,5 10,5
  net B
    wire 7,0 7,9
  net C
    wire A@5,5 5,9
)");
  EXPECT_EQ(segments(*file, net(*file, 1)).size(), 2U);
  EXPECT_EQ(segments(*file, net(*file, 2)), std::vector<std::string>{"7,0 7,9"});
  const auto of = [&](int net_id) {
    return gx_segment_info_ptr(*file, gx_inq_first_net_segment_id(*file, net_id));
  };
  EXPECT_EQ(of(net(*file, 3)).vertex1, of(net(*file, 1)).vertex2);
  EXPECT_EQ(gx_vertex_info_ptr(*file, of(net(*file, 3)).vertex1).net, net(*file, 1));
}

TEST(GxMake, BusPinsKnowTheirBits) {
  const auto file = last_sheet(R"(
sheet t
  part U1 wide 5,5
  part R1 two 9,5
  port D portin 1,5 bits 2:9
  bus D 2:9
    wire D 3,5 U1.D
    wire 3,5 3,12
    wire 3,12 R1.1
    bit 4 U1.D
    bit 7 R1.1
)");
  const auto& bus = gx_net_info_ptr(*file, net(*file, 1));
  EXPECT_EQ(bus.is_bus, 1);
  EXPECT_EQ(bus.bus_start, 2);
  EXPECT_EQ(bus.bus_end, 9);
  const auto expect_pin = [&](int part, int start, int end, int bit) {
    const auto& p = pin(*file, part, 1);
    EXPECT_EQ(p.pin_start, start) << part;
    EXPECT_EQ(p.pin_end, end) << part;
    EXPECT_EQ(p.pin_net_start, bit) << part;
  };
  expect_pin(1, 0, 3, 4);
  expect_pin(2, 0, 0, 7);
  expect_pin(3, 2, 9, 2);
  EXPECT_EQ(value(lb_get_valueof_prop_pinpropfam(*file, pin(*file, 3, 1).gene.object_id, "NET")),
            "D[2:9]");
}

TEST(GxMake, MistakesAreToldWithTheirLine) {
  const struct {
    const char* text;
    const char* message;  // how it begins
  } cases[] = {
      {"circle 1,1 2", "test:1: \"circle\" cannot stand here"},
      {"symbol s\n blob 1,1", "test:2: unknown statement \"blob\""},
      {"symbol", "test:1: the symbol's name is missing (symbol NAME)"},
      {"symbol s\n line 1,1 2;2", "test:2: a point x,y expected, not \"2;2\" (line x,y x,y "},
      {"symbol s\n line 1,1 99999,0", "test:2: a point x,y expected, not \"99999,0\""},
      {"symbol s\n line 1,1 2,2 color mauve", "test:2: a color expected, not \"mauve\""},
      {"symbol s\n line 1,1 2,2 filled", "test:2: \"filled\" is not understood here"},
      {"symbol s\n circle 1,1 0", "test:2: a radius above 0 expected"},
      {"symbol s\n arc 0,0 1,1 2,2", "test:2: the three points of the arc are on one line"},
      {"symbol s\n text \"open at 1,1", "test:2: a quote is not closed"},
      {"symbol s\n pin A 0,0 IN bits 3:0", "test:2: bits A:B expected, not \"3:0\""},
      {"symbol s\n prop A=\xC3\xA9", "test:2: a property value with a character that is not ASCII"},
      {"symbol s\n wire 0,0 1,1", "test:2: \"wire\" cannot stand here"},
      {"symbol s\nsymbol s", "test:2: a second symbol s (the first is in line 1)"},
      {"sheet t\n part U1 nothing 1,1", "test:2: part U1: there is no symbol nothing"},
      {"symbol s\n prop W=1\nsheet t\n part U1 s 1,1 w=2",
       "test:4: part U1: w is fixed by the symbol s (make it a default there)"},
      {"sheet t\n part U1 s 1,1 rotate 4", "test:2: 0..3 quarter turns expected, not \"4\""},
      {"sheet t\n bus D 1:1", "test:2: a bus of two bits or more expected"},
      {"sheet t\n net A\n wire 1,1", "test:3: two stops or more expected"},
      {"sheet t\n net A\n wire 1,1 U1.X", "test:3: net A: there is no pin U1.X"},
      {"sheet t\n net A\n wire .,1 2,2", "test:3: net A: \".\" needs a stop before it"},
      {"sheet t\n net A", "test:2: net A has no wire"},
      {"symbol s\n pin A 0,0\nsheet t\n part U s 5,5\n net A\n wire 0,5 9,5",
       "test:6: net A: the wire runs over pin U.A without a stop"},
      {"symbol s\n pin A 0,0\nsheet t\n part U s 5,5\n part V s 5,5\n net A\n wire 0,5 5,5",
       "test:7: net A: several pins meet at U.A: name one"},
      {"sheet t\n net A\n wire B@1,1 2,2", "test:3: net A: net B has no vertex there"},
      {"symbol s\n pin A 0,0 IN bits 0:3\nsheet t\n part U s 5,5\n bus D 0:3\n wire U.A 9,5\n bit "
       "2 U.A",
       "test:7: pin U.A does not fit into D[0:3]"},
      {"include nowhere.gxt", "nowhere.gxt: cannot be read: No such file or directory"},
  };
  for (const auto& c : cases) {
    gxm_input_t input;
    gxm_parse_text(c.text, "test", input);
    auto messages = input.messages;
    if (messages.empty()) gxm_build(input.design, {}, messages);
    ASSERT_EQ(messages.size(), 1U) << c.text;
    EXPECT_EQ(messages[0].substr(0, std::string(c.message).size()), c.message);
  }
}

TEST(GxMake, WhatFollowsARefusedBlockBelongsToNothing) {
  gxm_input_t input;
  gxm_parse_text("sheet a\n net A\n  wire 1,1 2,2\nsheet b junk\n  wire 1,1 2,2\n line 0,0 1,1",
                 "test", input);
  ASSERT_EQ(input.messages.size(), 3U);
  EXPECT_EQ(input.messages[1], "test:5: \"wire\" cannot stand here");
  EXPECT_EQ(input.messages[2], "test:6: \"line\" cannot stand here");
  EXPECT_EQ(input.design.sheets.size(), 1U);
}

}  // namespace
