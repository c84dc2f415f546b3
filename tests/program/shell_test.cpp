// The program from its command line to its summary: arguments, start-up, command files, the end.
#include <X11/keysym.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "gx/db/object_access.h"
#include "gx/vext.h"
#include "tests/program/program_fixture.h"
#include "tests/support/make_design.h"

namespace {
constexpr char one_sheet[] = R"(
symbol two
  line 0,0 0,4
  pin 1 0,0 IXO
  pin 2 0,4 IXO
sheet top
  page 40,20
  part R1 two 8,4
)";

// What the program prints when it runs to its end without drawing anything new.
std::string summary(const std::string& counts) {
  return "\n -- KIVO  Execution complete..." + counts + " --\n";
}

class Program : public testing::Test {
 protected:
  program_start start(std::vector<std::string> words) const {
    return {.directory = directory_.path(),
            .words = std::move(words),
            .environment = {},
            .program = {}};
  }
  process_result run(std::vector<std::string> words) const {
    return run_program(shared_display(), start(std::move(words)));
  }
  void make_sheet() const { make_design(directory_, one_sheet); }

  scratch_directory directory_;
};

TEST_F(Program, TheDesignDirectoryIsCheckedFirst) {
  directory_.write("plain", "text");
  const std::string not_a = "' is not a  directory ? \n";
  const struct {
    std::vector<std::string> words;
    int status;
    std::string said;
  } cases[] = {
      {{}, 1, " !! Unrecoverable Error : the file :'" + not_a},
      {{"plain"}, 1, " !! Unrecoverable Error : the file :'plain" + not_a},
      {{"none\n/.."}, 1, " argument :  1\n   'none' \n"},
      {{"Z\xC3\xA4hler"}, 1, "letters beyond ASCII in the path :'Z\xC3\xA4hler' ? \n"},
      {{".", "\xC3\xA4.do"}, 1, "letters beyond ASCII in the path :'\xC3\xA4.do' ? \n"},
      {std::vector<std::string>(40, "."), 0, " !!! invalid usage  : arg number : 41\n"},
      {{"./" + std::string(196, '/')}, 0, "expand editor  from VELMORAN \n"},
      {{"./" + std::string(197, '/')}, 0, "\n        !!! error no SHEET dir_name  \n"},
  };
  for (const auto& c : cases) {
    const auto ended = run(c.words);
    EXPECT_EQ(ended.status, c.status) << c.said;
    EXPECT_NE(ended.out.find(c.said), std::string::npos) << ended.out;
  }
  if (geteuid() != 0) {  // nothing is unreadable to root
    mkdir(directory_.file("closed").c_str(), 0300);
    EXPECT_NE(run({"closed"})
                  .out.find(" !! Unrecoverable Error : No unix 'R' right on the "
                            "directory:'closed' ? \n"),
              std::string::npos);
  }
}

