// The command language: how a line becomes commands, words and values, and how each answers.
#include "app/language/interpreter.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "app/language/command_table.h"
#include "app/language/next_word.h"
#include "app/language/substitution.h"
#include "gx/text/messages/front.h"
#include "gx/vext.h"
#include "tests/support/scratch_directory.h"
#include "tests/support/session_capture.h"

namespace {

TEST(CommandTable, WordsMatchByAbbreviation) {
  const struct {
    const char* line;
    const char* spelling;  // null: unknown
  } cases[] = {
      {"sel are", "SELect AREa"},
      {"SELECT AREA", "SELect AREa"},
      {"selxyz AREyou", "SELect AREa"},
      {"SE AR", nullptr},
      {"SEL", nullptr},
      {"DO file", "DO"},
      {"DOX file", nullptr},
      {"DOBX", "DOBin"},
      {"DODIR", "DODIRectbin"},
      {"DODI", nullptr},
      {"G", "GIVE"},
      {"g", "GIVE"},
      {"GR", nullptr},
      {"GIVES", "GIVE"},
      {"VIEW A", nullptr},
      {"VIEW AL", "VIEw ALL"},
      {"vie ar", "VIEw AREa"},
      {"BYES", nullptr},
      {"BYE", "BYE"},
      {"QUI", nullptr},
      {"QUITE", nullptr},
      {"MARK RECT", "MARK RECTangle"},
      {"MARK 1 2", "MARK"},
      {"MARKS RECT", nullptr},
      {"CHA PRO SWI", "CHAnge PROperty SWItches"},
      {"CHA PRO", nullptr},
      {"GRID ON", "GRID ON or OFF"},
      {"GRID ST", "GRID STep"},
      {"GRI ON", nullptr},
      {"TRANSCRIPT X", nullptr},
      {"A", nullptr},
      {"JUMP", nullptr},
  };
  kv_array_param_t none;
  for (const auto& c : cases) {
    kv_words_t words;
    kv_split_words(gx_string(c.line), words);
    const auto* row = kv_find_command({words.all(), none, none});
    if (c.spelling == nullptr) {
      EXPECT_EQ(row, nullptr) << c.line;
    } else {
      ASSERT_NE(row, nullptr) << c.line;
      EXPECT_TRUE(row->syntax.starts_with(c.spelling)) << c.line << " is " << row->syntax;
    }
  }
  // No row hides behind an earlier one.
  for (const auto& row : kv_command_table()) {
    kv_words_t words;
    for (const auto& keyword : row.keywords) {
      if (keyword.empty()) break;
      words.word[words.count++] = gx_string(keyword);
    }
    if (row.exact <= row.keywords[0].size()) {
      EXPECT_EQ(kv_find_command({words.all(), none, none}), &row) << row.syntax;
    }
    const bool has_number = row.syntax.starts_with("$CU1");
    EXPECT_TRUE(row.exact == 0 || row.exact == row.keywords[0].size() || has_number) << row.syntax;
  }
}

TEST(CommandTable, TheSyntaxLineGivesTheWordCounts) {
  static_assert(kv_counts_of("A") == 0b10);
  static_assert(kv_counts_of("A x [y]") == 0b1100);
  static_assert(kv_counts_of("A ON or OFF") == 0b100);
  static_assert(kv_counts_of("A [E or C [x y]]") == 0b10110);
  static_assert(kv_counts_of("A low [[typical] high]") == 0b11100);
  static_assert(kv_counts_of("A x [y ...]") == 0x7FFFFFFC);
}

TEST(CommandTable, WhatMayFollowTheWordsOfALine) {
  const struct {
    std::vector<std::string> before;
    std::string wanted;
  } cases[] = {
      {{"grid"}, "ON OFF STep "},
      {{"grid", "st"}, ""},
      {{"grid", "st", "1"}, ""},
      {{"view"}, "ALL AREa SHEet DOWn UP LASt TREe "},
      {{"view", "al"}, "Edit Context "},
      {{"view", "down"}, "block "},
      {{"view", "tree"}, "ON OFF path "},
      {{"view", "sheet"}, "file "},
      {{"act", "symbol"}, "file "},
      {{"search"}, "file "},
      {{"show", "file"}, "file "},
      {{"do"}, "file "},
      {{"do", "x", "y", "z"}, ""},
      {{"rule", "x"}, "ERRor WARning OFF "},
      {{"check", "design", "sarif"}, "JUNit "},
      {{"find", "path"}, "path "},
      {{"explain", "net", "/a", "i"}, "path "},
      {{"nosuch"}, ""},
  };
  for (const auto& c : cases) {
    const auto wanted = kv_wanted_word(c.before);
    std::string found;
    for (const auto keyword : wanted.keywords) found += std::string(keyword) + " ";
    for (const auto& [is, name] : {std::pair{wanted.is_path, "path "},
                                   {wanted.is_block, "block "},
                                   {wanted.is_file, "file "}})
      if (is) found += name;
    EXPECT_EQ(found, c.wanted) << testing::PrintToString(c.before);
  }
}

TEST(Substitution, ReferencesBecomeValues) {
  kv_array_param_t values;
  values[0] = gx_string("one");
  values[1] = gx_string("$ARG1");  // a value is not scanned again
  values[11] = gx_string("twelve");
  values[29] = gx_string(std::string(190, 'x'));
  const struct {
    std::string text, result;
    bool valid;
  } cases[] = {
      {"a $ARG1 b", "a one b", true},
      {"$arg1$Arg12", "onetwelve", true},
      {"$ARG2", "$ARG1", true},
      {"<$ARG3>", "<>", true},
      {"$ARG121", "twelve1", true},
      {"$ARG01", "one", true},
      {"$$ARG1", "$one", true},
      {"$ARGX $AR", "$ARGX $AR", true},
      {"$ARG1 $ARG31 $ARG1", "one $ARG31 $ARG1", false},
      {"$ARG0", "$ARG0", false},
      {"$ARG", "$ARG", true},
      {"$ARG30 $ARG30 $ARG1", std::string(190, 'x') + " " + std::string(8, 'x'), true},
  };
  for (const auto& c : cases) {
    const auto result = kv_substitute(gx_string(c.text), "$ARG", values);
    EXPECT_EQ(gx_view(result.text), c.result);
    EXPECT_EQ(result.valid, c.valid) << c.text;
  }
}

class Interpreter : public testing::Test {
 protected:
  std::string file(const std::string& name, const std::string& text) {
    const std::string path = directory_.path() / name;
    std::ofstream(path) << text;
    return path;
  }
  session_capture session_;
  scratch_directory directory_;
};

// HARdcopy does nothing but echo its words, which shows what was run.
TEST_F(Interpreter, LinesAreSplitIntoCommands) {
  const struct {
    const char* line;
    lines_t answers;
  } cases[] = {
      {"HAR 1;har 2", {" HARDcopy 1 ", " HARDcopy 2 "}},
      {"HAR 1;;HAR 2", {" HARDcopy 1 "}},
      {";;HAR 1", {}},
      {";HAR 1", {" HARDcopy 1 "}},
      {";", {}},
      {"HAR 1; ;HAR 2;", {" HARDcopy 1 ", " HARDcopy 2 "}},
      {"# HAR 1;HAR 2", {}},
      {"HAR 1; #HAR 2;HAR 3", {" HARDcopy 1 "}},
      {",,HAR,1,", {" HARDcopy 1 "}},
      {"HAR 'a b'", {" HARDcopy 'a b' "}},
      {"HAR \"a 'b\"", {" HARDcopy \"a 'b\" "}},
      {"HAR \"a b", {" HARDcopy \"a b "}},
      {"HAR 'a;b';HAR \"c,;d\"", {" HARDcopy 'a;b' ", " HARDcopy \"c,;d\" "}},
      {"HAR '';HAR \";\"", {" HARDcopy '' ", " HARDcopy \";\" "}},
      {"HAR it's;HAR 'x", {" HARDcopy it's ", " HARDcopy 'x "}},
      {"", {}},
      {"   ", {}},
      {" nonsense x;HAR 1", {"#  !!! Unknown Command  ?? ", "# \" nonsense x\" ", " HARDcopy 1 "}},
      {"%HAR", {"#  !!! Unknown Command  ?? ", "# \"%HAR\" "}},
      {"$CX1", {"#  !!! Unknown Command  ?? ", "# \"$CX1\" "}},
      {"PLOT", {"# PLOt ", "# !! Please Use \"lorb\" to Plot .\""}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(session_.run(c.line), c.answers) << c.line;
    EXPECT_FALSE(gx_vext.cmd_executing);
  }
  std::string pieces, words = "DISPLAY";
  for (int i = 0; i < 31; ++i) pieces += "HAR;";
  EXPECT_EQ(session_.run(pieces), lines_t(30, " HARDcopy "));
  for (int i = 2; i <= 31; ++i) words += " " + std::to_string(i);
  EXPECT_TRUE(session_.run(words)[0].ends_with(" 29 30 "));
}

// It repeats the words after those that the refusal names itself.
TEST_F(Interpreter, EveryCommandRefusesAWrongNumberOfWords) {
  int refused = 0;
  for (const auto& row : kv_command_table()) {
    if (row.refusal.empty() || row.deciding != nullptr || row.refuse != kv_refuse) continue;
    lines_t words;
    for (const auto keyword : row.keywords)
      if (!keyword.empty()) words.emplace_back(keyword);
    kv_words_t named;
    kv_split_words(gx_string(row.refusal.substr(1)), named);
    while (words.size() <= 30 && row.takes(static_cast<int>(words.size()))) words.emplace_back("1");
    if (words.size() > 30) continue;
    std::string line, answer(row.refusal);
    for (std::size_t i = 0; i < words.size(); ++i) {
      line += words[i] + " ";
      if (i >= named.count && row.first_echoed != kv_no_words) answer += words[i] + " ";
    }
    EXPECT_EQ(session_.run(line), (lines_t{answer, "# !! Error : parameter number invalid ? "}));
    ++refused;
  }
  EXPECT_GT(refused, 60);
}

TEST_F(Interpreter, ArgumentsAndVariables) {
  for (int i = 1; i <= 12; ++i)
    session_.args[static_cast<std::size_t>(i - 1)] = gx_string("a" + std::to_string(i));
  EXPECT_EQ(session_.run("HAR $ARG3"), lines_t{" HARDcopy a3 "});
  EXPECT_EQ(session_.run("HAR $arg12"), lines_t{" HARDcopy a12 "});
  EXPECT_EQ(session_.run("HAR $ARG13"), lines_t{" HARDcopy "});
  EXPECT_EQ(session_.run("HAR $ARG31"),
            (lines_t{"# Error on : \"HAR $ARG31\" ", "# Found invalid $ARG(n) in command line ",
                     " HARDcopy $ARG31 "}));
  EXPECT_EQ(session_.run("ASSIGN $VAR2 abc"), lines_t{" ASSIgn $VAR2 abc "});
  EXPECT_EQ(session_.run("HAR $VAR2"), lines_t{" HARDcopy abc "});
  EXPECT_EQ(session_.run("assi $var30 $ARG1;HAR $VAR30"),
            (lines_t{" ASSIgn $var30 a1 ", " HARDcopy a1 "}));
  EXPECT_EQ(session_.run("ASSI $VAR2;HAR x$VAR2"), (lines_t{" ASSIgn $VAR2 ", " HARDcopy x "}));
  EXPECT_EQ(session_.run("HAR $VAR0"),
            (lines_t{"# Error on : \"HAR $VAR0\" ", "# Found invalid $VAR(n) in command line ",
                     " HARDcopy $VAR0 "}));
}

TEST_F(Interpreter, ShellCommands) {
  const std::string made = directory_.path() / "made";
  EXPECT_EQ(session_.run("SYST \"echo text > " + made + "\""),
            lines_t{" SYSTem \"echo text > " + made + "\" "});
  EXPECT_EQ(session_.run("SHOW FILE " + made),
            (lines_t{"# \"text\" ", " SHOw FILe " + made + " "}));
  EXPECT_EQ(session_.run("SYST;HAR"),
            (lines_t{"# SYSTem ", "# !! Error : parameter number invalid ? ",
                     "#  !!! Unknown Command  ?? ", "# \"SYST\" ", " HARDcopy "}));

  session_.vars[0] = gx_string("outer");
  const auto output = file("output", "HAR $VAR1\nASSI $VAR1 in\nHAR $VAR1\n\nHAR never\n");
  EXPECT_EQ(session_.run(" !cat " + output + ";HAR $VAR1"),
            (lines_t{"# cat " + output + " ", " HARDcopy ", " ASSIgn $VAR1 in ", " HARDcopy in ",
                     "# End of Exec ", " HARDcopy outer "}));
  // A ";" of the shell is none of the line, and quotes are the shell's.
  EXPECT_EQ(session_.run("!echo \"HAR '1;2'\" \\; '#';HAR 3"),
            (lines_t{"# echo \"HAR '1;2'\" \\; '#' ", " HARDcopy '1;2' ", "# End of Exec ",
                     " HARDcopy 3 "}));
  setenv("VELMORAN", (directory_.path() / "it's $(here)").c_str(), 1);
  const auto program = directory_.path() / "it's $(here)/program";
  write_file(program, "echo HAR quoted\n");
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  EXPECT_EQ(session_.run("!$VELMORAN/program")[1], " HARDcopy quoted ");
  unsetenv("VELMORAN");
  EXPECT_EQ(session_.run("!"), lines_t{"!! Warning : Invalid command to exec ...."});
}

TEST_F(Interpreter, AProgramThatRunsItselfComesToAnEnd) {
  const std::string script = directory_.path() / "again";
  std::ofstream(script) << "HAR $ARG1\nDO " << script << " $ARG1+\n";
  const auto answers = session_.run("DO " + script + " x");
  EXPECT_EQ(std::count(answers.begin(), answers.end(), "# End of DO "), 10);
  EXPECT_EQ(answers[1], " HARDcopy x ");
  EXPECT_EQ(answers[19], " HARDcopy x+++++++++ ");
  EXPECT_EQ(answers[20], "# DO " + script + " x++++++++++ ");
  EXPECT_EQ(answers[21], "# !!! Error : too many level of DO FILE : \"" + script + "\" ");
  EXPECT_EQ(gx_vext.num_errors, 1);
  EXPECT_EQ(gx_vext.do_ind, 0);
}

TEST_F(Interpreter, CommandFilesHaveTablesOfTheirOwn) {
  session_.args[1] = gx_string("outer");
  session_.vars[0] = gx_string("outer");
  const auto path = file("f", "HAR $ARG2\nHAR $ARG3\nHAR $VAR1\nASSI $VAR1 x\n\nBYE\nHAR last");
  EXPECT_EQ(session_.run("DO " + path + " a b;HAR $VAR1"),
            (lines_t{"# DO " + path + " a b ", " HARDcopy b ", " HARDcopy ", " HARDcopy ",
                     " ASSIgn $VAR1 x ", " BYE ", " HARDcopy last ", "# End of DO ",
                     " HARDcopy outer "}));
  EXPECT_TRUE(gx_vext.end_flag);
  EXPECT_EQ(session_.run("DO \"" + path + "\"")[1], " HARDcopy ");
  EXPECT_EQ(session_.run("DO none a"),
            (lines_t{"# DO none a ", "# !!! Error : file not found : \"none\" "}));
  EXPECT_EQ(gx_vext.num_errors, 1);
  const auto loop = directory_.path() / "loop";
  std::filesystem::create_symlink("loop", loop);
  for (const std::string command : {"DO ", "SHOW FILE ", "$RMENU "})
    EXPECT_EQ(session_.run(command + loop.string()).back(),
              "# !! Too many levels of symbolic links");
}

TEST_F(Interpreter, SessionCommands) {
  const std::string bad_second = "# !! Error :  2nd parameter incorrect ? ";
  setenv("VELMORAN", directory_.path().c_str(), 1);
  const std::string help = directory_.path().string() + "/kivo/help/";
  const struct {
    std::string line;
    lines_t answers;
  } cases[] = {
      {"DISPLAY off", {" DISplay OFF "}},
      {"DISPLAY X", {"# DISplay X ", bad_second}},
      {"TRANS OFF", {" TRANScript  OFF "}},
      {"TRANS OX", {"# TRANScript OX ", bad_second}},
      {"HELP",
       {"# HELp ", "# !! Error :  List of commands for Help not found ? ",
        "# !! : \"" + help + "list_commands\" "}},
      {"HELP Do",
       {"# HELp Do ", "# !! Error :  Help on this command not found ? ",
        "# !! : \"" + help + "kv_1_Do\" "}},
      {"SHOW FILE none", {"# SHOw FILe none ", "# !! Error : File not found  or Invalid ? "}},
      {"READLN VAR1 x", {"# READln VAR1 x ", bad_second}},
      {"READLN $VAR31 Name? x", {"# READln $VAR31 Name? x ", bad_second}},
      {"READLN $VARx Name? x", {}},
      {"READLN $VAR1 Name? x;HAR $VAR1", {" READln $VAR1 Name? x ", " HARDcopy x "}},
      {"DOBIN none", {"# DOBin none ", "# !!! Error : Procedure Entry not found : \"none\" "}},
      {"DODIR main a",
       {"# DODIRectbin main a ", "# !!! Error : Procedure Entry not found : \"main\" "}},
      {"COM \"CHANGE VALUE\"", {"# COMmand \"CHANGE VALUE\" "}},
  };
  for (const auto& c : cases) EXPECT_EQ(session_.run(c.line), c.answers) << c.line;
  unsetenv("VELMORAN");
  EXPECT_EQ(gx_view(gx_vext.str_cmd), "CHANGE VALUE ");
  EXPECT_FALSE(gx_vext.end_flag);
  EXPECT_FALSE(gx_vext.display_on);
  EXPECT_EQ(gx_vext.num_errors, 2);
}

}  // namespace
