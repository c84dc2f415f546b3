// A session without a window against one with it.
#include "tests/program/block_design.h"
#include "tests/program/program_fixture.h"
#include "tests/support/make_design.h"

namespace {

TEST(Batch, CommandsAnswerAsInTheWindow) {
  const scratch_directory directory;
  make_design(directory, block_design);
  directory.write(
      "walk.do",
      "sel area inst context 0.1 0.1 2.9 1.9;status object edit;show link context\n"
      "view down X1;sel prop edit INST R9;status property edit;view area edit .2 .2 1 1\n"
      "check sheet;view up;view up;act sym res;view all context;pop;pop\n"
      "view sheet block;mark edit 0.3 0.4;base edit 0.5 0.5;grid st 0.1;snap on;smash on\n"
      "send x;give v;find path /X1/R9;display off;trans off;define key f4 'x';status key\n"
      "nosuch;sel;har a b c\n");
  const auto session = [&] { return directory.lines("top/current_session"); };
  test_process({.directory = directory.path(),
                .words = {"--batch", "top", "walk.do"},
                .environment = {"DISPLAY=:7777", "VELMORAN=/nowhere"}})
      .wait();
  const auto here = session();
  directory.write("walk.do", directory.read("walk.do") + "bye\n");
  run_program(shared_display(), {.directory = directory.path(), .words = {"top", "walk.do"}});
  auto there = session();
  ASSERT_EQ(std::erase(there, " BYE "), 1U);
  EXPECT_EQ(here, there);
  EXPECT_GT(here.size(), 60U);
}

}  // namespace
