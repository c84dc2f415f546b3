// Drawings of Lepton EDA: records in odd forms, projects, versions of what is written.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "import/build/output.h"
#include "import/lepton/file.h"
#include "import/lepton/path.h"
#include "import/lepton/picture.h"
#include "import/lepton/project.h"
#include "import/lepton/reader.h"
#include "tests/support/scratch_directory.h"

namespace {

namespace fs = std::filesystem;

std::ostream& operator<<(std::ostream& out, gxi_lepton_point_t p) {
  return out << ' ' << p.x << ',' << p.y;
}

std::ostream& operator<<(std::ostream& out, const gxi_lepton_texts_t& texts) {
  for (const auto& text : texts)
    out << text.line.number << " T" << text.at << " c" << text.color << " s" << text.size
        << (text.visible ? " seen" : "") << " show" << static_cast<int>(text.show) << " r"
        << text.rotate << " a" << text.alignment << ' ' << text.text << '\n';
  return out;
}

// Every field of every record.
std::string lepton_told(const gxi_lepton_file_t& file) {
  std::ostringstream all;
  for (const auto& shape : file.shapes) {
    all << shape.line.number << ' ' << shape.kind << " c" << shape.color << " w" << shape.width
        << (shape.dashed ? " dashed" : "") << (shape.filled ? " filled" : "");
    for (const auto p : shape.points) all << p;
    if (shape.radius != 0) all << " r" << shape.radius << ' ' << shape.start << ".." << shape.sweep;
    for (const auto& step : shape.path) {
      all << ' ' << step.kind;
      for (const auto p : step.points) all << p;
    }
    all << '\n';
  }
  all << file.texts << "attached\n" << file.attached;
  for (const auto& net : file.nets)
    all << net.line.number << " N c" << net.color << net.from << net.to << '\n' << net.attributes;
  for (const auto& pin : file.pins)
    all << pin.line.number << (pin.bus ? " bus" : " P") << " c" << pin.color << pin.tip << pin.root
        << '\n'
        << pin.attributes;
  for (const auto& component : file.components) {
    all << component.line.number << " C" << component.at << " r" << component.rotate
        << (component.mirror ? " m " : " ") << component.symbol << '\n'
        << component.attributes;
    if (component.embedded) all << "[\n" << lepton_told(*component.embedded) << "]\n";
  }
  return all.str();
}

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
      "v 20220529 2\r\n\n# a comment\nL 0 0 10 20 3\nL 1 2 3 4 5 6 0 1 -1 -1\n"
      "B -5 -5 10 20 3 30 0 2 75 50 1 -1 -1 -1 -1 -1\nB 1 2 3 4 5 -6 0 0 0 0 2\n"
      "V 1 2 3 4\nV 1 2 3 4 5 0 1 0 0 1\nA 10 20 5 30 -90 3\nA 0 1 2 3 4 5 6 0 1\n"
      "T 1 2 9 10 1 0 270 8 2\nfirst\n}\n{\nT 0 3 5 0 0 2 -90 0 1\nx=y\n\nT 4 5 6 7 1\nz\n}\n"
      "G 1 2 3 4 0 0 1\nname\nAAA\n.\nG 5 6 7 8 0 0\nnot within\nU 0 0 0 9\nU 1 2 3 4 5 -1\n"
      "N 1 2 3 4\n{\nT 0 0 5 8 0 0 0 0 1\nnetname=n\n}\nN 5 6 7 8 9\n"
      "P 0 50 100 50 1 0 0\nP 1 2 9 8 7 1 1\n"
      "H 3 10 0 1 -1 -1 1 -1 -1 -1 -1 -1 3\nm 1,1 4 4 L 2.6,-7\nC 0,0 8,0 9,9zl 1 1\n"
      "c 1,2,3 4 5 6 +1 1 1 1 1 1 M7 8\n"
      "C 100 200 1 90 1 EMBEDDEDa b.sym \n[\nL 100 200 101 202 3\nH 3 0 0 0 -1 -1 0 -1 -1 -1 -1 -1 "
      "1\nM 100,200\nT 110 220 9 10 1 0 0 0 1\nin\nP 150 200 300 200 1 0 0\n{\n"
      "T 150 200 5 8 0 0 0 0 1\npinnumber=1\n}\n]\n{\nT 0 0 5 8 0 0 0 0 1\nrefdes=U1\n}\n"
      "C 7 8 1 -90 1 x.sym\nC 7 8 1 0 0 y.sym\nF old\n",
      "f");
  EXPECT_EQ(lepton_told(file),
            "4 L c3 w0 0,0 10,20\n"
            "5 L c5 w6 dashed 1,2 3,4\n"
            "6 B c3 w30 dashed filled -5,-5 5,15\n"
            "7 B c5 w0 1,2 4,6\n"
            "8 V c4 w0 1,2 r3 0..360\n"
            "9 V c4 w5 dashed filled 1,2 r3 0..360\n"
            "10 A c3 w0 10,20 r5 30..-90\n"
            "11 A c5 w6 dashed 0,1 r2 3..4\n"
            "22 G c3 w0 1,2 4,6\n"
            "26 G c3 w0 5,6 12,14\n"
            "28 U c10 w0 0,0 0,9\n"
            "29 U c5 w0 1,2 3,4\n"
            "38 H c3 w10 dashed filled M 1,1 L 5,5 L 3,-7 C 0,0 8,0 9,9 z L 2,2 C 3,4 5,6 7,8 C "
            "8,9 8,9 8,9 M 7,8\n"
            "12 T 1,2 c9 s10 seen show0 r3 a8 first\n"
            "}\n"
            "attached\n"
            "16 T 0,3 c5 s1 show2 r3 a0 x=y\n"
            "19 T 4,5 c6 s7 seen show0 r0 a0 z\n"
            "30 N c4 1,2 3,4\n"
            "32 T 0,0 c5 s8 show0 r0 a0 netname=n\n"
            "35 N c9 5,6 7,8\n"
            "36 P c1 0,50 100,50\n"
            "37 bus c7 9,8 1,2\n"
            "42 C 100,200 r0 a b.sym\n"
            "56 T 0,0 c5 s8 show0 r0 a0 refdes=U1\n"
            "[\n"
            "44 L c3 w0 0,0 1,2\n"
            "45 H c3 w0 M 0,0\n"
            "47 T 10,20 c9 s10 seen show0 r0 a0 in\n"
            "attached\n"
            "49 P c1 50,0 200,0\n"
            "51 T 50,0 c5 s8 show0 r0 a0 pinnumber=1\n"
            "]\n"
            "59 C 7,8 r3 m x.sym\n"
            "60 C 7,8 r0 y.sym\n");
  std::ostringstream lines_of_path;
  for (const auto& line : gxi_lepton_lines(file.shapes.back().path)) {
    for (const auto p : line) lines_of_path << p;
    lines_of_path << '\n';
  }
  EXPECT_EQ(lines_of_path.str(),
            " 1,1 5,5 3,-7 2,-5 3,-3 3,-1 5,0 6,2 7,4 8,6 9,9 1,1\n"
            " 1,1 2,2 2,3 3,4 3,4 4,5 5,6 6,7 6,7 7,8 7,8 8,9 8,9 8,9 8,9 8,9 8,9 8,9\n");
  // Where no pin says which end is joined, it is the outer one: of each symbol by itself.
  const auto pins = gxi_lepton_read_file(
      "v 1 2\nB 0 0 100 100 3\nP 0 50 -100 50 1\nP 100 60 200 60 1\nP 50 0 50 -90\n"
      "P 50 300 50 100 1 0\nC 0 0 1 0 0 EMBEDDEDs\n[\nP 1000 0 1100 0 1\nP 700 0 800 0\n]\n",
      "f");
  EXPECT_EQ(lepton_told(pins),
            "2 B c3 w0 0,0 100,100\n"
            "attached\n"
            "3 P c1 -100,50 0,50\n"
            "4 P c1 200,60 100,60\n"
            "5 P c1 50,-90 50,0\n"
            "6 P c1 50,300 50,100\n"
            "7 C 0,0 r0 s\n"
            "[\n"
            "attached\n"
            "9 P c1 1100,0 1000,0\n"
            "10 P c1 700,0 800,0\n"
            "]\n");
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
      {"v 1 2\nT 0 0 9 10 1 0 0 0 -1\n", "f:2: a number of lines expected"},
      {"v 1 2\nT 0 0 9 10 1 3\na\n", "f:2: 0 (name and value), 1 (value) or 2 (name) expected"},
      {"v 1 2\nT 0 0 9 10 1 -1\na\n", "f:2: 0 (name and value), 1 (value) or 2 (name) expected"},
      {"v 1 2\nC 0 0 1 0 0 a\n[\n[\n", "f:4: a symbol within a symbol"},
      {"v 1 2\nH 3 0 0 0 -1 -1 0 -1 -1 -1 -1 -1 1\nM 1,1 q\n",
       "f:2: a path with the unknown step \"q\""},
      {"v 1 2\nH 3 0 0 0 -1 -1 0 -1 -1 -1 -1 -1 1\nM 9,9 m 399999,0\n",
       "f:2: a path with a place that is no pair of numbers, or too far away"},
      {"v 1 2\nH 3 0 0 0 -1 -1 0 -1 -1 -1 -1 -1 1\nM 9,9 C 1 1 2 2 3\n",
       "f:2: a path with a place that is no pair of numbers, or too far away"},
      {"v 1 2\nZ 1\n", "f:2: a record of the unknown kind \"Z\""}};
  for (const auto& [text, what] : refused) EXPECT_EQ(lepton_refusal(text), what);
}

