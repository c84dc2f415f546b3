// A run of some seconds, before the eyes and under the hands of its user.
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <string>
#include <thread>

#include "tests/program/interactive.h"

namespace {

constexpr int levels = 23;

// Each level holds two of the next: 2^23 - 1 sheets, which no machine walks before the stop.
std::string deep_design() {
  std::string text =
      "symbol e\n pin 1 0,0 IXO\n pin 2 0,4 IXO\n prop CLASS=R\n"
      "symbol p\n pin P 0,0 IXO\n prop CLASS=PORTIN\n";
  for (int level = levels; level >= 1; --level) {
    const std::string name = level == 1 ? "top" : "b" + std::to_string(level);
    const std::string below = level == levels ? "e" : "b" + std::to_string(level + 1);
    if (level > 1) text += "symbol " + name + "\n pin 1 0,0 IN\n";
    text += "sheet " + name + "\n";
    if (level > 1) text += " port 1 p 0,0\n";
    text += " part X " + below + " 2,0\n part Y " + below + " 12,0\n net A\n  wire ";
    text += std::string(level > 1 ? "0,0 " : "") + "X.1 Y.1\n";
    if (level == levels) text += " net B\n  wire X.2 Y.2\n";
  }
  return text;
}

TEST_F(Interactive, ALongRunShowsItselfAndControlAStopsIt) {
  make_design(directory_, deep_design());
  directory_.write("top/design_kv", "the last netlist");
  open(
      "PRIMitive CLASS;PROPerty INStance S CLASS;PROPerty PIN S PIN;PROPerty NET S NET\n"
      "STOre SIZe 2000000000");
  const int top = 885, bottom = 915;
  const auto letters = [&] {
    const test_picture picture = session().picture();
    return picture.count(white, 0, top, picture.width - 1, bottom);
  };
  const int prompt = letters();
  ASSERT_GT(prompt, 0);
  session().command("run");
  session().wait_for_line(" RUN ");
  // However fast the machine: time goes by while the run stands still.
  kill(session().process().pid(), SIGSTOP);
  std::this_thread::sleep_for(std::chrono::seconds(2));
  kill(session().process().pid(), SIGCONT);
  const auto end = std::chrono::steady_clock::now() + test_limit;
  while (letters() < 3 * prompt && std::chrono::steady_clock::now() < end) {
  }
  EXPECT_GE(letters(), 3 * prompt) << "no line of progress";
  session().key(XK_a, test_session::control);
  session().wait_for_line("# RUN stopped");
  session().settle();
  EXPECT_LT(letters(), 2 * prompt) << "the command line is not back";
  EXPECT_EQ(directory_.read("top/design_kv"), "the last netlist");
  EXPECT_EQ(count_lines(" RUN "), 1);  // none of the progress is a line of the session
  bye();
}

}  // namespace
