// A user walks, selects, inspects and checks in the real program: by a command file, and with the
// mouse in the window.
#include <algorithm>

#include "tests/program/block_design.h"
#include "tests/program/program_fixture.h"
#include "tests/support/make_design.h"

namespace {

TEST(WalkProgram, ACommandFileWalksSelectsAndChecks) {
  scratch_directory directory;
  make_design(directory, block_design);
  directory.write("walk.do",
                  "view down X1\n"
                  "sel prop edit INST R9; status property edit; check sheet inside\n"
                  "view all; view area edit 0.2 0.2 0.9 0.8\n"
                  "view up; view up\n"
                  "act sym res; view all context; view area context 0.1 0.1 0.2 0.2; pop\n"
                  "view sheet block; pop; pop; pop\n"
                  "sel area inst context 0.1 0.1 1.9 0.9; show link; show link context\n"
                  "mark rect context 0.5 0.5; base\n"
                  "view down X9\n"
                  "bye\n");
  const auto ended = run_program(shared_display(), {.directory = directory.path(),
                                                    .words = {"top", "walk.do"},
                                                    .environment = {},
                                                    .program = {}});
  EXPECT_EQ(ended.status, 0) << ended.out << ended.err;
  auto lines = directory.lines("top/current_session");
  // What the command file itself answers is tested elsewhere.
  const auto first = std::find(lines.begin(), lines.end(), " VIEw DOWn  X1");
  lines.erase(lines.begin(), first);
  lines.resize(std::min<std::size_t>(lines.size(), 31));
  EXPECT_EQ(lines, (std::vector<std::string>{
                       " VIEw DOWn  X1",
                       " SELect PROperty edit INST R9 ",
                       "# I_22  I_BODY NOFixed NOVisible \"INST\"  \"R9\" ",
                       "# S_9 S_BODY   Fixed NOVisible \"CLASS\"  \"R\" ",
                       " STAtus PROperty  Edit ",
                       "# CHEck  SHEet  inside ",
                       "# CHEck  SHEet > nb_error    = 0 ",
                       "# CHEck  SHEet > nb_warning  = 0 ",
                       " CHEck  SHEet inside ",
                       " VIEw ALL ",
                       " VIEw AREa  Edit ",
                       " VIEw UP  ",
                       "# VIEw UP ",
                       "# !! Error : impossible to VIEw UP ( already at TOP ) ",
                       " ACTivate SYMbol res ",
                       " VIEw ALL ",
                       " VIEw AREa  Context ",
                       " POP ",
                       " VIEw SHEet block ",
                       " POP ",
                       " POP ",
                       " POP ",
                       " SELect AREa  Context inst context 0.1 0.1 1.9 0.9 ",
                       "# SHOw LINk ",
                       "# !! Warning : Nothing Valid Selected  ? ",
                       "# SHOw LINk context ",
                       "# !! Warning : Nothing Valid Selected  ? ",
                       " MARK RECtangle Context 0.50 0.50 ",
                       " BASEpoint  Context 0.50 0.50 ",
                       "# VIEw DOWn \"X9\"   ",
                       "# !! Error : No valid design Sheet to view down in Context ",
                   }));
}

// Button 3 drags a rectangle and selects; button 1 drags one and zooms into it; the selection is
// drawn in its colour at once and after the zoom.
TEST(WalkProgram, TheMouseSelectsAndZooms) {
  scratch_directory directory;
  make_design(directory, block_design);
  test_session session(
      shared_display(),
      {.directory = directory.path(), .words = {"top"}, .environment = {}, .program = {}});
  constexpr std::uint32_t green = 0x00FF00;
  const int right = session.width() * 99 / 100, bottom = session.height() * 74 / 100;
  const auto greens = [&] {
    session.settle();
    return session.picture().count(green, 10, 10, right, bottom);
  };
  const auto drag = [&](int button, int x0, int y0, int x1, int y1) {
    session.move(x0, y0);
    session.button_down(button);
    session.wait_for_head(" MARK RECtangle Edit ");
    session.move((x0 + x1) / 2, (y0 + y1) / 2);
    session.move(x1, y1);
    session.settle();
    session.button_up(button);
  };
  const int before = greens();
  drag(3, 20, 20, right - 20, bottom - 20);
  session.wait_for_line(" SELect AREa  Edit ALL ");
  const int selected = greens();
  EXPECT_GT(selected, before + 200);
  drag(1, session.width() / 4, bottom / 4, session.width() / 2, bottom / 2);
  session.wait_for_line(" VIEw AREa  Edit ");
  EXPECT_GT(greens(), before);
  session.command("view all");
  session.wait_for_line(" VIEw ALL ");
  session.command("status object edit");
  session.wait_for_line("# path = \"block/symbol.gx_1\" ");
  session.command("unselect all");
  session.wait_for_line(" UNSelect ALL ");
  EXPECT_EQ(greens(), before);
  session.command("bye");
  EXPECT_EQ(session.process().wait().status, 0);
}

}  // namespace
