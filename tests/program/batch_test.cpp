// Sessions without a window: no test here but the one that compares has an X server.
#include <algorithm>
#include <csignal>

#include "tests/program/block_design.h"
#include "tests/program/program_fixture.h"
#include "tests/support/make_design.h"

namespace {

class Batch : public testing::Test {
 protected:
  Batch() { make_design(directory_, block_design); }

  // Runs a script in which `kivo` is the program, in a batch, on a display that is not there.
  process_result run(const std::string& script) const {
    const std::string head =
        "export DISPLAY=:7777 VELMORAN=/nowhere\nkivo() { " KIVO_PROGRAM " --batch \"$@\"; }\n";
    return test_process(
               {.directory = directory_.path(), .words = {"-c", head + script}, .program = "bash"})
        .wait();
  }
  process_result run_commands(const std::string& commands, const std::string& options = "") const {
    directory_.write("do", commands);
    return run("kivo " + options + " top do");
  }
  lines_t session() const { return directory_.lines("top/current_session"); }

  scratch_directory directory_;
};

TEST_F(Batch, TheExamplesExpandWithoutADisplay) {
  for (const std::string name : {"register", "filter"}) {
    const std::string folder = std::string(KIVO_SOURCE_DIR "/examples/") + name + "/";
    make_design_of_file(directory_, folder + name + ".gxt");
    const auto ended = run("env -u DISPLAY " KIVO_PROGRAM " --batch --strict " + name + " " +
                           folder + "expand.do");
    EXPECT_EQ(ended.status, 0) << ended.out;
    EXPECT_EQ(ended.err, "");
    EXPECT_EQ(ended.out, directory_.read(name + "/current_session") +
                             "\n -- KIVO  Execution complete...0 error, 0 warning --\n");
    EXPECT_GT(directory_.read(name + "/design_kv").size(), 5000U);
  }
}

TEST_F(Batch, ADesignNamedFromElsewhereIsReportedWithThePlaceToWorkIn) {
  directory_.write("do", "bye\n");
  const std::string place = directory_.path().string(), line = "# !! Warning : Sheets below";
  for (const std::string& design : {place + "/top", place + "//top//", std::string("../top")}) {
    const auto ended = run("cd block; kivo -q --strict " + design + " ../do");
    EXPECT_EQ(ended.status, 1) << design;
    EXPECT_NE(ended.out.find(line), std::string::npos) << ended.out;
    EXPECT_NE(ended.out.find(design.front() == '.' ? " .. " : place + " "), std::string::npos)
        << ended.out;
  }
  for (const std::string& design : {place + "/top", std::string("top"), std::string("./top/")})
    EXPECT_EQ(run("kivo -q --strict " + design + " do").out, "") << design;
}

TEST_F(Batch, ASignalEndsTheWaitForACommand) {
  const auto ended =
      run("mkfifo f; exec 3<>f; " KIVO_PROGRAM
          " --batch top - < f > out & kivo=$!\n"
          "until grep -q version out; do sleep .02; done; kill $kivo; wait $kivo; ended=$?\n"
          "cat out; exit $ended");
  EXPECT_EQ(ended.status, 128 + SIGTERM);
  EXPECT_TRUE(ended.out.ends_with("complete...0 error, 0 warning --\n")) << ended.out;
}

TEST_F(Batch, CommandsAnswerAsInTheWindow) {
  directory_.write(
      "walk.do",
      "sel area inst context 0.1 0.1 2.9 1.9;status object edit;show link context\n"
      "view down X1;sel prop edit INST R9;status property edit;view area edit .2 .2 1 1\n"
      "check sheet;view up;view up;act sym res;view all context;pop;pop\n"
      "view sheet block;mark edit 0.3 0.4;base edit 0.5 0.5;grid st 0.1;snap on;smash on\n"
      "send x;give v;find path /X1/R9;display off;trans off;define key f4 'x';status key\n"
      "nosuch;sel;har a b c\n");
  run("kivo top walk.do");
  const auto here = session();
  directory_.write("walk.do", directory_.read("walk.do") + "bye\n");
  run_program(shared_display(), {.directory = directory_.path(), .words = {"top", "walk.do"}});
  auto there = session();
  ASSERT_EQ(std::erase(there, " BYE "), 1U);
  EXPECT_EQ(here, there);
  EXPECT_GT(here.size(), 60U);
}

TEST_F(Batch, TheStatusIsThatOfTheWorstLine) {
  const struct {
    const char *commands, *options;
    int status;
    const char* line;
  } cases[] = {
      {"har Error", "--strict", 0, " HARDcopy Error "},
      {"!echo har Error\nbye", "--strict", 0, " HARDcopy Error "},
      {"sel area inst edit 1.8 .8 1.9 .9", "", 0, "# !! Warning : Nothing Selected  ? "},
      {"sel area inst edit 1.8 .8 1.9 .9", "--strict", 1, "# !! Warning : Nothing Selected  ? "},
      {"nosuch;bye", "", 1, "#  !!! Unknown Command  ?? "},
      {"bye x", "", 1, "# !! Error : parameter number invalid ? "},
      {"grid step x", "", 1, "# ! Grid step INVALID ? "},
      {"do none", "", 1, "# !!! Error : file not found : \"none\" "},
      {"store size 99999999999", "", 1, "# !! Error :  3rd parameter incorrect ? "},
      {"send x", "", 1, "# !! Sorry Spice is not ready ... "},
      {"readln $VAR1 Name?", "", 1, "# !! Error : There is no user to answer ? "},
      {"do top/current_session", "", 1, "# !! Error : File not found  or Invalid ? "},
      {"trans off\nrun", "", 1, "# !! Error : No property to define the PRIMITIVE ? "},
  };
  for (const auto& c : cases) {
    const auto ended = run_commands(c.commands, c.options);
    EXPECT_EQ(ended.status, c.status) << c.commands << ended.out;
    EXPECT_EQ(std::ranges::count(split_lines(ended.out), c.line), 1) << c.commands << ended.out;
  }
}

TEST_F(Batch, AStatusOfOneIsExplained) {
  const struct {
    const char *commands, *options, *said;
  } cases[] = {
      {"har a", "--strict", ""},
      {"nosuch", "", "kivo: status 1: 1 line of error: \"#  !!! Unknown Command  ?? \"\n"},
      {"run\nnosuch", "--quiet",
       "kivo: status 1: 2 lines of error, the first: "
       "\"# !! Error : No property to define the PRIMITIVE ? \"\n"},
      {"sel area inst edit 1.8 .8 1.9 .9", "--strict",
       "kivo: status 1: 1 line of warning: \"# !! Warning : Nothing Selected  ? \"\n"},
  };
  for (const auto& c : cases) {
    const auto ended = run_commands(c.commands, c.options);
    EXPECT_EQ(ended.err, c.said) << ended.out;
    EXPECT_EQ(ended.status, *c.said == 0 ? 0 : 1);
  }
}

TEST_F(Batch, AFullDiskUnderARunIsNamed) {
  std::string commands = "PRIMI CLASS\nPRO INS S CLASS\nPRO PIN S PIN\nPRO NET S NET\nRUN\n";
  for (int i = 0; i < 30; ++i) commands += "har " + std::string(80, 'x') + "\n";
  directory_.write("do", commands);
  const auto ended = run("set -o pipefail; (trap '' XFSZ; ulimit -f 1; kivo top do) | cat");
  EXPECT_EQ(ended.status, 1);
  const auto lines = split_lines(ended.out);
  const auto at =
      std::ranges::find(lines, "# !! Error : Expanded data not written whole in : \"top\"");
  ASSERT_NE(at, lines.end()) << ended.out;
  EXPECT_EQ(at[1], "# !! design_kv : File too large");
  EXPECT_EQ(std::ranges::count(lines,
                               " !! The session file is not whole : \"top/current_session\" : File "
                               "too large"),
            1)
      << ended.out;
}

// What python's json makes of the objects, "command status records" in a line each.
std::string read_by_python(const std::string& what) {
  return "python3 -c '\nimport json, sys\nfor line in sys.stdin:\n a = json.loads(line)\n"
         " print(" +
         what + ")'";
}

TEST_F(Batch, EachLineIsAnsweredByOneObject) {
  directory_.write(
      "lines",
      "primi CLASS\npro ins S CLASS;pro pin S PIN;pro net S NET\nrun\nnosuch \\ \"x\"\n"
      "find path /X1\nrule single-pin off\n!echo har a\n"
      "sel area inst edit 1.8 .8 1.9 .9\nbye\n");
  const auto kinds = run("kivo --json --strict top - < lines | " +
                         read_by_python("a[\"command\"][:9], a[\"status\"], "
                                        "[r[\"type\"] for r in a[\"records\"]][-1:], "
                                        "a[\"lines\"][-1][\"kind\"]"));
  EXPECT_EQ(split_lines(kinds.out),
            (lines_t{" 0 [] plain", "primi CLA 0 [] plain", "pro ins S 0 [] plain",
                     "run 1 ['counts'] plain", "nosuch \\  1 [] detail",
                     "find path 0 ['place'] plain", "rule sing 0 [] plain", "!echo har 0 [] plain",
                     "sel area  1 [] warning", "bye 0 [] plain"}))
      << kinds.err;
  // Of the run: a message with its path, and what came out.
  const auto run_said = run("kivo --json top - < lines | sed -n 4p | " +
                            read_by_python("[r for r in a[\"records\"] if r[\"type\"] == "
                                           "\"counts\"], len(a[\"lines\"])"));
  EXPECT_EQ(
      run_said.out.substr(0, run_said.out.find(']')),
      "[{'type': 'counts', 'instances': 2, 'macros': 1, 'pins': 4, 'macro_pins': 1, 'nets': 1, "
      "'errors': 4, 'warnings': 0}");
  // A command file is one command line, and nothing else is printed.
  directory_.write("do", "har a\nsystem 'echo printed'\nrun\n");
  const auto whole = run("kivo --json top do 2>/dev/null | " +
                         read_by_python("a[\"command\"], len(a[\"lines\"]) > 0"));
  EXPECT_EQ(split_lines(whole.out), (lines_t{" True", "do do True"})) << whole.out;
}

TEST_F(Batch, AMarkEndsEachAnswer) {
  const auto ended =
      run("printf 'har a\\nnosuch\\nhar b\\n' | kivo --quiet --mark '--end 1' top -");
  EXPECT_EQ(split_lines(ended.out), (lines_t{"--end 1", "#  !!! Unknown Command  ?? ",
                                             "# \"nosuch\" ", "--end 1", "--end 1"}));
}

TEST_F(Batch, QuietLeavesErrorsAndWarnings) {
  const auto ended = run_commands(
      "har a\nnosuch\nhar b\ngrid step x\ndo none\nsel area inst edit 1.8 .8 1.9 .9\n", "--quiet");
  EXPECT_EQ(
      split_lines(ended.out),
      (lines_t{"#  !!! Unknown Command  ?? ", "# \"nosuch\" ", "# GRID STEp x ",
               "# ! Grid step INVALID ? ", "# DO none ", "# !!! Error : file not found : \"none\" ",
               "# SELect AREa inst edit 1.8 .8 1.9 .9 ", "# !! Warning : Nothing Selected  ? "}));
  EXPECT_EQ(std::ranges::count(session(), " HARDcopy b "), 1);
}

TEST_F(Batch, WhatCannotBeUsedIsNamedOnStandardError) {
  std::filesystem::create_directories(directory_.file("empty"));
  std::filesystem::create_directories(directory_.file("busy/current_session"));
  directory_.write("do", "bye");
  const std::string many =
      " 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27";
  const struct {
    std::string words, said;
  } cases[] = {
      {"top", "--batch wants a DESIGN and a DO-FILE"},
      {"--nosuch top do", "unknown option --nosuch"},
      {"top none", "none: No such file or directory"},
      {"top top", "top: Is a directory"},
      {"nowhere do", "nowhere: No such file or directory"},
      {"do do", "do: Not a directory"},
      {"empty do", "!! error : No sheet Found : \"empty\""},
      {"busy do",
       "impossible to open current_session_file : \"busy/current_session\" : Is a directory"},
      {"top do" + many + " 28 29", "a command file takes at most 28 arguments"},
      {"top do $(printf '%0199d' 1)", "longer than 198 characters"},
      {"top do $'a\\nb'", "only printable characters of ASCII"},
      {"top - <&-", "standard input: Bad file descriptor"},
  };
  for (const auto& c : cases) {
    const auto ended = run("kivo " + c.words);
    EXPECT_EQ(ended.status, 2) << c.words;
    EXPECT_EQ(ended.out, "") << c.words;
    EXPECT_TRUE(ended.err.starts_with("kivo: " + c.said)) << c.words << ended.err;
  }
  EXPECT_EQ(run("kivo top do" + many + " 28").status, 0);
  EXPECT_EQ(run(KIVO_PROGRAM " --strict top do").status, 2);
}

TEST_F(Batch, AScriptTalksThroughPipes) {
  const auto ended = run(R"(
    coproc K { kivo top - one 'two words'; }
    ask() { echo "$1" >&${K[1]}; read -r -t 20 -u ${K[0]} line; echo "$line"; }
    read -r -t 20 -u ${K[0]} line; echo "$line"
    ask 'har "$ARG2"'; ask 'assign $VAR3 x'; ask '!cat'; read -r -t 20 -u ${K[0]} line; echo "$line"
    ask 'har $VAR3;har y'; read -r -t 20 -u ${K[0]} line; echo "$line"
    echo 'bye' >&${K[1]}; wait $K_PID; echo $?)");
  EXPECT_EQ(split_lines(ended.out),
            (lines_t{"# KIVO  version 2.02", "HARDcopy \"two words\"", "ASSIgn $VAR3 x", "# cat",
                     "# End of Exec", "HARDcopy x", "HARDcopy y", "0"}))
      << ended.err;
  // A line of its user is over when it is done: so is the depth that a missing file has left.
  std::string lines;
  for (int i = 0; i < 12; ++i) lines += "do none\n";
  directory_.write("in", lines + "do in2\ndo in2\nbye\nhar late\n");
  directory_.write("in2", lines);
  EXPECT_EQ(run("kivo top - <in").status, 1);
  const auto said = session();
  EXPECT_EQ(std::ranges::count(said, "# !!! Error : file not found : \"none\" "), 12 + 2 * 9);
  EXPECT_EQ(std::ranges::count(said, "# !!! Error : too many level of DO FILE : \"none\" "), 2 * 3);
  EXPECT_EQ(std::ranges::count(said, "# End of DO "), 2);
  EXPECT_EQ(said.back(), " BYE ");
}

TEST_F(Batch, WordsOfTheCommandLineStayWords) {
  directory_.write("a do;x", "har '$ARG1|$ARG2'\nhar [$ARG3]\n");
  EXPECT_EQ(run("kivo top 'a do;x' 'b; !touch owned' '' '\"c'").status, 0);
  EXPECT_FALSE(std::filesystem::exists(directory_.file("owned")));
  EXPECT_EQ(session(),
            (lines_t{"# KIVO  version 2.02", "# DO a do;x b; !touch owned  \"c ",
                     " HARDcopy 'b; !touch owned|' ", " HARDcopy [\"c] ", "# End of DO "}));
}

TEST_F(Batch, LostOutputIsToldAndTheRunGoesOn) {
  std::string commands = "PRIMI CLASS\nPRO INS S CLASS\nPRO PIN S PIN\nPRO NET S NET\nRUN\n";
  for (int i = 0; i < 30; ++i) commands += "har " + std::string(80, 'x') + "\n";
  directory_.write("do", commands);
  const struct {
    std::string script, said;
  } cases[] = {
      {"kivo top do >/dev/full", "standard output: No space left on device\n"},
      {"kivo top do >&-", "standard output: Bad file descriptor\n"},
      {"{ sleep .1; kivo top do; echo $? >st; } | :; exit $(<st)",
       "standard output: Broken pipe\n"},
      {"trap '' XFSZ; ulimit -f 2; kivo top do >/dev/null",
       "top/current_session: File too large\n"},
  };
  for (const auto& c : cases) {
    directory_.write("top/design_kv", "");
    const auto ended = run(c.script);
    EXPECT_EQ(ended.status, 1) << c.script;
    // Then what made the status 1 besides: the run has errors.
    EXPECT_EQ(ended.err.substr(0, ended.err.find('\n') + 1), "kivo: " + c.said) << c.script;
    EXPECT_GT(directory_.read("top/design_kv").size(), 500U) << c.script;
  }
}
}  // namespace
