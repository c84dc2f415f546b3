// Sheets too large for one file become parts of more levels: the same pins are joined, all of the
// drawing is somewhere, and no sheet is too large any more.
#include <algorithm>
#include <map>
#include <set>

#include "gx/text/at.h"
#include "import/build/divide/division.h"
#include "import/build/divide/grouping.h"
#include "import/build/divide/object_count.h"
#include "import/build/divide/parts.h"
#include "import/build/fit.h"
#include "import/drawing/names.h"
#include "tests/support/told_design.h"

namespace {

constexpr int element = 1;  // the cell of two pins

gxi_design_t elements() {
  gxi_design_t design;
  design.cells.resize(2);
  design.cells[0] = {.name = "top", .sheet = gxi_sheet_t{}};
  auto& symbol = design.cells[element].symbol;
  design.cells[element].name = "two";
  symbol.pins = {{.name = "A", .at = {}}, {.name = "B", .at = {0, gxm_step}}};
  return design;
}

// Walks the levels: what is joined to each net of the top sheet, and to those within its parts.
struct flat_t {
  const gxi_design_t& design;
  std::vector<std::set<std::string>> nets{};
  std::size_t wires = 0, texts = 0, shapes = 0;

  void walk(int cell, const std::map<std::string, int>& from_above) {
    const auto& here = gx_at(design.cells, cell);
    EXPECT_LE(gxi_count_objects(design, here), gxi_most_objects) << here.name;
    texts += here.sheet->texts.size();
    shapes += here.sheet->shapes.size();
    std::vector<int> flat;
    std::multiset<std::string> ports, drawn;
    for (const auto& net : here.sheet->nets) {
      if (!net.port.empty()) ports.insert(net.port);
      wires += net.segments.size();
      for (const auto& wire : net.segments)
        if (wire.from.y < 0) {
          EXPECT_TRUE(std::ranges::any_of(
              here.sheet->instances,
              [&](const auto& one) { return one.kind == gxi_kind::part && one.at == wire.to; }))
              << here.name << ' ' << wire.to.x;
        }
      flat.push_back(net.port.empty() ? static_cast<int>(nets.size()) : from_above.at(net.port));
      if (net.port.empty()) nets.emplace_back();
    }
    for (const auto& instance : here.sheet->instances) {
      if (instance.kind == gxi_kind::port) {
        drawn.insert(instance.name);
        EXPECT_EQ(gx_at(here.sheet->nets, instance.nets.at(0)).port, instance.name);
        continue;
      }
      const auto& of = gx_at(design.cells, instance.symbol);
      std::map<std::string, int> down;
      for (std::size_t i = 0; i < instance.nets.size(); ++i) {
        const int net = gx_at(flat, instance.nets[i]);
        down[of.symbol.pins[i].name] = net;
        if (!of.sheet) gx_at(nets, net).insert(instance.name + "." + of.symbol.pins[i].name);
      }
      EXPECT_EQ(down.size(), of.symbol.pins.size()) << "pins of one name";
      if (of.sheet) walk(instance.symbol, down);
    }
    EXPECT_EQ(drawn, ports) << here.name;
  }
};

// The groups of instances that are named by their letters: nets by the letters of their instances.
struct grouping_t {
  gxi_design_t design = elements();
  std::vector<gxi_movable_t> movable{};

  explicit grouping_t(std::string_view instances) {
    for (const char c : instances) {
      movable.push_back({.instance = sheet().instances.size()});
      sheet().instances.push_back({.name = {c}, .symbol = element});
    }
  }
  gxi_sheet_t& sheet() { return *design.cells[0].sheet; }
  gxi_net_t& net(std::string_view instances) {
    for (const char c : instances)
      for (auto& instance : sheet().instances)
        if (instance.name[0] == c) instance.nets.push_back(static_cast<int>(sheet().nets.size()));
    return sheet().nets.emplace_back();
  }
  std::string groups(gxi_group_limits_t limits) {
    std::string text;
    for (const auto& group : gxi_group(design, sheet(), movable, limits)) {
      if (!text.empty()) text += ' ';
      for (const auto& one : group) text += sheet().instances[one.instance].name;
    }
    return text;
  }
};

constexpr std::size_t any = 1'000'000;

flat_t flatten(const gxi_design_t& design) {
  flat_t flat{.design = design};
  flat.walk(0, {});
  return flat;
}

}  // namespace

