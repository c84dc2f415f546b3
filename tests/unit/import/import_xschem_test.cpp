// Drawings of xschem: records in odd forms, labels of several bits, versions of what is written.
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "import/build/output.h"
#include "import/xschem/attributes.h"
#include "import/xschem/labels.h"
#include "import/xschem/reader.h"
#include "import/xschem/records.h"
#include "import/xschem/tcl/tcl.h"
#include "tests/support/joined_words.h"
#include "tests/support/scratch_directory.h"

namespace {

// Every field of every record.
std::string xschem_told(const gxi_xschem_file_t& file) {
  std::ostringstream all;
  all << "v" << file.version << " K" << file.global << " G" << file.vhdl << " V" << file.verilog
      << " S" << file.spice << "@" << file.spice_line << " E" << file.tedax << " F" << file.spectre
      << "\n";
  const auto put = [&](gxi_xschem_point_t p) { all << ' ' << p.x << ',' << p.y; };
  for (const auto& shape : file.shapes) {
    all << shape.line << ' ' << shape.kind << shape.layer;
    for (const auto p : shape.points) put(p);
    if (shape.kind == 'A') all << " r" << shape.radius << ' ' << shape.start << ' ' << shape.sweep;
    all << " {" << shape.attributes << "}\n";
  }
  for (const auto& text : file.texts) {
    all << text.line << " T{" << text.text << "}";
    put(text.at);
    all << " r" << text.rotate << " f" << text.flip << ' ' << text.width << ' ' << text.height
        << " {" << text.attributes << "}\n";
  }
  for (const auto& component : file.components) {
    all << component.line << " C{" << component.symbol << "}";
    put(component.at);
    all << " r" << component.rotate << " f" << component.flip << " {" << component.attributes
        << "}\n";
    if (component.embedded) all << "[" << xschem_told(*component.embedded) << "]\n";
  }
  return all.str();
}

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
  const auto records = [&](std::string_view text) {
    return xschem_told(gxi_xschem_read_records(text, {"f", 0}, messages));
  };
  EXPECT_EQ(records("v {x}\r\nG {type=nmos}T {a \\{b\\} \\\\c} 1 2 3 1 .2 0.25 {hide=true\n}\n"
                    "# N 1\nN 0 1 2 3 {lab=#net1}\nL 4 -1 2 3e1 +4 {}\nB 5 1 2 3 4 {name=P}\n"
                    "A 6 1 2 3 4 -360 {}\nP 7 2 1 2\n3 4 {fill=true}P 4 0 {}\nS {R1\n\n}\nV{ver} "
                    "E {ted}F\n{spec}\nT {} 0 0 -1 0 1 1 {}\n"
                    "C {s.sym} -1.25e1 +3 6 0 {name=x1\nembed=true}\n[\nG {type=q}\nL 4 0 0 1 1 "
                    "{}\n]\nC {t.sym} 200000 -200000 1 1 {}\n[\nv {}\nK {}\nG {notes}\n]"),
            "vx Ktype=nmos Gtype=nmos Vver SR1\n"
            "\n"
            "@11 Eted Fspec\n"
            "5 N0 0,1 2,3 {lab=#net1}\n"
            "6 L4 -1,2 30,4 {}\n"
            "7 B5 1,2 3,4 {name=P}\n"
            "8 A6 1,2 r3 4 -360 {}\n"
            "9 P7 1,2 3,4 {fill=true}\n"
            "10 P4 {}\n"
            "2 T{a {b} \\c} 1,2 r3 f1 0.2 0.25 {hide=true\n"
            "}\n"
            "16 T{} 0,0 r3 f0 1 1 {}\n"
            "17 C{s.sym} -12.5,3 r2 f0 {name=x1\n"
            "embed=true}\n"
            "[v Ktype=q Gtype=q V S@0 E F\n"
            "21 L4 0,0 1,1 {}\n"
            "]\n"
            "23 C{t.sym} 200000,-200000 r1 f1 {}\n"
            "[v K Gnotes V S@0 E F\n"
            "]\n");
  EXPECT_EQ(records("K {now}G {then}"), "v Know Gthen V S@0 E F\n");
  EXPECT_TRUE(messages.empty());
  const std::map<std::string, std::string> refused{
      {"v {\n\nx", "f:1: a \"{\" that is not closed"},
      {"v {}\nN 1 2 x 4 {}", "f:2: a number expected"},
      {"N 1 2 3 1e9 {}", "f:1: a coordinate beyond 200000"},
      {"N 1 2 3 nan {}", "f:1: a number expected"},
      {"v {}\n]", "f:2: a \"]\" without \"[\""},
      {"[\n]", "f:1: a symbol that follows no component"},
      {"C {a} 0 0 0 0 {}\n[\n", "f:2: a \"[\" that is not closed"},
      {"N 1 2 3 -200001 {}", "f:1: a coordinate beyond 200000"},
      {"L -1 1 2 3 4 {}", "f:1: a layer expected"},
      {"L 4.5 1 2 3 4 {}", "f:1: a layer expected"},
      {"L 1001 1 2 3 4 {}", "f:1: a layer expected"},
      {"P 4 -1 {}", "f:1: a number of points expected"},
      {"P 4 100001 {}", "f:1: a number of points expected"},
      {"C {a} 0 0 8 0 {}", "f:1: a rotation of 0 to 3 expected"},
      {"C {a} 0 0 -4 0 {}", "f:1: a rotation of 0 to 3 expected"},
      {"C a 0 0 0 0 {}", "f:1: \"{\" expected"},
      {"v {a\\", "f:1: a \"{\" that is not closed"},
      {"C {a} 0 0 0 0 {}\n[\n[", "f:3: a symbol within a symbol"},
      {"C {a} 0 0 0 2 {}", "f:1: a flip of 0 or 1 expected"},
      {"Z {\n} 1 2\nv {}", "f:1: a record of the unknown kind \"Z\" is left out"}};
  for (const auto& [text, what] : refused) EXPECT_EQ(xschem_refusal(text), what);
}

