// Drawings of Lepton EDA: records in odd forms, projects, versions of what is written.
#include <filesystem>
#include <fstream>
#include <map>

#include "import/build/output.h"
#include "import/lepton/file.h"
#include "import/lepton/path.h"
#include "import/lepton/picture.h"
#include "import/lepton/project.h"
#include "import/lepton/reader.h"
#include "tests/support/scratch_directory.h"

namespace {

namespace fs = std::filesystem;

std::string lepton_refusal(const std::string& text) {
  try {
    gxi_lepton_read_file(text, "f");
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

}  // namespace

TEST(ImportLepton, RecordsInOddForms) {
  const auto file = gxi_lepton_read_file(
      "v 20220529 2\r\nL 0 0 10 20 3\nB -5 -5 10 20 3 30 0 2 75 50 1 -1 -1 -1 -1 -1\nV 1 2 3 4\n"
      "A 0 0 5 0 -90 3 0 0 0 -1 -1\nT 1 2 9 10 1 0 270 8 2\nfirst\n}\n{\nT 0 0 5 8 0 2 0\nx=y\n}\n"
      "G 0 0 9 9 0 0 1\nname\nAAA\n.\nU 0 0 0 9 10 -1\nN 1 1 1 1 4\nP 0 50 100 50 1\nP 0 0 9 9 1 1 "
      "1\n"
      "H 3 0 0 0 -1 -1 0 -1 -1 -1 -1 -1 2\nm 1,1 4 4\nC 0,0 8,0 9,9z\n"
      "C 100 200 1 90 1 EMBEDDEDa b.sym\n[\nP 150 200 300 200 1 0 0\n{\nT 150 200 5 8 0 0 0 0 1\n"
      "pinnumber=1\n}\n]\n{\nT 0 0 5 8 0 0 0 0 1\nrefdes=U1\n}\n\n",
      "f");
  ASSERT_EQ(file.shapes.size(), 7U);
  EXPECT_TRUE(file.shapes[1].filled && file.shapes[1].dashed);
  EXPECT_EQ(file.shapes[1].points[1], (gxi_lepton_point_t{5, 15}));
  EXPECT_EQ(file.texts.at(0).text, "first\n}");
  EXPECT_EQ(file.texts[0].rotate, 3);
  EXPECT_EQ(file.attached.at(0).name(), "x");
  EXPECT_EQ(file.pins.at(0).tip,
            (gxi_lepton_point_t{100, 50}));  // the outer end, where none is told
  EXPECT_TRUE(file.pins.at(1).bus);
  EXPECT_EQ(file.pins.at(1).tip, (gxi_lepton_point_t{9, 9}));
  const auto lines = gxi_lepton_lines(file.shapes[6].path);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].size(), 11U);
  EXPECT_EQ(lines[0][1], (gxi_lepton_point_t{5, 5}));
  EXPECT_EQ(lines[0].back(), lines[0].front());
  // What is embedded stands on the page as it is seen.
  const auto& component = file.components.at(0);
  EXPECT_EQ(component.symbol, "a b.sym");
  EXPECT_EQ(component.rotate, 0);
  EXPECT_EQ(component.embedded->pins.at(0).tip, (gxi_lepton_point_t{50, 0}));
  EXPECT_EQ(gxi_lepton_value(component.attributes, "refdes"), "U1");

  const std::map<std::string, std::string> refused{
      {"", "f:1: a version line expected"},
      {"L 0 0 1 1 3\n", "f:1: a version line expected"},
      {"v 1 2\nL 0 0 1 x\n", "f:2: 4 numbers expected"},
      {"v 1 2\nL 0 0 1 1 3 0 0 0 -1 -1 7\n", "f:2: not more than 10 numbers"},
      {"v 1 2\nN 0 0 0 400001 4\n", "f:2: a coordinate beyond 400000"},
      {"v 1 2\nN 0 0 0 99999999999 4\n", "f:2: 4 numbers expected"},
      {"v 1 2\nT 0 0 9 10 1 0 0 0 3\na\nb\n", "f:2: lines of the text are missing"},
      {"v 1 2\nT 0 0 9 10 1 0 45 0 1\na\n", "f:2: an angle of 0, 90, 180 or 270 expected"},
      {"v 1 2\nT 0 0 9 10 1 0 0 9 1\na\n", "f:2: an alignment of 0 to 8 expected"},
      {"v 1 2\n{\n}\n", "f:2: a \"{\" that follows no object"},
      {"v 1 2\nN 0 0 1 1 4\n{\n", "f:3: a \"{\" that is not closed"},
      {"v 1 2\nN 0 0 1 1 4\n{\nL 0 0 1 1 3\n}\n", "f:4: a text or \"}\" expected"},
      {"v 1 2\nN 0 0 1 1 4\n[\n]\n", "f:3: a \"[\" that follows no component"},
      {"v 1 2\nC 0 0 1 0 0 a\n[\n]\n[\n]\n", "f:5: a \"[\" that follows no component"},
      {"v 1 2\nC 0 0 1 0 0 EMBEDDEDa.sym\n[\n", "f:3: a \"[\" that is not closed"},
      {"v 1 2\nC 0 0 1 0 0 a\n[\nC 0 0 1 0 0 b\n]\n", "f:4: a component within a symbol"},
      {"v 1 2\nC 0 0 1 0 0\n", "f:2: the name of a symbol expected"},
      {"v 1 2\nG 0 0 1 1 0 0 1\nx\nAA\n", "f:2: lines of the picture are missing"},
      {"v 1 2\nH 3 0 0 0 -1 -1 0 -1 -1 -1 -1 -1 1\nL 1,1\n", "f:2: a path with no beginning"},
      {"v 1 2\nZ 1\n", "f:2: a record of the unknown kind \"Z\""}};
  for (const auto& [text, what] : refused) EXPECT_EQ(lepton_refusal(text), what);
}

