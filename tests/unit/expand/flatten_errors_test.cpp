// What a run reports, and that it gets through designs that are not as they should be.
#include "expand/run/run.h"
#include "gx/vext.h"
#include "tests/unit/expand/flatten_fixture.h"

namespace {

constexpr char one_part[] =
    "sheet top\n part R r 2,0\n net A\n  wire R.1 0,0\n net B\n  wire R.2 9,0\n";

// A chain of blocks, the last with a leaf: `levels` sheets with the top.
std::string deep_design(int levels) {
  std::string sheets;
  for (int level = levels; level >= 2; --level) {
    const std::string name = "b" + std::to_string(level), below = "b" + std::to_string(level + 1);
    sheets += "symbol " + name + "\n pin A 0,0 IN\nsheet " + name + "\n port A p 0,0\n part X " +
              (level == levels ? "e" : below) + " 2,0\n net A\n  wire A X." +
              (level == levels ? "1 X.2" : "A") + "\n";
  }
  return sheets + "sheet top\n part X b2 2,0\n net A\n  wire X.A 0,0\n";
}

TEST_F(FlattenTest, TwentyEightLevelsAreFlattened) {
  EXPECT_EQ(run(deep_design(28)), lines_t{});
  EXPECT_EQ(kv_sext.insts.count, 1);
  EXPECT_EQ(kv_sext.macros.count, 27);
  EXPECT_NE(std::filesystem::file_size("design_kv"), 0U);
  EXPECT_EQ(gx_view(kv_pext.cur_sim_path), "/");
}

TEST_F(FlattenTest, ADeeperHierarchyEndsTheRunWithoutADesignFile) {
  std::string path;
  for (int i = 0; i < 28; ++i) path += "/X";
  EXPECT_EQ(run(deep_design(29)), lines_t{"# !! Error : Too many sheet levels ? : " + path});
  EXPECT_EQ(std::filesystem::file_size("design_kv"), 0U);
  EXPECT_EQ(gx_vext.num_errors, 1);
  // A sheet inside itself has no end either.
  gx_vext.num_file_open = 0;
  EXPECT_EQ(run("symbol self\n pin A 0,0 IN\n"
                "sheet self\n port A p 0,0\n part X self 2,0\n net A\n  wire A X.A\n"
                "sheet top\n part X self 2,0\n net A\n  wire X.A 0,0\n"),
            lines_t{"# !! Error : Too many sheet levels ? : " + path});
}

TEST_F(FlattenTest, ADesignBeyondTheStoreIsRefused) {
  // The paths of the members of wide buses are more than the characters that it holds.
  std::string buses;
  for (int i = 0; i < 9; ++i) {
    const std::string n = std::to_string(i);
    buses += " bus D" + n + " 0:3000\n  wire 0," + n + " 9," + n + "\n";
  }
  EXPECT_EQ(run("symbol s\n pin A 0,0 IN\n"
                "sheet s\n port A p 0,30\n part R r 12,30\n net A\n  wire A R.1\n" +
                buses + "sheet top\n part X s 2,0\n part Y s 2,9\n net A\n  wire X.A Y.A\n"),
            (lines_t{"# !! Error : Pin without Net : \"/X/R/2\"",
                     "# !! Error : Design too large : more than 500000 records of the kind : char",
                     "# !! STOre SIZe sets how many ", "# !! Sheet : \"/Y\""}));
  EXPECT_EQ(std::filesystem::file_size("design_kv"), 0U);
  EXPECT_EQ(kv_sext.nets.count, 0);
  // It goes on with a larger store.
  EXPECT_EQ(session.run("store size 2000000"), lines_t{" STOre SIZe 2000000 "});
  EXPECT_EQ(answers().size(), 2U);  // both pins without a net
  EXPECT_EQ(kv_sext.nets.count, 1 + 2 * 9 * 3002);
  EXPECT_EQ(kv_string_view(kv_ptrto_net_rec(kv_sext.nets.count).sim_path), "/Y/D8_3000");
  // The session goes on, and so does a smaller design.
  gx_vext.num_file_open = 0;
  EXPECT_EQ(run(one_part), lines_t{});
  EXPECT_EQ(kv_sext.nets.count, 2);
}

TEST_F(FlattenTest, AWatcherSeesALongRunAndMayStopIt) {
  // Each level holds two of the next: 2^18 - 1 sheets.
  std::string sheets;
  for (int level = 18; level >= 2; --level) {
    const std::string name = "b" + std::to_string(level);
    const std::string below = level == 18 ? "e" : "b" + std::to_string(level + 1);
    sheets += "symbol " + name + "\n pin 1 0,0 IN\nsheet " + name + "\n port 1 p 0,0\n part X " +
              below + " 2,0\n part Y " + below + "  12,0\n net A\n  wire 0,0 X.1 Y.1\n";
    if (level == 18) sheets += " net B\n  wire X.2 Y.2\n";
  }
  write(build(sheets + "sheet top\n part X b2 2,0\n part Y b2 12,0\n"
                       " net A\n  wire X.1 Y.1\n"));
  declare();
  open_top();
  ASSERT_EQ(session.run("store size 2000000000").size(), 1U);
  static std::vector<kv_progress_t> seen;
  seen.clear();
  const auto watcher = [](const kv_progress_t& progress) {
    seen.push_back(progress);
    return seen.size() < 2;
  };
  const kv_run_t watched{kv_sext,
                         kv_sext,
                         kv_pext.arrayof_file,
                         kv_pext.expand_level,
                         kv_pext.macro_level,
                         watcher,
                         std::chrono::milliseconds(20)};
  EXPECT_EQ(kv_run_expansion(watched, kv_sext.designfile, false), kv_run_result::stopped);
  EXPECT_EQ(session.take().back(), "# RUN stopped");
  ASSERT_EQ(seen.size(), 3U);
  EXPECT_EQ(seen[0].all_sheets, (1 << 18) - 1);
  EXPECT_GE(seen[1].seconds, 0.04);
  EXPECT_TRUE(seen[2].ended);
  EXPECT_EQ(kv_sext.nets.count, 0);
  EXPECT_EQ(std::filesystem::file_size("design_kv"), 0U);
}

TEST_F(FlattenTest, MoreThanThirtyErrorsEndTheSheets) {
  std::string parts;
  for (int i = 0; i < 40; ++i) {
    const std::string n = std::to_string(i);
    parts += " part R" + n + " r 2," + n + " TIMIND=x\n net A\n  wire R" + n + ".1 R" + n + ".2\n";
  }
  const lines_t lines = run("sheet top\n" + parts);
  EXPECT_EQ(lines.size(), 2U * 31);
  EXPECT_EQ(gx_vext.num_errors, 31);
  EXPECT_EQ(kv_sext.insts.count, 31);
  // The next run counts its own.
  EXPECT_EQ(session.run("RUN").size(), lines.size() + 1 + 1 + 31);
  EXPECT_EQ(kv_sext.insts.count, 31);
}

TEST_F(FlattenTest, ADeletedObjectStopsItsSheet) {
  auto files = build(one_part);
  write(files);
  declare();
  open_top();
  gx_ptrto_gene_file_buf(1).ptr_to_ar_objindex[4]->status = gx_flag_deleted;
  EXPECT_EQ(session.run("RUN"), (lines_t{" RUN ", "# Processing : \"\""}));
  EXPECT_EQ(gx_vext.num_errors, 1);
  EXPECT_EQ(kv_sext.nets.count, 0);
}

}  // namespace
