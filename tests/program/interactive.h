// A session on a small design of two levels, with the bindings and menus that are built in, and the
// places of its window that the tests touch: 1240 x 924 pixels on the shared display.
#pragma once

#include <X11/keysym.h>

#include <string>
#include <vector>

#include "tests/program/program_fixture.h"
#include "tests/support/make_design.h"

inline constexpr char two_levels[] = R"(
symbol part
  line 0,0 0,4
  rect -2,1 2,3
  pin A 0,0 IXO
  pin B 0,4 IXO
symbol sub
  rect 0,0 8,6
  pin P 0,2 IN
sheet sub
  page 40,20
  part X1 part 8,4
sheet top
  page 40,20
  part U1 sub 8,4
  part R1 part 28,6
  net A
    wire 8,6 4,6
)";

class Interactive : public testing::Test {
 protected:
  Interactive() { make_design(directory_, two_levels); }

  program_start start_of(std::vector<std::string> words,
                         std::vector<std::string> environment) const {
    return {.directory = directory_.path(),
            .words = std::move(words),
            .environment = std::move(environment),
            .program = {}};
  }
  // Opens the window. `commands` run first, from a file.
  test_session& open(const std::string& commands = "", const std::string& product = "/nowhere") {
    std::vector<std::string> words = {"top"};
    if (!commands.empty()) {
      directory_.write("do", commands + "\n");
      words.push_back("do");
    }
    session_ =
        std::make_unique<test_session>(shared_display(), start_of(words, {"VELMORAN=" + product}));
    session_->wait_for_line("# KIVO  version 2.02");
    session_->settle();
    return *session_;
  }
  test_session& session() { return *session_; }
  // The program ends by itself, without a signal, and says so.
  void expect_end() {
    const auto ended = session_->process().wait();
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.signal, 0);
    EXPECT_NE(ended.out.find("\n -- KIVO  Execution complete..."), ended.out.npos);
  }
  int count_lines(std::string_view head) const {
    int count = 0;
    for (const auto& line : session_->session_lines()) count += line.starts_with(head);
    return count;
  }
  void bye() {
    session_->command("bye");
    expect_end();
  }

  // --- places, in pixels of the window
  struct spot {
    int x, y;
  };
  void point_at(spot at) {
    session_->move(at.x, at.y);
    session_->settle();
  }
  static constexpr spot in_edit = {700, 500};
  // Above the character `column` of the command line, from 1.
  static constexpr spot command_column(int column) { return {94 + (column - 1) * 14, 895}; }
  // Over the first character of the row of the list, from 1.
  static constexpr spot list_row(int row) { return {10, 719 + (row - 1) * 24}; }
  // On the text of a line of the menu level that opens at x = `left`.
  static constexpr int menu_top = 54, menu_left = 54, menu_pitch = 31;
  static constexpr spot menu_line(int left, int line) {
    return {left + 20, menu_top + (line - 1) * menu_pitch + menu_pitch / 2};
  }

  scratch_directory directory_;
  std::unique_ptr<test_session> session_;
};

inline constexpr std::uint32_t red = 0xFF0000, white = 0xFFFFFF, magenta = 0xFF00FF,
                               yellow = 0xFFFF00, blue = 0x0000FF;
