// The commands that set a run up, and the refusals of RUN.
#include "app/run/run_progress.h"
#include "gx/text/messages/front.h"
#include "gx/vext.h"
#include "tests/support/fatal_stop.h"
#include "tests/unit/expand/flatten_fixture.h"

namespace {

TEST_F(FlattenTest, SetUpCommandsAnswer) {
  struct case_t {
    std::string command;
    std::vector<std::string> answer;
  };
  const std::string range = "# !! STOre SIZe takes 1000 to 2000000000 ";
  const case_t cases[] = {
      {"PARAM R 1", {" PARAMeter R 1 "}},
      {"parameter Q 1 3", {" PARAMeter Q 1 3 "}},
      {"PARAM P 1 2 4", {" PARAMeter P 1 2 4 "}},
      {"PARAM R a", {"# PARAMeter R a ", "# !! Error :  3rd parameter incorrect ? "}},
      {"PARAM R 1 a", {"# PARAMeter R 1 a ", "# !! Error :  4th parameter incorrect ? "}},
      {"PARAM R 1 2 a", {"# PARAMeter R 1 2 a ", "# !! Error :  5th parameter incorrect ? "}},
      {"PRIMI CLASS R", {" PRIMitive CLASS R "}},
      {"PROP NET S NAME1 NAME2", {" PROPerty NET S NAME1 NAME2 "}},
      {"PROP PIN t DELAY", {" PROPerty PIN  t DELAY "}},
      {"PROP INS Real W", {" PROPerty INStance Real W "}},
      {"PROP NET X W", {"# PROPerty NET X W ", "# !! Error :  3rd parameter incorrect ? "}},
      {"STO SIZ 999", {"# STOre SIZe 999 ", "# !! Error :  3rd parameter incorrect ? ", range}},
      {"STO SIZ 1000", {" STOre SIZe 1000 "}},
      {"STO SIZ 2000000000", {" STOre SIZe 2000000000 "}},
      {"STO SIZ 2000000001",
       {"# STOre SIZe 2000000001 ", "# !! Error :  3rd parameter incorrect ? ", range}},
      {"TIM STE 0", {" TIMe STEp 0 "}},
      {"TIM STE 2.5", {" TIMe STEp 2.5 "}},
      {"TIM STE x", {"# TIMe STEp x ", "# !! Time step INVALID ? "}},
      {"TIM STE -1", {"# TIME STEp -1 ", "# ! Time step : Invalid ( < 0 ) ? "}},
      {"GEN DAT ON", {"# GENerate DATa ON ", "# !! Error :  No sheet available in window ? "}},
  };
  for (const auto& c : cases) EXPECT_EQ(session.run(c.command), c.answer);
  // Refused ones take no place.
  std::string kept;
  for (int i = 0; i < kv_sext.parameter.count; ++i) {
    const auto& [name, values] = kv_sext.parameter.entry[i];
    kept += gx_view(name);
    for (const float value : values) kept += " " + std::to_string(value).substr(0, 3);
    kept += ", ";
  }
  kept += std::string(gx_view(kv_sext.primitive.entry[0].name)) + "=" +
          std::string(gx_view(kv_sext.primitive.entry[0].nvalue));
  for (const auto* list :
       {&kv_sext.property_net, &kv_sext.property_pin, &kv_sext.property_instance})
    for (int i = 0; i < list->count; ++i)
      kept += ", " + std::string(gx_view(list->entry[i].prop_type)) + " " +
              std::string(gx_view(list->entry[i].name));
  EXPECT_EQ(kept,
            "R 1.0 1.0 1.0, Q 1.0 2.0 3.0, P 1.0 2.0 4.0, CLASS=R, S NAME1, S NAME2, t DELAY, "
            "Real W");
  EXPECT_EQ(kv_sext.store_size, 2000000000);
  EXPECT_FLOAT_EQ(kv_sext.time_step, 2.5);

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

TEST_F(FlattenTest, ListsHoldSixteenEntries) {
  for (int i = 0; i < 16; ++i) session.run("PRIMI A;PARAM B 1;PROP PIN S P");
  EXPECT_EQ(session.run("PRIMI A"),
            (lines_t{"# PRIMitive A ", "# !! Error :  Too many PRIMitive ? (<16)"}));
  EXPECT_EQ(session.run("PARAM B 1"),
            (lines_t{"# PARAMeter B 1 ", "# !! Error :  Too many PARAMeter ? (<16)"}));
  EXPECT_EQ(session.run("PROP PIN S P"),
            (lines_t{"# PROPerty PIN  S P ", "# !! Error :  Too many PROPerty PIN ? (<16)"}));
  for (int i = 0; i < 15; ++i) session.run("PROP INS S A");
  EXPECT_EQ(session.run("PROP INS S LAST BEYOND"),
            (lines_t{"# PROPerty INStance S LAST BEYOND ",
                     "# !! Error :  Too many PROPerty INStance ? (<16)"}));
  EXPECT_EQ(gx_view(kv_sext.property_instance.entry[15].name), "LAST");
}

TEST_F(FlattenTest, RunIsRefusedUntilAllIsDeclared) {
  struct step_t {
    std::string command, error;
  };
  const step_t steps[] = {{"PRIMI CLASS", "# !! Error : No property to define the PRIMITIVE ? "},
                          {"PROP INS S A", "# !! Error : No property to keep on INSTANCE ? "},
                          {"PROP PIN S A", "# !! Error : No property to keep on PIN ? "},
                          {"PROP NET S A", "# !! Error : No property to keep on NET ? "},
                          {"PROP NET S B", "# !! Error : No Sheet available to expand ? "}};
  kv_save_string("left alone");
  for (const auto& step : steps) {
    EXPECT_EQ(session.run("RUN"), (lines_t{"# RUN ", step.error}));
    session.run(step.command);
  }
  EXPECT_EQ(kv_sext.strings.count, 1);
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