TEST(ImportLepton, IsKnownByItsVersion) {
  for (const auto* const text : {"v 1", "v\t0 2", "v 9\n"})
    EXPECT_TRUE(gxi_is_lepton(text)) << text;
  for (const auto* const text : {"", "v ", "w 1", "v{1", "v12", "v x", "v :", "v /"})
    EXPECT_FALSE(gxi_is_lepton(text)) << text;
}

TEST(ImportLepton, TextsAreSeenAsTheirMarksSay) {
  gxi_lepton_text_t text{.text = "value=10k"};
  EXPECT_EQ(gxi_lepton_seen(text), "value=10k");
  text.show = gxi_lepton_text_t::show_t::value;
  EXPECT_EQ(gxi_lepton_seen(text), "10k");
  text.show = gxi_lepton_text_t::show_t::name;
  EXPECT_EQ(gxi_lepton_seen(text), "value");
  for (const auto* const plain : {"not = one", "not =one", "not= one", "not\none=this", "=x", ""}) {
    text.text = plain;
    EXPECT_EQ(gxi_lepton_seen(text), plain);
    EXPECT_EQ(text.value(), "");
  }
  text.text = "a b==";
  EXPECT_EQ(text.name(), "a b");
  EXPECT_EQ(text.value(), "=");
  text.visible = false;
  EXPECT_EQ(gxi_lepton_seen(text), "");
  EXPECT_EQ(gxi_lepton_plain(R"(R/\_W\_ \\ \_X)"), "R/~W \\ ~X");
}

