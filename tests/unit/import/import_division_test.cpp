// Sheets too large for one file become parts of more levels: the same pins are joined, all of the
// drawing is somewhere, and no sheet is too large any more.
#include <map>
#include <set>

#include "gx/text/at.h"
#include "import/build/divide/division.h"
#include "import/build/divide/object_count.h"
#include "import/build/fit.h"
#include "import/drawing/names.h"

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
  std::size_t wires = 0, texts = 0;

  void walk(int cell, const std::map<std::string, int>& from_above) {
    const auto& here = gx_at(design.cells, cell);
    EXPECT_LE(gxi_count_objects(design, here), gxi_most_objects) << here.name;
    texts += here.sheet->texts.size();
    std::vector<int> flat;
    std::multiset<std::string> ports, drawn;
    for (const auto& net : here.sheet->nets) {
      if (!net.port.empty()) ports.insert(net.port);
      wires += net.segments.size();
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

flat_t flatten(const gxi_design_t& design) {
  flat_t flat{.design = design};
  flat.walk(0, {});
  return flat;
}

}  // namespace

// All on two rails; one wire of each at the pin, one that meets none.
TEST(ImportDivision, WiresAndTextsLeaveWithTheInstances) {
  auto design = elements();
  auto& sheet = *design.cells[0].sheet;
  sheet.nets = {{.name = "A"}, {.name = "B"}};
  constexpr std::int32_t count = 12000;
  for (std::int32_t i = 0; i < count; ++i) {
    const gx_pointreal_t at{i * gxm_step, 0};
    sheet.instances.push_back(
        {.name = "R" + std::to_string(i), .symbol = element, .at = at, .nets = {0, 1}});
    sheet.nets[0].segments.push_back({at, {at.x + gxm_step, 0}});
    sheet.nets[1].segments.push_back({{at.x, 7 * gxm_step}, {at.x + gxm_step, 7 * gxm_step}});
    sheet.texts.push_back({"T", {.at = at}});
  }
  gxi_fit(design);
  gxi_divide(design);
  const auto flat = flatten(design);
  ASSERT_EQ(flat.nets.size(), 2U);
  EXPECT_EQ(flat.nets[0].size(), 1U * count);
  EXPECT_EQ(flat.nets[0].count("R7.A") + flat.nets[1].count("R7.B"), 2U);
  EXPECT_EQ(flat.wires, 2U * count);
  EXPECT_EQ(flat.texts, 1U * count);
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
  ASSERT_EQ(design.warnings.size(), 1U);
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