// All on two rails; one wire of each ends at its pin, in another order than they, one meets none.
TEST(ImportDivision, WiresAndTextsLeaveWithTheInstances) {
  auto design = elements();
  auto& sheet = *design.cells[0].sheet;
  sheet.nets = {{.name = "A"}, {.name = "B"}};
  constexpr std::int32_t count = 12000;
  for (std::int32_t i = 0; i < count; ++i) {
    const gx_pointreal_t at{i * gxm_step, 0};
    sheet.instances.push_back(
        {.name = "R" + std::to_string(i), .symbol = element, .at = at, .nets = {0, 1}});
    sheet.nets[0].segments.push_back({{at.x, -gxm_step}, at});
    sheet.nets[1].segments.push_back({{at.x, 7 * gxm_step}, {at.x + gxm_step, 7 * gxm_step}});
    sheet.texts.push_back({"T", {.at = at}});
    sheet.shapes.push_back({.points = {at, at}});
  }
  std::ranges::reverse(sheet.nets[0].segments);
  gxi_fit(design);
  gxi_divide(design);
  const auto flat = flatten(design);
  EXPECT_EQ(design.warnings,
            gxm_messages_t{"the sheet of top would hold more objects than a "
                           "file can: its instances are in 13 parts of one more level"});
  ASSERT_EQ(flat.nets.size(), 2U);
  EXPECT_EQ(flat.nets[0].size(), 1U * count);
  EXPECT_EQ(flat.nets[0].count("R7.A") + flat.nets[1].count("R7.B"), 2U);
  EXPECT_EQ(flat.wires, 2U * count);
  EXPECT_EQ(flat.texts, 1U * count);
  EXPECT_EQ(flat.shapes, 1U * count);
}

// A field of rows and columns whose nets, in the order of the file, would almost all be shared:
// parts of parts.
TEST(ImportDivision, AFieldIsDividedOverSeveralLevels) {
  auto design = elements();
  auto& sheet = *design.cells[0].sheet;
  constexpr int side = 200;
  std::vector<std::set<std::string>> expected(side * side);
  sheet.nets.resize(side * side);
  for (const bool down : {false, true})
    for (int i = 0; i < side * side; ++i) {
      const int to = down ? (i + side) % (side * side) : i / side * side + (i + 1) % side;
      const std::string name = (down ? "D" : "R") + std::to_string(i);
      sheet.instances.push_back({.name = name, .symbol = element, .nets = {i, to}});
      gx_at(expected, i).insert(name + ".A");
      gx_at(expected, to).insert(name + ".B");
    }
  gxi_fit(design);
  gxi_divide(design);
  const auto flat = flatten(design);
  EXPECT_EQ(std::set(flat.nets.begin(), flat.nets.end()),
            std::set(expected.begin(), expected.end()));
}

// What nobody drew leaves a sheet that a check could not compare; what is drawn stays, also with
// names that the parts and their pins would get.
TEST(ImportDivision, WhatIsDrawnStaysWhereNamesAreTooMany) {
  auto design = elements();
  auto& sheet = *design.cells[0].sheet;
  sheet.nets = {{.name = "NET1"}, {.segments = {{{0, 0}, {0, gxm_step}}}}};
  for (int i = 0; i < 1500; ++i) {
    sheet.nets.push_back({.name = "N" + std::to_string(i)});
    sheet.instances.push_back({.name = (i == 0 ? "Part" : "R") + std::to_string(i + 1),
                               .symbol = element,
                               .drawn = i % 3 == 0,
                               .nets = {i % 2, i + 2}});
  }
  gxi_fit(design);
  gxi_divide(design);
  EXPECT_EQ(design.warnings,
            gxm_messages_t{
                "the sheet of top would hold more names than a check compares: its instances that "
                "nobody drew are in 2 parts of one more level"});
  const auto flat = flatten(design);
  EXPECT_EQ(flat.nets[1].size(), 750U);
  EXPECT_EQ(flat.wires, 1U);
  std::size_t drawn = 0, parts = 0;
  gxi_names_t names;
  for (const auto& instance : design.cells[0].sheet->instances) {
    (instance.symbol == element ? drawn : parts) += 1;
    EXPECT_EQ(names.take(instance.name), instance.name);
  }
  EXPECT_EQ(drawn, 500U);
  EXPECT_EQ(parts, 2U);
}

