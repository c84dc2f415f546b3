// Drawings of xschem: records in odd forms, labels of several bits, and what joins what in the
// example.
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "import/build/output.h"
#include "import/drawing/ascii.h"
#include "import/drawing/netlist_text.h"
#include "import/drawing/numbers.h"
#include "import/xschem/attributes.h"
#include "import/xschem/labels.h"
#include "import/xschem/reader.h"
#include "import/xschem/records.h"
#include "tests/support/scratch_directory.h"

namespace {

std::string refusal(std::string_view text) {
  gxm_messages_t messages;
  try {
    gxi_xschem_read_records(text, {"f", 0}, messages);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return messages.empty() ? "" : messages.front();
}

std::string joined(const std::vector<std::string>& names) {
  std::string all;
  for (const auto& name : names) all += (all.empty() ? "" : " ") + name;
  return all;
}

// Every net of the top sheet by the pins of parts that it joins.
std::set<std::string> nets_of_top(const gxi_design_t& design) {
  const auto& sheet = *design.cells[0].sheet;
  std::vector<std::set<std::string>> pins(sheet.nets.size());
  for (const auto& instance : sheet.instances)
    for (std::size_t i = 0; i < instance.nets.size(); ++i)
      if (instance.kind == gxi_kind::part && instance.nets[i] >= 0)
        pins[static_cast<std::size_t>(instance.nets[i])].insert(
            instance.name + "." +
            design.cells[static_cast<std::size_t>(instance.symbol)].symbol.pins[i].name);
  std::set<std::string> nets;
  for (std::size_t i = 0; i < pins.size(); ++i) {
    std::string all = sheet.nets[i].name + (sheet.nets[i].port.empty() ? "" : " port") +
                      (sheet.nets[i].global.empty() ? "" : " global") + ":";
    for (const auto& pin : pins[i]) all += " " + pin;
    nets.insert(all);
  }
  return nets;
}

}  // namespace

TEST(ImportXschem, RecordsInOddForms) {
  gxm_messages_t messages;
  const auto file = gxi_xschem_read_records(
      "v {x}\r\nG {type=nmos}T {a \\{b\\} \\\\c} 1 2 3 1 .2 0.2 {}\nN 0 0 0 0 {lab=#net1}\n"
      "P 4 0 {}\nC {s.sym} -1.25e1 +3 0 0 {name=x1\nembed=true}\n[\nK {type=q}\nL 4 0 0 1 1 "
      "{}\n]\n",
      {"f", 0}, messages);
  EXPECT_EQ(file.global, "type=nmos");  // before there was K
  EXPECT_EQ(file.texts.at(0).text, "a {b} \\c");
  EXPECT_EQ(file.components.at(0).at.x, -12.5);
  EXPECT_EQ(file.components.at(0).line, 5);
  EXPECT_EQ(file.components.at(0).embedded->global, "type=q");

  const std::map<std::string, std::string> refused{
      {"v {\n\nx", "f:1: a \"{\" that is not closed"},
      {"v {}\nN 1 2 x 4 {}", "f:2: a number expected"},
      {"N 1 2 3 1e9 {}", "f:1: a coordinate beyond 200000"},
      {"N 1 2 3 nan {}", "f:1: a number expected"},
      {"v {}\n]", "f:2: a \"]\" without \"[\""},
      {"[\n]", "f:1: a symbol that follows no component"},
      {"C {a} 0 0 0 0 {}\n[\n", "f:2: a \"[\" that is not closed"},
      {"C {a} 0 0 0 2 {}", "f:1: a flip of 0 or 1 expected"},
      {"Z {\n} 1 2\nv {}", "f:1: a record of the unknown kind \"Z\" is left out"}};
  for (const auto& [text, what] : refused) EXPECT_EQ(refusal(text), what);
}

TEST(ImportXschem, AttributesAndTheirTexts) {
  const gxi_xschem_attributes_t attributes(
      R"(name=x1 value="a \"b\" = c" w=10u alone w=2 t="name=M1 l=\\"1 2\\"" e= "" z=1)");
  EXPECT_EQ(attributes.get("value"), "a \"b\" = c");
  EXPECT_EQ(attributes.get("w"), "10u");
  EXPECT_EQ(attributes.get("z"), "1");
  EXPECT_EQ(attributes.find("alone"), nullptr);
  const auto filled =
      gxi_xschem_substitute(R"(@name @@A @#0:x @prefix\and2 a@ \@b)",
                            [](auto name) { return "<" + std::string(name) + ">"; });
  EXPECT_EQ(filled, "<name> <@A> <#0:x> <prefix>and2 a@ @b");
}

TEST(ImportXschem, LabelsOfSeveralBits) {
  const std::map<std::string, std::string> bits{{"A", "A"},
                                                {"A[2:0]", "A[2] A[1] A[0]"},
                                                {"A[0:4:2]", "A[0] A[2] A[4]"},
                                                {"A[3..1]", "A3 A2 A1"},
                                                {"A[5,1:2]", "A[5] A[1] A[2]"},
                                                {"A, B[1:0],C", "A B[1] B[0] C"},
                                                {"2*X[1:0]", "X[1] X[0] X[1] X[0]"},
                                                {"X[1:0]*2", "X[1] X[1] X[0] X[0]"},
                                                {"2*(A,B)", "A B A B"},
                                                {"A[i]", "A[i]"},
                                                {"A[1", "A[1"},
                                                {"A,,B", "A,,B"},
                                                {"999999999*A", "999999999*A"},
                                                {"A[0:2000000000]", "A[0:2000000000]"}};
  for (const auto& [label, names] : bits) EXPECT_EQ(joined(gxi_xschem_bits(label)), names);
}

TEST(ImportXschem, NumbersTextsAndNetlistLines) {
  EXPECT_EQ(gxi_plain_number("4.7k"), "4700");
  EXPECT_EQ(gxi_plain_number("10uF"), "0.00001");
  EXPECT_EQ(gxi_plain_number("2meg"), "2000000");
  EXPECT_EQ(gxi_plain_number("1.50e-1"), "0.15");
  EXPECT_EQ(gxi_plain_number("-1"), std::nullopt);
  EXPECT_EQ(gxi_plain_expression("'@w * 4.4u'"), "(w*0.0000044)");
  EXPECT_EQ(gxi_plain_expression("sqrt(2)"), std::nullopt);
  EXPECT_EQ(gxi_ascii("10µ \u2126 \u00e9 \xff\x01"), "10u ohm e y ");
  const auto devices = gxi_netlist_devices(
      "* c\nm1 d g s b nch\n+ w=1\n.control\nrun r r\n.endc\nX1 a b sub m=2\nR1 a\n");
  ASSERT_EQ(devices.size(), 2U);
  EXPECT_EQ(joined(devices[0].nodes) + " | " + devices[0].value, "d g s b | nch w=1");
  EXPECT_EQ(joined(devices[1].nodes), "a b");
}

TEST(ImportXschem, TheExampleJoinsWhatItDraws) {
  const std::filesystem::path here = KIVO_SOURCE_DIR;
  const auto design = gxi_read_xschem({{here / "examples/import/buffers.sch"}, {}});
  EXPECT_TRUE(design.warnings.empty());
  std::set<std::string> expected{"0 global: C[0].m C[1].m C[2].m C[3].m M1.b M1.s",
                                 "TAP: M1.d x9.A", "OUT port: x9.Y"};
  for (const std::string bit : {"[0]", "[1]", "[2]", "[3]"}) {
    expected.insert("IN" + bit + " port: xa" + bit + ".A");
    expected.insert(": xa" + bit + ".Y xb" + bit + ".A");
    expected.insert("Q" + bit + " port: C" + bit + ".p" + (bit == "[2]" ? " M1.g" : "") + " xb" +
                    bit + ".Y");
  }
  EXPECT_EQ(nets_of_top(design), expected);
}

// What is ignored, shorted, missing or of no length; labels that meet; taps of a bus whose name
// another tap tells; a pin that only a format names; attributes named like what KIVO has of its
// own.
TEST(ImportXschem, OddSheets) {
  const scratch_directory scratch;
  const auto write = [&](const char* name, std::string_view text) {
    std::ofstream(scratch.path() / name) << "v {}\n" << text;
  };
  write("two.sym",
        "K {type=res format=\"@name @pinlist @VB @value\" template=\"name=Q1 class=a VB=V\"}\n"
        "B 5 -1 -31 1 -29 {name=A dir=in}\nB 5 -1 29 1 31 {name=B dir=out}\n"
        "T {@class} 0 0 0 0 1 1 {}\n");
  write("lab.sym", "K {type=label template=\"name=l lab=x\"}\nB 5 -1 -1 1 1 {name=p}\n");
  write("tap.sym", "K {type=bus_tap}\nB 5 -1 -1 1 1 {name=tap}\nB 5 19 -1 21 1 {name=bus}\n");
  write("top.sch",
        "N 0 -30 0 -30 {}\nN 0 30 100 30 {}\nN 0 -30 200 -30 {}\nN 300 0 300 90 {}\n"
        "C {two.sym} 0 0 0 0 {name=Q1 inst=b}\nC {two.sym} 100 0 0 0 {name=Q2 spice_ignore=short}\n"
        "C {two.sym} 0 60 0 0 {name=Q3 spice_ignore=true}\nC {none.sym} 0 -30 0 0 {name=x}\n"
        "C {lab.sym} 200 -30 0 0 {lab=K global=false}\nC {lab.sym} 100 -30 0 0 {lab=L}\n"
        "C {lab.sym} 300 90 0 0 {lab=D[3:0]}\nC {tap.sym} 280 50 0 0 {lab=[2:1]}\n"
        "C {tap.sym} 260 50 0 0 {lab=[1]}\nC {two.sym} 260 80 0 0 {name=Q4 VB=K}\n"
        "C {lab.sym} 260 110 0 0 {lab=P global=true}\n");
  auto design = gxi_read_xschem({{scratch.path() / "top.sch"}, {}});
  EXPECT_EQ(nets_of_top(design),
            (std::set<std::string>{"K: Q1.A Q1.B Q4.VB", "V: Q1.VB", "D[1]: Q4.A",
                                   "D[2]:", "D[0]:", "D[3]:", "P global: Q4.B"}));
  EXPECT_EQ(design.warnings.size(), 2U);  // the missing symbol, the label L
  std::string properties;
  for (const auto& property : design.cells[0].sheet->instances[0].properties)
    properties += property.name + (property.look ? "* " : " ");
  EXPECT_EQ(properties, "inst_ class_* ");
}

TEST(ImportXschem, ASecondImportWritesOnlyWhatChanged) {
  const scratch_directory scratch;
  const std::filesystem::path from = scratch.path() / "in", to = scratch.path() / "out";
  std::filesystem::copy(std::filesystem::path(KIVO_SOURCE_DIR) / "examples/import", from);
  const auto import = [&] {
    auto design = gxi_read_xschem({{from / "buffers.sch"}, {}});
    return gxi_write(design, {.root = to, .date = {}}).written;
  };
  EXPECT_GT(import(), 8);
  EXPECT_EQ(import(), 0);
  std::ofstream(from / "inv.sch", std::ios::app) << "T {more} 0 0 0 0 0.4 0.4 {}\n";
  EXPECT_EQ(import(), 1);
  EXPECT_TRUE(std::filesystem::exists(to / "inv/sheet.gx_1"));
  EXPECT_TRUE(std::filesystem::exists(to / "inv/sheet.gx_2"));

  std::ofstream(from / "inv.sch", std::ios::app) << "C {inv.sym} 0 0 0 0 {name=x1}\n";
  EXPECT_THROW(import(), std::runtime_error);  // it contains itself
  std::filesystem::remove_all(to);
  EXPECT_THROW(import(), std::runtime_error);
  EXPECT_FALSE(std::filesystem::exists(to));
}
