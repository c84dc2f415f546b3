// EXPlain NET: the reasons for which nets of sheets are one flat net.
#include <algorithm>
#include <set>

#include "gx/db/objects_of.h"
#include "gx/text/messages/message_list.h"
#include "tests/unit/expand/flatten_fixture.h"

namespace {

// The line with the ids of objects as "#".
std::string without_ids(std::string line) {
  for (const std::string_view mark : {"N_", "I_", "P_", "vertex "}) {
    for (auto at = line.find(mark); at != line.npos; at = line.find(mark, at + 1)) {
      const auto from = at + mark.size();
      const auto end = std::min(line.find_first_not_of("0123456789", from), line.size());
      if (end > from) line.replace(from, end - from, "#");
    }
  }
  return line;
}

class ExplainTest : public FlattenTest {
 protected:
  // The rows, whole where the list breaks them.
  lines_t rows(const std::string& words) {
    constexpr std::string_view further = "#    ";
    lines_t lines;
    for (const auto& line : session.run("EXPLAIN NET " + words)) {
      EXPECT_LE(line.size(), gx_list_columns) << line;
      if (line.starts_with(further)) {
        lines.back() += line.substr(further.size() - 1);
      } else {
        lines.push_back(line);
      }
    }
    return lines;
  }
  lines_t explain(const std::string& words) {
    lines_t lines = rows(words);
    std::ranges::transform(lines, lines.begin(), without_ids);
    return lines;
  }
};

TEST_F(ExplainTest, EveryWayOfJoiningHasItsWords) {
  EXPECT_EQ(explain("/A"), (lines_t{"# EXPlain NET /A ", "# !! Error : No expanded design ? "}));
  // On the top: a shared pin and vertex, an equal name, a global met only inside X, one beside.
  run("symbol tie\n pin A 0,0 IN\n pin B 0,4 IN\n"
      "sheet tie\n port A p 0,0\n port B p 0,9\n part R1 r 2,0\n global VDD g 20,20\n"
      " net IN\n  wire A R1.1\n"
      " net OUT\n  wire B R1.2\n net OUT\n  wire 20,20 30,20\n"
      "sheet top\n part X tie 2,0\n part R r 10,0\n part S r 20,0\n global VDD g 40,0\n"
      " net M\n  wire R.2 16,0 S.1\n net\n  wire S.1 20,9\n net\n  wire M@16,0 16,9\n"
      " net m\n  wire X.A 0,0\n"
      " net P\n  wire X.B 0,20\n net\n  wire 40,0 44,0\n");
  EXPECT_EQ(explain("/m"), (lines_t{"# NET 2 : \"/M\" name \"M\"", "#   kind local",
                                    "#   nets 5 on sheets 2 ; pins in 2 out 1 both 0",
                                    "#   /M : top/sheet.gx_1 N_# : the net itself",
                                    "#   /N_# : top/sheet.gx_1 N_# at 1.00 0.0 : shared pin P_#",
                                    "#   /N_# : top/sheet.gx_1 N_# at 0.80 0.0 : shared vertex #",
                                    "#   /m : top/sheet.gx_1 N_# : same NET name as N_#",
                                    "#   /X/IN : tie/sheet.gx_1 N_# : port A of /X, pin /X/A",
                                    "#   pin in /X/R1/1", "#   pin in /S/1", "#   pin out /R/2",
                                    " EXPlain NET /m "}));
  EXPECT_EQ(explain("/vdd"),
            (lines_t{"# NET 1 : \"/VDD\" name \"VDD\"", "#   kind global",
                     "#   nets 4 on sheets 2 ; pins in 0 out 1 both 0",
                     "#   /P : top/sheet.gx_1 N_# : global VDD inside /X, pin /X/B",
                     "#   /N_# : top/sheet.gx_1 N_# at 2.00 0.0 : global VDD, instance I_#",
                     "#   /X/OUT : tie/sheet.gx_1 N_# : port B of /X, pin /X/B",
                     "#   /X/OUT : tie/sheet.gx_1 N_# : same NET name as N_#",
                     "#   pin out /X/R1/2", " EXPlain NET /vdd "}));
  // The vertex is the one where segments of both nets end.
  const std::string line = rows("/M")[5];
  const int net = std::stoi(line.substr(line.find("/N_") + 3));
  const int vertex = std::stoi(line.substr(line.rfind(' ')));
  EXPECT_EQ(line, "#   /N_" + std::to_string(net) + " : top/sheet.gx_1 N_" + std::to_string(net) +
                      " at 0.80 0.0 : shared vertex " + std::to_string(vertex));
  const auto& file = gx_ptrto_gene_file_buf(kv_pext.arrayof_file[0].file_index);
  std::set<int> nets;
  for (const int id : lb_nets(file)) {
    for (const int segment : lb_segments(file, id)) {
      const auto& ends = *gx_object_as<gx_object_segment_rec_t>(file, segment);
      if (ends.vertex1 == vertex || ends.vertex2 == vertex) nets.insert(id);
    }
  }
  EXPECT_EQ(nets, (std::set{kv_ptrto_net_rec(2).object_id + 0, net}));
  // A pin stands for its net; what is no net is told.
  EXPECT_EQ(explain("R.2").front(), "# NET 2 : \"/M\" name \"M\"");
  EXPECT_EQ(explain("/R"), (lines_t{"# EXPlain NET /R ", "# !! Error : Net NOT FOUND ? ",
                                    "# !! No net : \"/R\""}));
}

// Names that join the nets of a sheet in an order that is not that of their ids; more than 200
// rows; the rows of one block.
TEST_F(ExplainTest, ReasonsNameNetsToldBeforeThem) {
  std::string sheets =
      "symbol s\n pin A 0,0 IN\nsheet s\n port A p 0,0\n part R r 2,0\n net A\n  wire 160,9 "
      "160,20\n";
  for (int i = 0; i < 60; ++i) {  // a chain: each meets the one before at a vertex
    const std::string before = i == 0 ? "A" : "C" + std::to_string(i - 1);
    sheets += " net C" + std::to_string(i) + "\n  wire " + before + "@" + std::to_string(160 - i) +
              ",9 " + std::to_string(159 - i) + ",9\n";
  }
  sheets +=
      " net A\n  wire A R.1\n"
      "sheet top\n part X s 2,0\n part Y s 2,9\n part Z s 2,18\n part W s 2,27\n"
      " net T\n  wire X.A Y.A Z.A W.A\n";
  run(sheets);
  const auto check = [](const lines_t& lines) {
    std::set<std::string> told;
    int rows = 0;
    for (const auto& line : lines) {
      const auto at = line.find("sheet.gx_1 N_");
      if (at == line.npos) continue;
      ++rows;
      const auto id = line.substr(at + 11, line.find(' ', at + 11) - at - 11);
      told.insert(id);
      const auto named = line.find("name as N_");
      if (named == line.npos) continue;
      EXPECT_TRUE(told.contains(line.substr(named + 8))) << line;
    }
    return rows;
  };
  const auto lines = rows("/T");
  EXPECT_EQ(lines[2], "#   nets 249 on sheets 5 ; pins in 4 out 0 both 0");
  EXPECT_EQ(lines[lines.size() - 2], "# ... and 53 more : EXPlain NET /T ALl ");
  EXPECT_EQ(check(lines), 200);
  EXPECT_EQ(check(rows("/T AL")), 249);
  const auto share = rows("/T IN y");
  EXPECT_EQ(share[2], "#   nets 62 on sheets 1 ; pins in 1 out 0 both 0");
  EXPECT_EQ(check(share), 62);
  EXPECT_EQ(rows("/T IN /Y/Q"),
            (lines_t{"# EXPlain NET /T IN /Y/Q ", "# !! Error :  5th parameter incorrect ? "}));
  EXPECT_EQ(rows("/T SOME")[1], "# !! Error :  4th parameter incorrect ? ");
}

TEST_F(ExplainTest, ABitIsExplainedByTheNetsOfItsBusThatHoldIt) {
  run("symbol one\n pin A 0,0 IN\n symbol two\n pin D 0,0 IN bits 0:1\n"
      "sheet one\n port A p 0,0\n part R r 2,0\n net A\n  wire A R.1\n"
      "sheet two\n port D p 0,0 bits 0:1\n part X one 4,0\n bus D 0:1\n  wire D X.A\n  bit 1 X.A\n"
      "sheet top\n part T two 2,0\n bus D 0:3\n  wire T.D 0,0\n  bit 1 T.D\n");
  const lines_t bit_2 = {
      "# NET 4 : \"/D_2\" name \"D_2\"",
      "#   kind bit, bit 2 of bus \"/D\" (1)",
      "#   nets 3 on sheets 3 ; pins in 1 out 0 both 0",
      "#   /D : top/sheet.gx_1 N_# : bit 2 of bus D",
      "#   /T/D : two/sheet.gx_1 N_# : bit 2 of bus D",
      "#   /T/X/A : one/sheet.gx_1 N_# : port A of /T/X, pin /T/X/A, bit 2 of bus D",
      "#   pin in /T/X/R/1",
      " EXPlain NET /D_2 "};
  EXPECT_EQ(explain("/D_2"), bit_2);
  EXPECT_EQ(explain("/T/X/A").front(), bit_2.front());
  // Those on both sides do not go down.
  EXPECT_EQ(explain("/D_0").size(), 5U);
  EXPECT_EQ(explain("/D_3").size(), 5U);
  EXPECT_EQ(explain("/D")[4],
            "#   /T/D : two/sheet.gx_1 N_# : port D[0:1] of /T, pin /T/D, bits 1 to 2 of bus D");
}

}  // namespace
