// A user selects and zooms with the mouse in the window.
#include "tests/program/block_design.h"
#include "tests/program/program_fixture.h"
#include "tests/support/make_design.h"

namespace {

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
