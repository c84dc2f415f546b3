// The private display and the process runner that every other program test stands on.
#include <signal.h>

#include "tests/program/program_fixture.h"

TEST(ProgramFixture, ReportsOutputStatusAndSignal) {
  scratch_directory directory;
  program_start start{.directory = directory.path(),
                      .words = {"-c", "pwd; echo $DISPLAY >&2; exit 3"},
                      .environment = {},
                      .program = "/bin/sh"};
  const auto ended = run_program(shared_display(), start);
  EXPECT_EQ(ended.out, std::filesystem::canonical(directory.path()).string() + "\n");
  EXPECT_EQ(ended.err, shared_display().name() + "\n");
  EXPECT_EQ(ended.status, 3);

  start.words = {"-c", "kill -SEGV $$"};
  EXPECT_EQ(run_program(shared_display(), start).signal, SIGSEGV);
  start.words = {"-c", "sleep 10"};
  EXPECT_THROW(run_program(shared_display(), start, test_time(50)), std::runtime_error);
}
