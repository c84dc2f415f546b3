// The ends that nobody typed: signals, a window that is gone, no memory left; and what Control+A
// ends.
#include <X11/Xlib.h>

#include <csignal>
#include <string>

#include "tests/program/interactive.h"

namespace {

bool keyboard_repeats() {
  XKeyboardState state{};
  XGetKeyboardControl(shared_display().connection(), &state);
  return state.global_auto_repeat == AutoRepeatModeOn;
}

TEST_F(Interactive, SignalsEndTheSessionInOrder) {
  const struct {
    int signal;
    std::string command, line;
  } cases[] = {{SIGTERM, "", ""},
               {SIGHUP, "!sleep 1000", "# sleep 1000 "},
               {SIGINT, "system 'sleep 1000'", " SYSTem 'sleep 1000' "},
               {SIGXFSZ, "", ""}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.signal);
    open();
    if (c.command.empty()) {
      session().key_down(XK_F1);  // takes the repeating of keys away
      session().settle();
      EXPECT_FALSE(keyboard_repeats());
    } else {
      session().command(c.command);
      session().wait_for_line(c.line);
    }
    const auto ended = session().process().terminate(c.signal);
    EXPECT_EQ(ended.status, 128 + c.signal) << ended.signal;
    EXPECT_NE(ended.out.find("\n !! Ended by signal " + std::to_string(c.signal)), ended.out.npos);
    EXPECT_TRUE(ended.out.ends_with("complete...0 error, 0 warning --\n")) << ended.out;
    EXPECT_EQ(session().session_lines().back(), " BYE ");
    EXPECT_NE(directory_.read("top/debug_kivo").find("FINALIZE  after"), std::string::npos);
    EXPECT_TRUE(keyboard_repeats());
    session().key_up(XK_F1);
  }
}

TEST_F(Interactive, AWindowThatAnotherProgramDestroysEndsTheSession) {
  open();
  XDestroyWindow(shared_display().connection(), session().window());
  XFlush(shared_display().connection());
  expect_end();
}

#ifndef __SANITIZE_ADDRESS__
TEST_F(Interactive, NoMemoryLeftIsAnOrderlyEnd) {
  std::string sheets = "symbol e\n pin 1 0,0 IN\n prop CLASS=R\n";
  for (int level = 17; level >= 1; --level) {
    const std::string name = level == 1 ? "top" : "b" + std::to_string(level);
    const std::string below = level == 17 ? "e" : "b" + std::to_string(level + 1);
    if (level > 1) sheets += "symbol " + name + "\n pin 1 0,0 IN\n";
    sheets += "sheet " + name + "\n part X " + below + " 2,0\n part Y " + below + " 12,0\n";
    sheets += " net A\n  wire X.1 Y.1\n";
  }
  make_design(directory_, sheets);
  directory_.write("do",
                   "PRIMI CLASS;PROP INS S CLASS;PROP PIN S PIN;PROP NET S NET\n"
                   "STORE SIZE 2000000000;RUN;BYE\n");
  auto start = start_of({"-c", "ulimit -v 130000; exec " KIVO_PROGRAM " top do"}, {});
  start.program = "/bin/sh";
  const auto ended = run_program(shared_display(), start);
  EXPECT_EQ(ended.status, 1) << ended.signal;
  EXPECT_TRUE(ended.out.ends_with("\n !! Unrecoverable Error : no memory left \n")) << ended.out;
  EXPECT_TRUE(directory_.lines("top/current_session").back().starts_with("# Processing : "));
}
#endif

TEST_F(Interactive, ControlAEndsProgramsAndLongTexts) {
  std::string huge;
  for (int i = 0; i < 4'000'000; ++i) huge += "line\n";
  directory_.write("huge", huge);
  open();
  for (const std::string command : {"sleep 1000", "sleep 1000; true", "sleep 5 &"}) {
    session().command("!" + command);
    session().wait_for_line("# " + command.substr(0, command.find(';')) + " ");
    session().key(XK_a, test_session::control);
    session().wait_for_line("# End of Exec ");
  }
  session().command("show file huge");
  session().wait_for_line("# \"line\" ");
  session().key(XK_a, test_session::control);
  session().wait_for_line(" SHOw FILe huge ");
  EXPECT_LT(count_lines("# \"line\" "), 4'000'000);
  bye();
}

}  // namespace
