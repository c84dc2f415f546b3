// The commands that set a run up, and the refusals of RUN.
#include "app/run/run_progress.h"
#include "gx/text/messages/front.h"
#include "gx/vext.h"
#include "tests/support/fatal_stop.h"
#include "tests/unit/expand/flatten_fixture.h"

namespace {

TEST_F(FlattenTest, AListingIsMadeOfASheetInTheWindow) {
  kv_pext.file_id_cur = gx_max_files + 1;
  EXPECT_EQ(session.run("GEN DAT ON").size(), 2U);
  kv_pext.file_id_cur = 1;
  EXPECT_EQ(session.run("GEN DAT ON"), lines_t{" GENerate DATa ON "});
  EXPECT_TRUE(kv_pext.gen_data);
  kv_pext.file_id_cur = gx_max_files;
  EXPECT_EQ(session.run("GEN DAT off"), lines_t{" GENerate DATa OFF "});
  EXPECT_FALSE(kv_pext.gen_data);
  EXPECT_EQ(session.run("GEN DAT MAYBE"),
            (lines_t{"# GENerate DATa MAYBE ", "# !! Error : 3rd parameter invalid ? "}));
}

TEST_F(FlattenTest, RunKeepsTheSheetInViewAndWritesAWholeImage) {
  kv_pext.file_level_cur = 2;
  kv_pext.cur_sim_path = gx_string("X/");
  kv_sext.time_step = 0.5F;
  EXPECT_EQ(run("sheet top\n part R r 2,0\n net A\n  wire R.1 0,0\n net B\n  wire R.2 9,0\n"),
            lines_t{});
  EXPECT_EQ(gx_view(kv_pext.cur_sim_path), "/X/");
  EXPECT_EQ(kv_pext.file_level_cur, 2);
  EXPECT_EQ(gx_vext.num_file_open, 1);
  const auto& info = kv_sext.general_info;
  EXPECT_EQ(info.nbof_instance, 1);
  EXPECT_EQ(info.nbof_net, 2);
  EXPECT_EQ(info.nbof_string, kv_sext.strings.count);
  EXPECT_EQ(info.time_step, 0.5F);
  const std::string image = read_file("design_kv");
  // A second run gives the same bytes.
  EXPECT_EQ(answers(), lines_t{});
  EXPECT_EQ(read_file("design_kv"), image);
  EXPECT_EQ(gx_view(kv_pext.cur_sim_path), "/X/");
}

TEST_F(FlattenTest, ALongRunShowsHowFarItIsAndMayBeStopped) {
  static std::string shown;
  static bool is_stopped;
  shown.clear();
  is_stopped = false;
  gx_front_t front;
  front.flush = [] { shown += "|"; };
  front.show_progress = [](std::string_view line) { shown += std::string(line) + "."; };
  front.stop_asked = [] { return is_stopped; };
  gx_set_front(front);
  EXPECT_TRUE(kv_watch_run({.seconds = 1.9, .sheets = 5, .insts = 7, .all_sheets = 20}));
  EXPECT_TRUE(kv_watch_run({.seconds = 2, .sheets = 5, .insts = 7, .all_sheets = 20}));
  EXPECT_TRUE(kv_watch_run({.seconds = 3}));
  is_stopped = true;
  EXPECT_FALSE(kv_watch_run({.seconds = 1}));
  EXPECT_TRUE(kv_watch_run({.seconds = 3, .ended = true}));
  gx_set_front(gx_user_front);
  EXPECT_EQ(shown,
            "|| RUN 25 % : sheet 5 of 20, 7 instances.| RUN 0 % : sheet 0 of 0, 0 instances.||.");
  EXPECT_TRUE(kv_watch_run({.seconds = 3}));  // nobody waits for it
}

TEST_F(FlattenTest, RunBeforeTheSessionIsCompleteIsRefused) {
  ::close(kv_sext.designfile);
  kv_sext.designfile = -1;
  EXPECT_EQ(session.run("RUN"),
            (lines_t{"# RUN ", "# !! Error :  No sheet available in window ? "}));
}

TEST_F(FlattenTest, AFullDiskIsTold) {
  ::close(kv_sext.designfile);
  kv_sext.designfile = ::open("/dev/full", O_RDWR);
  EXPECT_EQ(run("sheet top\n part R r 2,0\n net A\n  wire R.1 R.2\n"),
            (lines_t{"# !! Error : Expanded data not written whole in : \"top\"",
                     "# !! design_kv : No space left on device"}));
  EXPECT_EQ(gx_vext.num_errors, 1);
  EXPECT_EQ(gx_view(kv_pext.cur_sim_path), "/");
}

}  // namespace