TEST(ImportXschem, IsKnownByItsFirstRecord) {
  for (const auto* const text : {"v {", " \n\t\rv{", "G {}", "K  {"})
    EXPECT_TRUE(gxi_is_xschem(text)) << text;
  for (const auto* const text : {"", " ", "v", "v x{", "x {", "{", "v ", "N {"})
    EXPECT_FALSE(gxi_is_xschem(text)) << text;
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

TEST(ImportXschem, TclAsFarAsItIsRead) {
  gxi_xschem_tcl_scope_t scope;
  gxi_xschem_take_tcl(
      "tcleval([set ::corner tt][set none $x][set n 4] proc ::twice {a} {expr {$a * 2}}\n"
      "proc part {a b} {\n# note\n if {$a > 1} {return \"<$b>\"} elseif {$a} then {set c $b} else "
      "{set c [twice 3]}\n; set d ${c}$::corner}\nproc f {} {catch {expr {1+1}} r; return $r})",
      scope);
  gxi_xschem_take_tcl("[set lost 1]", scope);
  const struct {
    const char *text, *given;
    bool is_plain = true;
  } cases[] = {
      {"plain [x] $y", "plain [x] $y"},
      {"  tcleval( a b )\n", " a b "},
      {"tcleval(a", "a"},
      {"tcleval(", ""},
      {"tcleval(A[3] x $corner-${corner}:$::corner $)", "A[3] x tt-tt:tt $"},
      {"tcleval($none)", "$none", false},
      {"tcleval($lost)", "$lost", false},
      {"tcleval([if {[sim_is_ngspice]} {return a} else {return b}])", "a"},
      {"tcleval([if {! ![sim_is_Xyce]} then {return a} elseif { 1 } {return \"b c\"}])", "b c"},
      {"tcleval([if {![sim_is_spectre]} return])", ""},
      {"tcleval([if {off} {return a}])", ""},
      {"tcleval([if {off} {return a} {return b}])", "b"},
      {"tcleval([if {what} {return a} {return b}])", "a", false},
      {"tcleval([if {what} {return} {return b}])", "b", false},
      {"tcleval(a [unknown b] c)", "a  c", false},
      {"tcleval([abs_sym_path lib/x.lib])", "lib/x.lib"},
      {"tcleval([read_data [abs_sym_path a.b]] [read_data_nonewline c])",
       ".include a.b .include c"},
      {"tcleval([abs_sym_paths x])", "", false},
      {"tcleval(a[ @@A @@B ] [ @@C ] [ return @@D ])", "a[ @@A @@B ] [ @@C ] @@D"},
      {"tcleval([expr 2*3] [expr {7/2.0}])", "6 3.5"},
      {"tcleval([expr {7/2}])", "", false},
      {"tcleval([set n] [set m 3])", "4 3"},
      {"tcleval([twice $n] [twice 2.5])", "8 5"},
      {"tcleval([twice])", "", false},
      {"tcleval([part 2 x] [part 1 x] [part 0 x])", "<x> xtt 6tt"},
      {"tcleval([f])", "2"},
      {"tcleval([catch {unknown}])", "", false},
      {"tcleval([return a[abs_sym_path b c]d e])", "ab cd"},
      {"tcleval([open", "[open"},
  };
  for (const auto& [text, given, is_plain] : cases) {
    const auto read = gxi_xschem_plain_tcl(text, scope);
    EXPECT_EQ(read.text, given) << text;
    EXPECT_EQ(read.is_plain, is_plain) << text;
  }
  for (const auto& [deep, is_read] : {std::pair{20, true}, {2000, false}}) {
    std::string nested = "tcleval(";
    for (int i = 0; i < deep; ++i) nested += "[return ";
    nested += 'x' + std::string(static_cast<std::size_t>(deep), ']') + ")";
    const auto read = gxi_xschem_plain_tcl(nested, scope);
    EXPECT_EQ(read.is_plain, is_read) << deep;
    EXPECT_EQ(read.text, is_read ? "x" : "") << deep;
  }
  for (const auto* const yes : {"true", "OPEN", "1", "yes", "on", "t", "y"})
    EXPECT_EQ(gxi_xschem_truth(yes), true) << yes;
  for (const auto* const no : {"", "False", "0", "no", "off", "f", "n"})
    EXPECT_EQ(gxi_xschem_truth(no), false) << no;
  EXPECT_EQ(gxi_xschem_truth("2"), std::nullopt);
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
  std::int16_t day = 0;  // a later one is no change
  const auto import = [&] {
    auto design = gxi_read_xschem({{from / "buffers.sch"}, {}});
    return gxi_write(design, {.root = to, .date = {++day, 1, 2000}}).written;
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
