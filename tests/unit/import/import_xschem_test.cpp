// Drawings of xschem: records in odd forms, labels of several bits, versions of what is written.
#include <filesystem>
#include <fstream>
#include <map>

#include "import/build/output.h"
#include "import/xschem/attributes.h"
#include "import/xschem/labels.h"
#include "import/xschem/reader.h"
#include "import/xschem/records.h"
#include "tests/support/joined_words.h"
#include "tests/support/scratch_directory.h"

namespace {

std::string xschem_refusal(std::string_view text) {
  gxm_messages_t messages;
  try {
    gxi_xschem_read_records(text, {"f", 0}, messages);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return messages.empty() ? "" : messages.front();
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
  for (const auto& [text, what] : refused) EXPECT_EQ(xschem_refusal(text), what);
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
  for (const auto& [label, names] : bits) EXPECT_EQ(joined_words(gxi_xschem_bits(label)), names);
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
