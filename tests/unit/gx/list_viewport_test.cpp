// The scroll-back of the message list and what the session file gets.
#include "gx/display/list_viewport.h"

#include <cstdio>

#include "app/session/input/gestures.h"
#include "gx/display/input/line_edit.h"
#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/text/at.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "tests/support/drawing_board.h"
#include "tests/support/scratch_directory.h"

namespace {
class ListViewport : public ::testing::Test {
 protected:
  ListViewport() {
    auto& v = gx_vext;
    v.nb_line_in_listviewp = 7;
    v.nb_list_line_max = 500;
    v.viewport_list = v.viewport_cmd = 1;
    v.list_step = 20;
    v.list_color = v.cmd_color = 7;
    v.cmd_height = 10;
    v.cmd_step = 12;
    gx_setarray_hortext();
    path_ = directory_.path() / "session";
    v.cursessfile = std::fopen(path_.c_str(), "w");
  }
  ~ListViewport() override { std::fclose(gx_vext.cursessfile); }

  std::string session() {
    std::fflush(gx_vext.cursessfile);
    return read_file(path_);
  }
  static std::string line(int n) {
    return std::string(gx_view(gx_vext.line_list[static_cast<std::size_t>(n - 1)]));
  }

  drawing_board board_;
  scratch_directory directory_;
  std::filesystem::path path_;
};

// A line is 20 pixels high and a character 12 wide, from the corner at (100, 100) on.
TEST_F(ListViewport, KnowsTheWordUnderThePointer) {
  for (int i = 1; i <= 9; ++i) gx_display_list("# " + std::to_string(i) + " \"/XR/X2\" v(n)");
  const auto at = [](int column, int row) {
    const gx_point16_t corner = gx_viewport_inq_pixel_min(gx_vext.viewport_list);
    return gx_list_word_at({static_cast<std::int16_t>(corner.x + column * 12 + 5),
                            static_cast<std::int16_t>(corner.y + row * 20 + 5)});
  };
  EXPECT_EQ(at(2, 0), "3");  // the first of the seven lines that are seen
  EXPECT_EQ(at(2, 6), "9");
  EXPECT_EQ(at(5, 1), "/XR/X2");
  EXPECT_EQ(at(10, 1), "/XR/X2");
  EXPECT_EQ(at(16, 2), "v(n)");
  for (const auto& [column, row] : {std::pair{1, 0}, {4, 0}, {17, 0}, {2, 7}, {-1, 0}, {2, -1}}) {
    EXPECT_EQ(at(column, row), "") << column << " " << row;
  }
  gx_display_list("R 10\\u{B5}F /XR/X3");  // the sign takes one column
  EXPECT_EQ(at(5, 6), "10\\u{B5}F");
  EXPECT_EQ(at(6, 6), "");
  EXPECT_EQ(at(7, 6), "/XR/X3");
  EXPECT_EQ(at(12, 6), "/XR/X3");
  EXPECT_EQ(at(13, 6), "");
}

TEST_F(ListViewport, KnowsTheLineUnderThePointer) {
  const auto line_at = [](int y) { return gx_list_line_at({200, static_cast<std::int16_t>(y)}); };
  gx_vext.listb_y0 = 4;
  EXPECT_EQ(line_at(0), 1);
  EXPECT_EQ(line_at(123), 1);
  EXPECT_EQ(line_at(124), 2);
  EXPECT_EQ(line_at(900), 7);
  gx_vext.nlinlist_disp = 5;
  EXPECT_EQ(line_at(104), 5);
  EXPECT_EQ(line_at(124), 6);
}

TEST_F(ListViewport, KeepsAndScrolls) {
  gx_display_list("");
  EXPECT_EQ(gx_vext.nlinlist_end, 0);
  for (int i = 1; i <= 10; ++i) gx_display_list("line " + std::to_string(i));
  EXPECT_EQ(gx_vext.nlinlist_end, 10);
  EXPECT_EQ(gx_vext.nlinlist_disp, 4);
  gx_upd_display_list(false);
  EXPECT_EQ(gx_vext.nlinlist_disp, 4) << "the last page is the end";
  for (int i = 0; i < 9; ++i) gx_upd_display_list(true);
  EXPECT_EQ(gx_vext.nlinlist_disp, 1);
  gx_upd_display_list(false, 2);
  EXPECT_EQ(gx_vext.nlinlist_disp, 3);
}

TEST_F(ListViewport, StaysWhileOneReadsIt) {
  for (int i = 1; i <= 20; ++i) gx_display_list("line " + std::to_string(i));
  gx_upd_display_list(true, 5);
  EXPECT_EQ(gx_vext.nlinlist_disp, 9);
  gx_list_stay();
  gx_list_follow();
  gx_display_list("an answer");
  EXPECT_EQ(gx_vext.nlinlist_disp, 9);
  gx_list_leave();
  gx_display_list("another");
  EXPECT_EQ(gx_vext.nlinlist_disp, 9) << "until a command begins";
  gx_list_follow();
  gx_display_list("the next command's");
  EXPECT_EQ(gx_vext.nlinlist_disp, 17);
  // What is read moves up with the lines that go, and no further than the first.
  gx_list_stay();
  for (int i = 24; i <= 500; ++i) gx_display_list("line");
  EXPECT_EQ(gx_vext.nlinlist_disp, 17);
  gx_display_list(std::string(61, 'x'));
  EXPECT_EQ(gx_vext.nlinlist_disp, 15);
  for (int i = 0; i < 15; ++i) gx_display_list("line");
  EXPECT_EQ(gx_vext.nlinlist_disp, 1);
}

TEST_F(ListViewport, AThemeColoursLinesByWhatTheyMean) {
  gx_display_list("plain");
  gx_display_list("wrong", gx_line_kind::error);
  gx_display_list("doubtful", gx_line_kind::warning);
  gx_display_list(" ECHo");
  // Each line drawn alone: the bands of others are cleared before.
  gx_vext.nb_line_in_listviewp = 1;
  const auto strokes = [](int line, int color) {
    gx_vext.nlinlist_disp = static_cast<std::int16_t>(line);
    return lines_of(color, 0, [] { gx_regen_display_list(); }).size();
  };
  constexpr int red = 1, cyan = 4, yellow = 5, white = 7;
  constexpr int colors[] = {white, red, yellow, cyan};
  for (int line = 1; line <= 4; ++line) EXPECT_GT(strokes(line, white), 4U) << line;
  gx_set_theme(gx_themes()[1]);
  for (int line = 1; line <= 4; ++line)
    for (const int color : colors)
      EXPECT_EQ(strokes(line, color) > 4, color == colors[line - 1]) << line << " " << color;
  gx_vext.nb_line_in_listviewp = 7;
  for (int i = 0; i < 497; ++i) gx_display_list("x");  // the first one goes
  EXPECT_EQ(gx_vext.line_kind[0], gx_line_kind::error);
}

TEST(PlaceOfLine, IsAPathOrAFinding) {
  const std::pair<const char*, const char*> cases[] = {
      {"# 12 Error no-driver /XR/N_5", "SHOW FINDING 12 "},
      {"# 3 Waived pin-open /A : text", "SHOW FINDING 3 "},
      {"# 12 errors", ""},
      {"#   /XR  bit  instances 2", "FIND PATH /XR "},
      {"# Processing : \"/U1/X2/\"", "FIND PATH /U1/X2 "},
      {" FINd PATh /U1/X1  instance I_3 ", "FIND PATH /U1/X1 "},
      {"# /  top  instances 2", ""},
      {"# a/b and 1/2", ""},
      {"", ""}};
  for (const auto& [line, command] : cases) EXPECT_EQ(kv_place_of_line(line), command) << line;
}

TEST_F(ListViewport, ASessionFileOnAFullDiskIsToldOnce) {
  std::fclose(gx_vext.cursessfile);
  gx_vext.cursessfile = std::fopen("/dev/full", "w");
  std::setvbuf(gx_vext.cursessfile, nullptr, _IOLBF, BUFSIZ);
  gx_vext.cursessname = gx_string("top/current_session");
  gx_display_list("one");
  gx_display_list("two");
  EXPECT_EQ(gx_vext.num_errors, 1);
  // The long line takes two slots.
  EXPECT_EQ(
      line(2),
      "# !! Error : impossible to write the session file : \"top/current_session\" : No space "
      "left on device");
  EXPECT_EQ(line(3), "one");
  EXPECT_EQ(line(4), "two");
}

// Without a list the loss is a message, once until the file takes lines again.
TEST_F(ListViewport, ALostSessionFileIsAMessageOfABatch) {
  static constexpr gx_front_t batch = {
      .keeps_lines = false, .messages = [] { return stderr; }, .message_head = "kivo: "};
  gx_set_front(batch);
  std::FILE* other = gx_vext.cursessfile;
  gx_vext.cursessname = gx_string("top/current_session");
  testing::internal::CaptureStderr();
  gx_vext.cursessfile = std::fopen("/dev/full", "w");
  std::setvbuf(gx_vext.cursessfile, nullptr, _IONBF, 0);
  for (const char* const line : {"one", "two"}) gx_display_list(line);
  std::swap(gx_vext.cursessfile, other);
  gx_display_list("three");
  std::swap(gx_vext.cursessfile, other);
  gx_display_list("four");
  const std::string lost = "kivo: top/current_session: No space left on device\n";
  EXPECT_EQ(testing::internal::GetCapturedStderr(), lost + lost);
  EXPECT_EQ(gx_vext.num_errors, 2);
  EXPECT_EQ(gx_vext.cursess_error, ENOSPC);
  EXPECT_EQ(gx_vext.nlinlist_end, 0);
  std::swap(gx_vext.cursessfile, other);
  std::fclose(other);
  gx_set_front(gx_user_front);
}

TEST_F(ListViewport, LongLinesTakeTwoSlotsAndTheOldestGo) {
  gx_display_list(std::string(60, 'a'));
  EXPECT_EQ(gx_vext.nlinlist_end, 1);
  gx_display_list(std::string(61, 'b'));
  EXPECT_EQ(gx_vext.nlinlist_end, 3);
  EXPECT_EQ(line(2), "");
  EXPECT_EQ(line(3), std::string(61, 'b'));
  for (int i = 4; i <= 500; ++i) gx_display_list(std::to_string(i));
  EXPECT_EQ(line(1), std::string(60, 'a'));
  gx_display_list("501");
  EXPECT_EQ(gx_vext.nlinlist_end, 500);
  EXPECT_EQ(line(500), "501");
  EXPECT_EQ(line(499), "500");
  EXPECT_EQ(line(2), std::string(61, 'b'));
  gx_display_list(std::string(198, 'c') + "\x07\x80z");
  EXPECT_EQ(line(500), std::string(198, 'c') + " ") << "cut at 199, blanks for the rest";
  EXPECT_EQ(line(498), "501");
}

TEST_F(ListViewport, TheSessionFileGetsAllTheListOnlyTheTranscript) {
  gx_vext.transcript_state = false;
  gx_display_list("hidden");
  gx_vext.transcript_state = true;
  gx_display_list("shown");
  EXPECT_EQ(read_file(path_), "hidden\nshown\n") << "at once";
  EXPECT_EQ(gx_vext.nlinlist_end, 1);

  gx_vext.nb_list_line_max = 0;  // before the application set a size
  gx_display_list("nowhere to keep it");
  EXPECT_EQ(gx_vext.nlinlist_end, 1);
  gx_vext.nb_list_line_max = 1;
  for (const char* const shown : {"one", "two"}) gx_display_list(shown);
  EXPECT_EQ(line(1), "two");
}

TEST_F(ListViewport, LongTellingsAreBrokenAtBlanks) {
  const auto told = [&](const std::string& text, gx_line_kind kind = gx_line_kind::plain) {
    const auto before = session().size();
    gx_tell_wrapped(text, kind);
    return session().substr(before);
  };
  const std::string x20(20, 'x'), x90(90, 'x');
  EXPECT_EQ(told("# " + x20 + " " + x20 + " " + x20 + " " + x20),
            "# " + x20 + " " + x20 + "\n#    " + x20 + " " + x20 + "\n");
  EXPECT_EQ(told("# " + x90), "# " + x90.substr(0, 55) + "\n#    " + x90.substr(0, 35) + "\n");
  EXPECT_EQ(told(x90.substr(0, 57)), x90.substr(0, 57) + "\n");
  EXPECT_EQ(told(x90.substr(0, 57) + "   y"), x90.substr(0, 57) + "\n#    y\n");
  EXPECT_EQ(told(""), "");
  told("# " + x20 + " " + x20 + " " + x20 + " " + x20, gx_line_kind::warning);
  const auto kind = [](int n) { return gx_at(gx_vext.line_kind, gx_vext.nlinlist_end - n); };
  EXPECT_EQ(kind(2), gx_line_kind::warning);
  EXPECT_EQ(kind(1), gx_line_kind::detail);
  gx_set_list_width(80);
  EXPECT_EQ(told(x90.substr(0, 77)), x90.substr(0, 77) + "\n");
  gx_set_list_width(1);
  EXPECT_EQ(gx_list_width(), 20);
  EXPECT_EQ(told(x90.substr(0, 57)), x90.substr(0, 57) + "\n");
  gx_set_list_width(1000);
  EXPECT_EQ(gx_list_width(), 199);
  gx_set_list_width(gx_max_text_length);
}

TEST_F(ListViewport, LinesCountAsWhatTheyAre) {
  for (int i = 0; i < 32768; ++i) gx_count_kind(gx_line_kind::error);
  gx_count_kind(gx_line_kind::warning);
  for (int i = 0; i < 2; ++i) gx_count_kind(gx_line_kind::detail);
  EXPECT_EQ(gx_vext.num_errors, 32767);
  EXPECT_EQ(gx_vext.errors_in_all, 32768);
  EXPECT_EQ(gx_vext.num_warnings, 1);
  gx_display_list("w", gx_line_kind::warning);
  gx_display_list("p");
  EXPECT_EQ(gx_vext.worst, gx_line_kind::warning);
}

TEST_F(ListViewport, ABatchOfLinesIsShownAtItsEnd) {
  gx_display_list("before");
  {
    const gx_list_batch_t batch;
    {
      const gx_list_batch_t inner;
      gx_display_list("one");
    }
    EXPECT_EQ(read_file(path_), "before\n");
    for (int i = 2; i <= 502; ++i) gx_display_list(std::to_string(i));
    EXPECT_EQ(gx_vext.nlinlist_end, 1);
  }
  EXPECT_TRUE(read_file(path_).ends_with("501\n502\n"));
  EXPECT_EQ(gx_vext.nlinlist_end, 500);
  EXPECT_EQ(line(1), "3");  // the last of a full list
  EXPECT_EQ(line(500), "502");
}

TEST_F(ListViewport, ShowsTextFiles) {
  const auto file = directory_.path() / "notes";
  write_file(file, "first\n\nthird");
  EXPECT_TRUE(gx_display_file_invplist(file.string()));
  EXPECT_EQ(session(), "# \"first\" \n# \"\" \n# \"third\" \n");
  EXPECT_EQ(line(3), "# \"third\" ");
  // A long one stays in sight with its first line, until another command begins.
  std::string long_text;
  for (int i = 1; i <= 20; ++i) long_text += "line " + std::to_string(i) + "\n";
  write_file(file, long_text);
  EXPECT_TRUE(gx_display_file_invplist(file.string()));
  gx_display_list(" HELp ");
  EXPECT_EQ(line(gx_vext.nlinlist_disp), "# \"line 1\" ");
  gx_list_follow();
  gx_display_list("next");
  EXPECT_EQ(gx_vext.nlinlist_disp, gx_vext.nlinlist_end - 6);
  int asked = 0;
  static int* const counted = &asked;
  const auto before = gx_vext.nlinlist_end;
  write_file(file, std::string(150, '\n'));
  EXPECT_TRUE(gx_display_file_invplist(file.string(), [] { return ++*counted == 2; }));
  EXPECT_EQ(gx_vext.nlinlist_end - before, 100);
  EXPECT_FALSE(gx_display_file_invplist(path_.string())) << "it would never end";
  EXPECT_FALSE(gx_display_file_invplist(directory_.path().string()));
  EXPECT_FALSE(gx_display_file_invplist((directory_.path() / "absent").string()));
}

}  // namespace