TEST(ImportDivision, AGroupGrowsByWhatItSharesMostWith) {
  // A net of two pins binds more than one of three; nets of more than 64 bind nothing.
  grouping_t near("SXYZ");
  near.net("SXY");
  near.net("SZ");
  EXPECT_EQ(near.groups({any, 2, any}), "SZ XY");
  EXPECT_EQ(near.groups({any, 3, any}), "SZX Y");
  EXPECT_EQ(near.groups({any, 4, any}), "SZXY");
  grouping_t twice("SUXYZ");  // what is met twice comes before what is met once
  twice.net("SXY");
  twice.net("SYZ");
  twice.sheet().instances[0].nets.push_back(-1);
  EXPECT_EQ(twice.groups({any, 2, any}), "SY XU Z");
  EXPECT_EQ(twice.groups({any, 5, any}), "SYXZU");
  std::string others;
  for (char c = '0'; others.size() < 63; ++c)
    if (c != 'S') others += c;
  grouping_t large("S~" + others);
  large.net("S" + others);
  EXPECT_EQ(large.groups({any, 2, any}).substr(0, 2), "S0");
  large.sheet().instances[1].nets.push_back(0);
  EXPECT_EQ(large.groups({any, 2, any}).substr(0, 2), "S~");
}

// An instance takes 6 objects, its symbol 12 in each group, a net 3, and 5 for its port as long as
// that is needed.
TEST(ImportDivision, AGroupKeepsToItsLimits) {
  grouping_t row("ABCD");
  for (const auto* const pair : {"AB", "BC", "CD"}) row.net(pair).name = "N";
  row.movable[1].with_it = 100;
  constexpr std::size_t of_a = 6 + 12 + 8, of_ab = of_a + 100 + 6 + 8, of_abc = of_ab - 5 + 6 + 8;
  EXPECT_EQ(row.groups({of_ab - 1, any, any}), "A B CD");
  EXPECT_EQ(row.groups({of_abc - 1, any, any}), "AB CD");
  EXPECT_EQ(row.groups({of_abc, any, any}), "ABC D");
  EXPECT_EQ(row.groups({of_abc - 5 + 6, any, any}), "ABCD");
  EXPECT_EQ(row.groups({any, any, 2}), "AB CD");
  EXPECT_EQ(row.groups({any, any, 1}), "A B C D");
  row.sheet().nets[1].name.clear();
  EXPECT_EQ(row.groups({any, any, 1}), "AB CD");
  const auto keeps_its_port = [&] {
    EXPECT_EQ(row.groups({of_abc + 4, any, any}), "AB CD");
    EXPECT_EQ(row.groups({of_abc + 5, any, any}), "ABC D");
  };
  auto& net = row.sheet().nets[0];
  for (auto* const goes_on : {&net.port, &net.global}) {
    *goes_on = "P";
    keeps_its_port();
    goes_on->clear();
  }
  row.sheet().instances.push_back({.name = "stays", .symbol = element, .nets = {-1, 0}});
  keeps_its_port();
}