TEST(ImportLepton, TheProjectNamesLibrariesAndMangling) {
  gxi_lepton_project_t project;
  gxm_messages_t messages;
  std::list<std::string> files;
  ASSERT_EQ(::setenv("KIVO_PLACE", "d/", 1), 0);
  gxi_lepton_take_scheme(
      "; (component-library \"no\")\n#| (source-library \"no\")\n |#(component-library \"a\")\n"
      "(component-library\n \"/b\" \"name\")(component-library-search "
      "\"${KIVO_PLACE}${NO_SUCH_NAME}c\")\n"
      "(source-library \"s\\\"t\")(load \"x\")(component-library (build-path \"q\"))(",
      "gafrc", "/top", project, files, messages);
  gxi_lepton_take_config(
      "# c\n[netlist.hierarchy]\nmangle-net-attribute = false\nmangle-netname-attribute=true\n"
      "[other]\nmangle-netname-attribute=false\n[netlist]\nnet-naming-priority=netname-attribute\n",
      project);
  ASSERT_EQ(project.symbols.size(), 3U);
  EXPECT_EQ(project.symbols[0].directory, "/top/d/c");  // the last one first
  EXPECT_TRUE(project.symbols[0].deep);
  EXPECT_EQ(project.symbols[2].directory, "/top/a");
  EXPECT_EQ(project.sheets.at(0).directory, "/top/s\"t");
  EXPECT_FALSE(project.net_is_local);
  EXPECT_TRUE(project.netname_is_local && project.netname_wins && project.walks_down);
  EXPECT_EQ(messages, (gxm_messages_t{"/top/x:1: cannot be read: No such file or directory",
                                      "gafrc:6: \"(component-library ...)\" is not followed",
                                      "gafrc:6: a \"(\" that is not closed"}));
}

TEST(ImportLepton, PagesThatAreTooLargeForOneSheet) {
  const scratch_directory scratch;
  for (const auto* const line : {"L -400000 0 400000 0 3", "L 0 -400000 0 400000 3"}) {
    std::vector<fs::path> pages;
    for (const char* const name : {"a", "b", "c", "d", "e"}) {
      pages.push_back(scratch.path() / name);
      std::ofstream(pages.back()) << "v 1 2\n" << line << "\n";
    }
    try {
      gxi_read_lepton({pages, {}});
      ADD_FAILURE() << line;
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), pages[0].string() + ":1: its pages are too large for one sheet");
    }
    pages.pop_back();
    EXPECT_EQ(gxi_read_lepton({pages, {}}).cells.at(0).sheet->shapes.size(), 4U);
  }
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
