// EXPlain NET: the reasons for which nets of sheets are one flat net.
#include <set>

#include "gx/db/objects_of.h"
#include "gx/text/messages/message_list.h"
#include "tests/unit/expand/flatten_fixture.h"

namespace {

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
};

TEST_F(ExplainTest, TheVertexIsTheOneWhereSegmentsOfBothNetsEnd) {
  run("sheet top\n part R r 10,0\n part S r 20,0\n"
      " net M\n  wire R.2 16,0 S.1\n net\n  wire M@16,0 16,9\n");
  const std::string line = rows("/M")[4];
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
  EXPECT_EQ(nets, (std::set{kv_ptrto_net_rec(1).object_id + 0, net}));
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

}  // namespace
