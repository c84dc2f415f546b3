// Text files, the command-line words and the fatal stop, as the rest of the program meets them.
#include "gx/text/text_files.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "expand/debug.h"
#include "gx/text/arguments.h"
#include "gx/text/messages/session_state.h"
#include "gx/text/strings.h"
#include "tests/support/fatal_stop.h"
#include "tests/support/scratch_directory.h"

namespace {
class TextFiles : public testing::Test {
 protected:
  std::string path(const std::string& name) const { return directory_.file(name).string(); }
  std::vector<std::string> lines(const std::string& name) const {
    std::vector<std::string> read;
    std::FILE* file = gx_popen_file(name, 'r', true);
    if (file == nullptr) return {"cannot be opened"};
    for (gx_string_record_t line; gx_read_one_line(file, line);) read.emplace_back(gx_view(line));
    std::fclose(file);
    return read;
  }
  scratch_directory directory_;
};

TEST_F(TextFiles, LinesAreReadWhole) {
  const std::string x198(198, 'x');
  directory_.write("f", "one\n\ntab\there\n" + x198 + "\n" + x198 + "rest\nlast");
  EXPECT_EQ(lines(path("f")),
            (std::vector<std::string>{"one", "", "tab here", x198, x198, "rest", "last"}));
}

TEST_F(TextFiles, TheProductDirectoryStandsInPaths) {
  directory_.write("help", "hello\n");
  setenv("VELMORAN", directory_.path().c_str(), 1);
  EXPECT_EQ(lines("$VELMORAN/help"), std::vector<std::string>{"hello"});
  for (const char* unset : {"", static_cast<const char*>(nullptr)}) {
    if (unset == nullptr) {
      unsetenv("VELMORAN");
    } else {
      setenv("VELMORAN", unset, 1);
    }
    EXPECT_EQ(gx_view(gx_resolve_path("$VELMORAN/help")), "/users/velmoran/help");
  }
  EXPECT_EQ(gx_view(gx_resolve_path("a/$VELMORAN")), "a/$VELMORAN");
  EXPECT_EQ(gx_resolve_path(std::string(199, 'p')).len, 192);
  setenv("VELMORAN", std::string(500, '\t').c_str(), 1);
  EXPECT_EQ(gx_resolve_path("$VELMORAN/help").len, 192);
  unsetenv("VELMORAN");
}

TEST_F(TextFiles, WhatIsNoTextFileIsRefused) {
  EXPECT_EQ(gx_popen_file(path("none"), 'R', true), nullptr);
  EXPECT_EQ(gx_popen_file(path("none/none"), 'W', false), nullptr);
  EXPECT_EQ(gx_popen_file(directory_.path().string(), 'R', true), nullptr);
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(gx_popen_file(path("pipe"), 'R', true), nullptr);
  EXPECT_EQ(gx_popen_file("/dev/zero", 'R', true), nullptr);
  testing::internal::CaptureStdout();
  EXPECT_EQ(gx_popen_filei(path("none"), 'R', true), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "!!! ( gx_popen_filei ) impossible to open file  : \"" + path("none") + "\"\n");

  // What was found and cannot be opened ends a program with a user.
  EXPECT_EXIT(
      {
        say_all_on_stderr();
        gx_popen_file(path("pipe"), 'r', false);
      },
      testing::ExitedWithCode(0), "impossible to open file_name :'.*/pipe' \\(for R\\) \n\\?\\? ");
  std::FILE* made = gx_popen_file(path("made"), 'w', false);
  ASSERT_NE(made, nullptr);
  std::fclose(made);
  struct stat info {};
  ASSERT_EQ(stat(path("made").c_str(), &info), 0);
  const mode_t mask = umask(0);
  umask(mask);
  EXPECT_EQ(info.st_mode & 0777U, 0660U & ~mask);
  std::filesystem::create_symlink("made", path("link"));
  EXPECT_EQ(gx_popen_file(path("link"), 'W', false), nullptr);
}

TEST_F(TextFiles, TheTraceSaysWhatIsOpened) {
  directory_.write("f", "");
  gx_session.debugfile = std::fopen(path("trace").c_str(), "w");
  for (const char mode : {'r', 'x'}) std::fclose(gx_popen_file(path("f"), mode, true));
  EXPECT_EQ(gx_popen_file(path("none"), 'W', true), nullptr);
  std::fclose(gx_session.debugfile);
  gx_session.debugfile = nullptr;
  std::string trace = read_file(path("trace"));
  for (std::size_t at; (at = trace.find(path(""))) != trace.npos;) trace.erase(at, path("").size());
  EXPECT_EQ(trace,
            " GX_POPEN_FILE : file_name : \"f\"  rorw : r  rdonly : TRUE\n"
            " GX_POPEN_FILE : \"f\" open\n"
            " GX_POPEN_FILE : file_name : \"f\"  rorw : x  rdonly : TRUE\n"
            "!!! ( gx_popen_file ) rorw invalid  : \"f\" x\n"
            " GX_POPEN_FILE : \"f\" open\n"
            " GX_POPEN_FILE : file_name : \"none\"  rorw : W  rdonly : TRUE\n");
}

TEST_F(TextFiles, ACommandOfTheShellLosesItsQuotes) {
  const auto run = [&](const std::string& command) {
    std::filesystem::remove(path("ran"));
    gx_system(gx_string(command), [] { return false; });
    return std::filesystem::exists(path("ran"));
  };
  const std::string command = "echo >" + path("ran");
  for (const std::string quote : {"'", "\"", ""})
    EXPECT_TRUE(run(quote + command + quote)) << quote;
  for (const char* const none : {"'", "", ":"}) EXPECT_FALSE(run(none));
  EXPECT_TRUE(run(command + std::string(198 - command.size(), ' ')));
  EXPECT_FALSE(run(command + std::string(199 - command.size(), ' '))) << "too long";
}

TEST(Arguments, AreKeptCutAndNumbered) {
  const std::string x198(198, 'x'), x199(199, 'x');
  const char* const words[] = {"kivo", "a\tb", x198.c_str(), x199.c_str(), "last"};
  gx_store_arg(5, words);
  std::string kept;
  gx_string_record_t word;
  for (std::int32_t n = -1; n <= 41; ++n)
    if (gx_get_arg(n, word)) kept += std::string(gx_view(word)) + ",";
  EXPECT_EQ(kept, "kivo,a," + x198 + ",,last,");
  EXPECT_EQ(word.len, 0);
  std::vector<const char*> many(40, "w");
  gx_store_arg(40, many.data());
  EXPECT_TRUE(gx_get_arg(40, word));
  gx_session.nb_arg_comline = 41;  // by a caller's mistake
  EXPECT_FALSE(gx_get_arg(41, word));
  many.push_back("one too many");
  EXPECT_EXIT(gx_store_arg(41, many.data()), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(gx_store_arg(1, many.data()), testing::ExitedWithCode(0), "");
  gx_reset_state();
}

TEST(FatalStop, NamesTheCodeAndGivesBackInReverseOrder) {
  const auto stop = [] {
    gx_at_fatal_stop([] { std::fputs("first given back\n", stderr); });
    gx_at_fatal_stop([] {
      std::fputs("last given back\n", stderr);
      gx_set_status(gx_code::invalid_level);  // a stop within the stop must still end
    });
    gx_set_status(gx_code::page_obj_id_invalid);
  };
  expect_stop(stop, gx_code::invalid_level,
              " \\?\\? error  :            page_obj_id_invalid\nlast given back\n");
  EXPECT_EQ(gx_error_name(84), "name_length_invalid");
  EXPECT_EQ(gx_error_name(85), "");
  EXPECT_EQ(gx_error_name(-1), "");
  STATUS_T word;
  gx_check(word);
  word.all = gx_status_base + 44;
  expect_stop([&] { gx_check(word); }, gx_code::current_file_invalid,
              " gx_check :  status.all <> gx_operation_ok : 100991020");
  // Without a window there is no core to leave: a status, and the code on standard error.
  static constexpr gx_front_t no_user = {
      .messages = [] { return stderr; }, .aborts = false, .stop_status = 3};
  gx_set_front(no_user);
  const auto ends = testing::ExitedWithCode(no_user.stop_status);
  EXPECT_EXIT(gx_set_status(gx_code::invalid_level), ends, "code : 42\n");
  EXPECT_EXIT(kv_error_stop(), ends, "KV_ERROR_STOP");
  gx_set_front(gx_user_front);
}

TEST(FatalStop, AnEndOfTheProgramGivesBackAndHasAStatus) {
  const auto end = [] {
    say_all_on_stderr();
    gx_at_fatal_stop([] { std::fputs("given back\n", stderr); });
    gx_end_process("the display is gone", 5);
  };
  EXPECT_EXIT(end(), testing::ExitedWithCode(5), "^given back\nthe display is gone\n$");
}

// At a fatal stop the design's name is handed on, as a word of a program's.
TEST_F(TextFiles, TheDesignsNameReachesNoShell) {
  gx_vext.all_init_done = true;
  gx_vext.nb_arg_comline = 2;
  gx_vext.argcomline[1] = gx_string("top;touch " + path("OWNED") + ";#");
  const auto stop = [] {
    say_all_on_stderr();
    gx_set_status(gx_code::invalid_string);
  };
  EXPECT_DEATH(stop(),
               "code : 69\n(.|\n)* !! cmd_system : \"/users/velmoran/bin/save_context top;t");
  EXPECT_FALSE(std::filesystem::exists(path("OWNED")));
  gx_reset_state();
}

}  // namespace
