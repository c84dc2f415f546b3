// What a drawing needs to become files, and how much room its expansion takes.
#include "import/build/fit.h"
#include "tests/support/told_design.h"

// Names are spelled, differ in more than the case of their letters, and are not too long; texts
// show what was drawn otherwise. Ports and globals that nobody drew are below the rest.
TEST(ImportFit, NamesTextsAndPortsOfADrawing) {
  gxi_design_t design;
  design.cells.resize(3);
  const gxi_look_t look{.at = {1, 2}};
  auto& part = design.cells[1];
  part.name = "a/b";
  part.symbol.source = {"part", 3};
  part.symbol.shapes = {
      {.type = gx_type::polyline_2d, .points = {{0, 0}, {0, 1000}, {4000, 0}}, .filled = true}};
  part.symbol.texts = {{"\xC2\xB5", look}};
  part.symbol.properties = {{"P", "1\n2", {}}, {"", "nameless", {}}};
  part.symbol.defaults = {{"p", "3", {}}};
  part.symbol.pins = {
      {.name = "A", .properties = {{"Q", "4", {}}, {"q", "5", {}}}}, {.name = "a"}, {.name = ""}};
  auto& below = design.cells[2];
  below.name = "A_b";
  below.symbol.pins = {{.name = "in"}};
  below.sheet.emplace().source = {"below", 4};
  below.sheet->nets = {{.source = {"below", 5}, .port = "gone"},
                       {.source = {"below", 6}, .port = "lost"},
                       {.port = "in"}};
  auto& top = design.cells[0];
  top.name = "top";
  auto& sheet = top.sheet.emplace();
  sheet.source = {"top", 1};
  sheet.shapes = part.symbol.shapes;
  sheet.texts = {{"\xC2\xB5", look}};
  const std::string many(100, 'm');
  sheet.nets = {{.name = "net 1", .name_look = look, .source = {"top", 2}},
                {.name = "NET~1",
                 .name_look = look,
                 .source = {"top", 3},
                 .segments = {{{3000, 0}, {6000, 12000}}}},
                {.name = "{~{x}y}", .name_look = look},
                {.name = "~{q}", .name_look = look},
                {.name = "~Q", .source = {"top", 9}},
                {.name = many, .source = {"top", 4}, .properties = {{many, many, {}}}},
                {.port = "I", .port_type = "IN"},
                {.port = "I", .port_type = "IN"},
                {.port = "O", .port_type = "OUT"},
                {.port = "B"},
                {.port = "B2", .global = "g d"}};
  sheet.instances = {
      {.name = "X 1",
       .name_look = look,
       .symbol = 1,
       .source = {"top", 5},
       .properties = {{"v", "1", {}}, {"V", "2", {}}},
       .nets = {0}},
      {.name = "x~1", .symbol = 1, .source = {"top", 6}, .at = {0, 9000}, .nets = {0, 1, 2}},
      {.name = "", .symbol = 2, .nets = {5}},
      {.name = "X~1", .symbol = 2, .source = {"top", 8}},
      {.kind = gxi_kind::port, .name = "B", .symbol = 1, .nets = {9}},
      {.kind = gxi_kind::port,
       .name = "no pin",
       .name_look = look,
       .symbol = 1,
       .at = {20, 0},
       .nets = {7}},
      {.kind = gxi_kind::global, .name = "g d", .symbol = 1, .nets = {10}}};
  design.kept_of_pins = {many};
  gxi_fit(design);
  EXPECT_EQ(design.kept_of_pins, std::vector{many.substr(0, 63)});
  EXPECT_EQ(told(design), R"(cell top symbol  defaults
drawn -40000,10000 -30000,10000
drawn 40000,10000 30000,10000
drawn 40000,20000 30000,20000
drawn 40000,30000 30000,30000
drawn -30000,0 30000,40000
written top at -30000,-1000
pin I IN at -40000,10000 named at -29000,10000
pin O OUT at 40000,10000 named at 29000,10000
pin B IO at 40000,20000 named at 29000,20000
pin B2 IO at 40000,30000 named at 29000,30000
sheet of top:1
shape at 0,0
shape at 0,0
shape at 0,250
shape at 0,500
shape at 0,750
shape at 20,0
shape at 20,0
shape at 20,250
shape at 20,500
shape at 20,750
text \u{B5} at 1,2
text net 1 at 1,2
text NET~1 at 1,2
text {~xy} at 1,2
text X 1 at 1,2
text no pin at 1,2
text \u{B5} at 21,2
net 'net%201' port= global= of top:2
net 'NET%7E1' port= global= of top:3 3000,0-6000,12000
net '%7B~x~y%7D' port= global=
net '~q'! port= global=
net '%7EQ' port= global= of top:9
net 'mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm' port= global= mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm=mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm of top:4
net '' port=I global=
net '' port=I global=
net '' port=O global=
net '' port=B global=
net '' port=B2 global=g%20d
net '' port= global= of top:5
net '' port= global= of top:5
net '' port= global= of top:8
net '' port= global=
net '' port= global=
net '' port= global=
net '' port= global=
part X%201 of 1 at 0,0 nets 0 11 12 v=1 V~2=2 of top:5
part x%7E1 of 1 at 0,9000 nets 0 1 2 of top:6
part  of 2 at 0,0 nets 5
part X%7E1~2 of 2 at 0,0 nets 13 of top:8
port B of 1 at 0,0 nets 9 14 15
global g%20d of 1 at 0,0 nets 10 16 17
port I of 3 at 0,30000 nets 6
port I of 3 at 5000,30000 nets 7
port O of 4 at 10000,30000 nets 8
port B2 of 5 at 15000,30000 nets 10
cell a_b symbol  P=1 2 CLASS=PORTIO defaults p~2=3 of part:3
drawn 0,0 0,1000 4000,0
drawn 0,0 3500,250
drawn 0,250 2500,500
drawn 0,500 1500,750
drawn 0,750 500,1000
written \u{B5} at 1,2
pin A IO at 0,0 Q=4 q~2=5
pin a~2 IO at 0,0
pin P IO at 0,0
cell A_b_2 symbol  defaults
pin in IO at 0,0
sheet of below:4
net '' port= global= of below:5
net '' port= global= of below:6
net '' port=in global=
port in of 5 at 0,20000 nets 2
cell port_IN symbol port_IN CLASS=PORTIN defaults
pin P IO at 0,0
cell port_OUT symbol port_OUT CLASS=PORTOUT defaults
pin P IO at 0,0
cell port_IO symbol port_IO CLASS=PORTIO defaults
pin P IO at 0,0
top:4: a name is cut at 63 characters: mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm...
top:4: the value of mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm is cut at 95 characters: mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm...
top:4: the name of a net is cut at 95 characters: mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm...
top:8: a second instance X%7E1 becomes X%7E1~2
below:5: port gone is no pin of the symbol of A_b
below:6: port lost is no pin of the symbol of A_b
part:3: the cell a/b becomes a_b
below:4: the cell A_b becomes A_b_2
)");
}

// All at once, for a sheet that no other one has in use.
TEST(ImportFit, PortsOfTheTopThatAreNoPins) {
  gxi_design_t design;
  design.cells.resize(1);
  design.cells[0].name = "top";
  design.cells[0].symbol.pins = {{.name = "a"}};
  auto& nets = design.cells[0].sheet.emplace().nets;
  nets = {{.source = {"top", 1}, .port = "b"}, {.source = {"top", 2}, .port = "c"}};
  gxi_fit(design);
  EXPECT_EQ(design.warnings, gxm_messages_t{"top:1: ports are no pins of the symbol of top: b, c"});
}