TEST(ImportLepton, TextsAreSeenAsTheirMarksSay) {
  gxi_lepton_text_t text{.text = "value=10k"};
  EXPECT_EQ(gxi_lepton_seen(text), "value=10k");
  text.show = gxi_lepton_text_t::show_t::value;
  EXPECT_EQ(gxi_lepton_seen(text), "10k");
  text.show = gxi_lepton_text_t::show_t::name;
  EXPECT_EQ(gxi_lepton_seen(text), "value");
  text.text = "not = one";
  EXPECT_EQ(gxi_lepton_seen(text), "not = one");
  text.visible = false;
  EXPECT_EQ(gxi_lepton_seen(text), "");
  EXPECT_EQ(gxi_lepton_plain(R"(R/\_W\_ \\ \_X)"), "R/~W \\ ~X");
}

TEST(ImportLepton, TheProjectNamesLibrariesAndMangling) {
  gxi_lepton_project_t project;
  gxm_messages_t messages;
  std::list<std::string> files;
  gxi_lepton_take_scheme(
      "; (component-library \"no\")\n#| (source-library \"no\")\n |#(component-library \"a\")\n"
      "(component-library\n \"/b\" \"name\")(component-library-search \"${NO_SUCH_NAME}c\")\n"
      "(source-library \"s\\\"t\")(load \"x\")(component-library (build-path \"q\"))(",
      "gafrc", "/top", project, files, messages);
  gxi_lepton_take_config(
      "# c\n[netlist.hierarchy]\nmangle-net-attribute = false\nmangle-netname-attribute=true\n"
      "[other]\nmangle-netname-attribute=false\n[netlist]\nnet-naming-priority=netname-attribute\n",
      project);
  ASSERT_EQ(project.symbols.size(), 3U);
  EXPECT_EQ(project.symbols[0].directory, "/top/c");  // the last one first
  EXPECT_TRUE(project.symbols[0].deep);
  EXPECT_EQ(project.symbols[2].directory, "/top/a");
  EXPECT_EQ(project.sheets.at(0).directory, "/top/s\"t");
  EXPECT_FALSE(project.net_is_local);
  EXPECT_TRUE(project.netname_is_local && project.netname_wins && project.walks_down);
  EXPECT_EQ(messages, (gxm_messages_t{"/top/x:1: cannot be read: No such file or directory",
                                      "gafrc:6: \"(component-library ...)\" is not followed",
                                      "gafrc:6: a \"(\" that is not closed"}));
}

TEST(ImportLepton, ASecondImportWritesOnlyWhatChanged) {
  const scratch_directory scratch;
  const fs::path from = scratch.path() / "in", to = scratch.path() / "out";
  fs::copy(fs::path(KIVO_SOURCE_DIR) / "examples/import/lepton", from);
  const auto import = [&] {
    auto design = gxi_read_lepton({{from / "preamp.sch"}, {}});
    return gxi_write(design, {.root = to, .date = {}}).written;
  };
  EXPECT_GT(import(), 8);
  EXPECT_EQ(import(), 0);
  std::ofstream(from / "stage.sch", std::ios::app) << "T 0 0 9 10 1 0 0 0 1\nmore\n";
  EXPECT_EQ(import(), 1);
  std::ofstream(from / "stage.sch", std::ios::app)
      << "C 9000 0 1 0 0 stage.sym\n{\nT 0 0 5 8 0 0 0 0 1\nrefdes=S1\n}\n";
  EXPECT_THROW(import(), std::runtime_error);  // it contains itself
  fs::remove(from / "cap.sym");
  fs::remove_all(to);
  EXPECT_THROW(import(), std::runtime_error);
  EXPECT_FALSE(fs::exists(to));
}