TEST_F(Program, ADirectoryWithoutSheetEndsWithOneError) {
  std::filesystem::create_directory(directory_.file("empty"));
  const auto ended = run({"empty"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_TRUE(ended.out.ends_with("!! error : No sheet Found : \"empty\"\n" +
                                  summary("1 error, 0 warning")))
      << ended.out;
  EXPECT_EQ(directory_.read("empty/current_session"), "");
}

// No file of a design makes the program abort.
TEST_F(Program, ASheetThatIsNotWholeEndsWithItsName) {
  auto files = build_design(one_sheet);
  for (auto* object : files.back().file->ptr_to_ar_objindex) {
    if (object->object_type == gx_type::frame_family) object->object_type = gx_type::tag_family;
  }
  gxm_write(files, directory_.path());
  const auto ended = run({"top"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_TRUE(
      ended.out.ends_with("!! error : Sheet not whole : \"top/sheet.gx_1\" : no frame_family\n" +
                          summary("1 error, 0 warning")))
      << ended.out;
  directory_.write("top/sheet.gx_1", directory_.read("top/sheet.gx_1").substr(0, 40));
  const auto cut = run({"top"});
  EXPECT_EQ(cut.status, 1) << cut.signal;
  EXPECT_TRUE(cut.out.ends_with("object 1: the file ends early\n" + summary("1 error, 0 warning")))
      << cut.out;
}

TEST_F(Program, AnUnusableDirectoryStopsTheStart) {
  make_sheet();
  std::filesystem::create_directory(directory_.file("top/current_session"));
  auto ended = run({"top"});
  EXPECT_EQ(ended.signal, SIGABRT);
  EXPECT_NE(ended.out.find("!!! ( INITIALIZE ) impossible to open current_session_file  : "
                           "\"top/current_session\" \n ?? error in gx_package  code : 19\n"),
            std::string::npos)
      << ended.out;
  std::filesystem::create_directory(directory_.file("top/debug_kivo.d"));
  std::filesystem::remove(directory_.file("top/debug_kivo"));
  std::filesystem::rename(directory_.file("top/debug_kivo.d"), directory_.file("top/debug_kivo"));
  ended = run({"top"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_NE(ended.out.find("!!! ( kivo_root ) impossible to open debugfile_name  : "
                           "\"top/debug_kivo\" \n !! Is a directory\n"),
            std::string::npos);
  // Nothing is written through a link.
  std::filesystem::remove(directory_.file("top/debug_kivo"));
  std::filesystem::create_symlink("elsewhere", directory_.file("top/debug_kivo"));
  ended = run({"top"});
  EXPECT_NE(ended.out.find(" !! is a symbolic link\n"), std::string::npos) << ended.out;
  EXPECT_FALSE(std::filesystem::exists(directory_.file("top/elsewhere")));
}

TEST_F(Program, ARunFromStartToEnd) {
  make_sheet();
  directory_.write("do", "HAR $ARG1\nHAR $ARG30\nHAR $ARG31\nDO none\nBYE\nHAR after\n");
  std::vector<std::string> words = {"top", "do"};
  for (int i = 1; i <= 31; ++i) words.push_back("a" + std::to_string(i));
  const auto ended = run(words);
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.out.substr(ended.out.find(" date : ")).substr(0, 8), " date : ");
  EXPECT_NE(ended.out.find("\n            ######    KIVO  version 2.02  22 mar 2004    ######\n\n"),
            std::string::npos);
  EXPECT_TRUE(ended.out.ends_with(summary("1 error, 0 warning"))) << ended.out;
  // The start-up command is one command line: thirty words and no more.
  std::string echo = "# DO do ";
  for (int i = 1; i <= 28; ++i) echo += "a" + std::to_string(i) + " ";
  EXPECT_EQ(directory_.lines("top/current_session"),
            (lines_t{"# KIVO  version 2.02", echo, " HARDcopy a1 ", " HARDcopy ",
                     "# Error on : \"HAR $ARG31\" ", "# Found invalid $ARG(n) in command line ",
                     " HARDcopy $ARG31 ", "# DO none ", "# !!! Error : file not found : \"none\" ",
                     " BYE ", " HARDcopy after ", "# End of DO "}));
  const std::string debug = directory_.read("top/debug_kivo");
  for (const char* said :
       {"# INITIALIZE pathname : \"top\"\n", "!!! ( INITIALIZE ) END \n",
        "# main : gx_vext.viewport_context    : 4\n", "@@@@@@ FINALIZE  after gx_terminate  \n"})
    EXPECT_NE(debug.find(said), std::string::npos) << said;
  EXPECT_TRUE(std::filesystem::exists(directory_.file("debug_kivo2")));
  EXPECT_TRUE(std::filesystem::exists(directory_.file("top/design_kv")));
}

TEST_F(Program, ASlipInTheUsersFilesIsShownAndTheSessionStarts) {
  make_sheet();
  directory_.write("home/kivo/init_menu", "1 'first' 'har x'\n9 'no level'\n");
  directory_.write("home/kivo/init_key", "do none\n");
  directory_.write("do;x", "har '$ARG1'\nbye\n");
  auto words = start({"top", "do;x", "a; !touch owned"});
  words.environment = {"VELMORAN=" + directory_.file("home").string()};
  const auto ended = run_program(shared_display(), words);
  EXPECT_EQ(ended.status, 0);
  EXPECT_TRUE(ended.out.ends_with(summary("2 errors, 0 warning"))) << ended.out;
  EXPECT_FALSE(std::filesystem::exists(directory_.file("owned")));
  EXPECT_EQ(directory_.lines("top/current_session"),
            (lines_t{"# $rmenu ", "# !!!   invalid menu level : \"9 'no level'\"",
                     "# DO $VELMORAN/kivo/init_key ", "# DO none ",
                     "# !!! Error : file not found : \"none\" ", "# End of DO ",
                     "# KIVO  version 2.02", "# DO do;x a; !touch owned ",
                     " HARDcopy 'a; !touch owned' ", " BYE ", "# End of DO "}));
}

TEST_F(Program, AQuestionWaitsForItsAnswer) {
  make_sheet();
  directory_.write("do", "READLN $VAR1 Name?\nHAR $VAR1\n");
  test_session session(shared_display(), start({"top", "do"}));
  session.wait_for_line("# DO do ");
  session.command("abc");  // no event is read before the question is asked
  session.wait_for_line(" READln $VAR1 Name? abc ");
  session.wait_for_line(" HARDcopy abc ");
  session.wait_for_line("# End of DO ");
  session.command("COM \"HAR \"");
  session.wait_for_line("# COMmand \"HAR \" ");
  session.command("x");
  session.wait_for_line(" HARDcopy x ");
  session.command("TRANS OFF;HAR unseen;BYE x");
  session.wait_for_line(" HARDcopy unseen ");
  session.wait_for_line("# !! Error : parameter number invalid ? ");
  session.command("quit");
  const auto ended = session.process().wait();
  EXPECT_EQ(ended.status, 0);
  EXPECT_TRUE(ended.out.ends_with(summary("0 error, 0 warning")));
}

TEST_F(Program, ControlAStopsACommandFile) {
  make_sheet();
  std::string commands;
  for (int i = 0; i < 200; ++i) commands += "SYST \"sleep 0.05\"\n";
  directory_.write("do", commands);
  test_session session(shared_display(), start({"top", "do"}));
  session.wait_for_line(" SYSTem \"sleep 0.05\" ");
  session.key(XK_a, test_session::control);
  session.wait_for_line("# End of DO ");
  const auto said = session.session_lines();
  EXPECT_LT(std::count(said.begin(), said.end(), " SYSTem \"sleep 0.05\" "), 190);
}

TEST_F(Program, TheEndOfTheServerEndsTheProgram) {
  make_sheet();
  test_display display;
  test_session session(display, start({"top"}));
  session.wait_for_line("# KIVO  version 2.02");
  display.kill_server();
  const auto ended = session.process().wait();
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.out, "");
}
}  // namespace