// Two parts of a drawing: what is shared has ports, what is whole within goes along with its names
// and wires; the parts lie below the rest.
TEST(ImportDivision, PartsAreDrawnAsTheyAre) {
  for (const bool drawing_moves : {false, true}) {
    auto design = elements();
    auto& sheet = *design.cells[0].sheet;
    sheet.source = {"file", 7};
    const gxi_look_t look{.at = {1, 2}};
    sheet.nets = {{.name = "Shared",
                   .name_look = look,
                   .source = {"file", 8},
                   .segments = {{{0, 0}, {5000, 0}}}},
                  {.name = "within", .name_look = look, .properties = {{"P", "1", {}}}},
                  {.segments = {{{0, 0}, {0, 27000}}, {{1, 1}, {2, 2}}}},
                  {.global = "GND"},
                  {.name = "NET2"}};
    sheet.instances = {{.name = "A", .symbol = element, .at = {0, -12000}, .nets = {0, 1}},
                       {.name = "B", .symbol = element, .drawn = false, .nets = {1, 2}},
                       {.name = "part1", .symbol = element, .at = {10000, 10000}, .nets = {-1, 2}},
                       {.name = "D", .symbol = element, .drawn = false, .nets = {3, 0}},
                       {.name = "E", .symbol = element, .nets = {-1, 4}}};
    gxi_part_maker_t maker(design);
    maker.make(
        0, {{.instances = {0, 1}, .wires = {{2, 1}}, .texts = {{"t", look}}}, {.instances = {3}}},
        drawing_moves);
    if (!drawing_moves) {
      EXPECT_EQ(told(design.cells[0]), R"(cell top symbol  defaults
sheet of file:7
net 'Shared'! port= global= of file:8 0,0-5000,0
net '' port= global= 0,0-0,27000 1,1-2,2
net '' port= global=GND
net 'NET2' port= global=
part part1 of 1 at 10000,10000 nets -1 1
part E of 1 at 0,0 nets -1 3
part part2 of 3 at 0,75000 undrawn nets 0 1 of file:7
part part3 of 4 at 150000,75000 undrawn nets 2 0 of file:7
)");
      continue;
    }
    std::string all;
    for (const auto& cell : design.cells) all += told(cell);
    EXPECT_EQ(all, R"(cell top symbol  defaults
sheet of file:7
net 'Shared' port= global= of file:8
net '' port= global=
net '' port= global=GND
net 'NET2' port= global=
part part1 of 1 at 10000,10000 nets -1 1
part E of 1 at 0,0 nets -1 3
part part2 of 3 at 0,60000 undrawn nets 0 1 of file:7
part part3 of 4 at 150000,60000 undrawn nets 2 0 of file:7
cell two symbol  defaults
pin A IO at 0,0
pin B IO at 0,5000
cell part_port symbol part_port CLASS=PORTIO defaults
pin P IO at 0,0
cell top_part2 symbol top_part2 defaults of file:7
drawn -5000,-5000 105000,10000
written top_part2 at 0,-6000
pin Shared IO at 0,0
pin NET2~ IO at 5000,0
sheet of file:7
text t at 1,2
net 'Shared'! port=Shared global= of file:8
net 'within'! port= global= P=1
net '' port=NET2~ global= 1,1-2,2
part A of 1 at 0,-12000 nets 0 1
part B of 1 at 0,0 undrawn nets 1 2
port Shared of 2 at 0,-30000 nets 0 of file:7
port NET2~ of 2 at 5000,-30000 nets 2 of file:7
cell top_part3 symbol top_part3 defaults of file:7
drawn -5000,-5000 105000,10000
written top_part3 at 0,-6000
pin NET3 IO at 0,0
pin Shared IO at 5000,0
sheet of file:7
net '' port=NET3 global=
net 'Shared' port=Shared global= of file:8
part D of 1 at 0,0 undrawn nets 0 1
port NET3 of 2 at 0,-20000 nets 0 of file:7
port Shared of 2 at 5000,-20000 nets 1 of file:7
)");
  }
}

TEST(ImportDivision, PartsPinsAndPortsLieInRows) {
  auto design = elements();
  auto& sheet = *design.cells[0].sheet;
  std::vector<gxi_part_t> parts(21);
  for (std::size_t i = 0; i < 121; ++i) {
    sheet.nets.push_back({.port = "P"});
    sheet.instances.push_back(
        {.symbol = element, .drawn = false, .nets = {static_cast<int>(i), -1}});
    parts[i < 101 ? 0 : i - 100].instances.push_back(i);
  }
  gxi_part_maker_t(design).make(0, std::move(parts), false);
  using point_t = gx_pointreal_t;
  const auto& first = design.cells[3];
  EXPECT_EQ(first.symbol.shapes[0].points[1], (point_t{21 * gxm_step, 7 * gxm_step}));
  EXPECT_EQ(first.symbol.pins[19].at, (point_t{19 * gxm_step, 0}));
  EXPECT_EQ(first.symbol.pins[20].at, (point_t{0, gxm_step}));
  EXPECT_EQ(first.sheet->instances[39].at, (point_t{78 * gxm_step, 0}));
  EXPECT_EQ(first.sheet->instances[40].at, (point_t{0, 6 * gxm_step}));
  EXPECT_EQ(first.sheet->instances[200].at, (point_t{99 * gxm_step, -4 * gxm_step}));
  EXPECT_EQ(first.sheet->instances[201].at, (point_t{0, -5 * gxm_step}));
  const auto& rest = design.cells[0].sheet->instances;
  EXPECT_EQ(rest[19].at, (point_t{19 * 30 * gxm_step, 10 * gxm_step}));
  EXPECT_EQ(rest[20].at, (point_t{0, 25 * gxm_step}));
}
