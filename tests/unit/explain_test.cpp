// EXPlain NET: the reasons for which nets of sheets are one flat net.
#include <algorithm>
#include <set>

#include "gx/db/objects_of.h"
#include "tests/unit/flatten_fixture.h"

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
  lines_t explain(const std::string& words) {
    lines_t lines;
    for (const auto& line : session.run("EXPLAIN NET " + words)) lines.push_back(without_ids(line));
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
  EXPECT_EQ(
      explain("/m"),
      (lines_t{"# NET 2 : \"/M\" name \"M\"", "#   kind local ; pins in 2 out 1",
               "#   /M : top/sheet.gx_1 N_# : the net itself",
               "#   /N_# : top/sheet.gx_1 N_# : shared pin P_#",
               "#   /N_# : top/sheet.gx_1 N_# : shared vertex #",
               "#   /m : top/sheet.gx_1 N_# : same NET name as N_#",
               "#   /X/IN : tie/sheet.gx_1 N_# : port A of /X, pin /X/A", "#   pin in /X/R1/1",
               "#   pin in /S/1", "#   pin out /R/2", " EXPlain NET /m "}));
  EXPECT_EQ(explain("/vdd"),
            (lines_t{"# NET 1 : \"/VDD\" name \"VDD\"", "#   kind global ; pins in 0 out 1",
                     "#   /P : top/sheet.gx_1 N_# : global VDD inside /X, pin /X/B",
                     "#   /N_# : top/sheet.gx_1 N_# : global VDD, instance I_#",
                     "#   /X/OUT : tie/sheet.gx_1 N_# : port B of /X, pin /X/B",
                     "#   /X/OUT : tie/sheet.gx_1 N_# : same NET name as N_#",
                     "#   pin out /X/R1/2", " EXPlain NET /vdd "}));
  // The vertex is the one where segments of both nets end.
  const std::string line = session.run("EXPLAIN NET /M")[4];
  const int net = std::stoi(line.substr(line.find("/N_") + 3));
  const int vertex = std::stoi(line.substr(line.rfind(' ')));
  EXPECT_EQ(line, "#   /N_" + std::to_string(net) + " : top/sheet.gx_1 N_" + std::to_string(net) +
                      " : shared vertex " + std::to_string(vertex));
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

TEST_F(ExplainTest, ABitIsExplainedByTheNetsOfItsBusThatHoldIt) {
  run("symbol one\n pin A 0,0 IN\n symbol two\n pin D 0,0 IN bits 0:1\n"
      "sheet one\n port A p 0,0\n part R r 2,0\n net A\n  wire A R.1\n"
      "sheet two\n port D p 0,0 bits 0:1\n part X one 4,0\n bus D 0:1\n  wire D X.A\n  bit 1 X.A\n"
      "sheet top\n part T two 2,0\n bus D 0:3\n  wire T.D 0,0\n  bit 1 T.D\n");
  const lines_t bit_2 = {
      "# NET 4 : \"/D_2\" name \"D_2\"",
      "#   kind bit, bit 2 of bus \"/D\" (1) ; pins in 1 out 0",
      "#   /D : top/sheet.gx_1 N_# : bit 2 of bus D",
      "#   /T/D : two/sheet.gx_1 N_# : bit 2 of bus D",
      "#   /T/X/A : one/sheet.gx_1 N_# : port A of /T/X, pin /T/X/A, bit 2 of bus D",
      "#   pin in /T/X/R/1",
      " EXPlain NET /D_2 "};
  EXPECT_EQ(explain("/D_2"), bit_2);
  EXPECT_EQ(explain("/T/X/A").front(), bit_2.front());
  // Those on both sides do not go down.
  EXPECT_EQ(explain("/D_0").size(), 4U);
  EXPECT_EQ(explain("/D_3").size(), 4U);
  EXPECT_EQ(explain("/D")[3],
            "#   /T/D : two/sheet.gx_1 N_# : port D[0:1] of /T, pin /T/D, bits 1 to 2 of bus D");
}

}  // namespace
