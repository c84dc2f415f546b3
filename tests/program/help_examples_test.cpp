// What the texts of the product directory ask users to type: it runs without an error.
#include <thread>

#include "tests/program/program_fixture.h"
#include "tests/support/make_design.h"
#include "tests/support/raw_results.h"

namespace {

namespace fs = std::filesystem;

// Of each "Example:" line the commands, by the help file.
std::map<std::string, std::string> help_examples() {
  std::map<std::string, std::string> examples;
  constexpr std::string_view mark = "\nExample:";
  for (const auto& file : fs::directory_iterator(KIVO_PRODUCT_DIR "/kivo/help")) {
    const auto text = read_file(file.path());
    for (auto at = text.find(mark); at != text.npos; at = text.find(mark, at + 1)) {
      const auto from = text.find_first_not_of(' ', at + mark.size());
      examples[file.path().filename()] += text.substr(from, text.find('\n', from) - from) + "\n";
    }
  }
  return examples;
}

TEST(HelpExamples, EachRunsOnTheRegister) {
  scratch_directory directory;
  make_design_of_file(directory, KIVO_SOURCE_DIR "/examples/register/register.gxt");
  fs::create_directory(directory.path() / "lib");
  directory.write(
      "expand.do",
      "PRIMitive CLASS\nPROPerty INStance S CLASS\nPROPerty PIN S PIN\nPROPerty NET S NET\n");
  auto examples = help_examples();
  ASSERT_GT(examples.size(), 20U);
  const auto question = examples.extract("kv_1_READLN");
  ASSERT_FALSE(question.empty());
  const auto waiving = examples.extract("kv_1_WAIVE");
  const auto after_run = examples.extract("kv_1_GIVE");
  std::string commands = examples.extract("kv_1_RUN").mapped() + after_run.mapped();
  commands += examples.extract("kv_1_VALUES").mapped();  // others ask for values, too
  // One device is found by its values: SHOw FINding and NEXt FINding go there.
  directory.write("register.raw",
                  raw_header("Transient Analysis", "real", "2",
                             {"time\ttime", "v(q_2)\tvoltage", "@m.xr.x2.mp1[vds]\tvoltage",
                              "@m.xr.x2.mp1[vdsat]\tvoltage"}) +
                      double_bytes({0, 0, 0.1, 0.2, 1e-7, 1.8, 0.1, 0.2}));
  for (const auto& [file, example] : examples) {
    if (file == "kv_1_DIFFERENCE") commands += "system \"cp -r register before\"\n";
    if (file == "kv_1_CHECK") commands += "rule net-repeated warning\n";  // finds something here
    commands += example;
    if (file == "kv_1_CHECK") commands += waiving.mapped();  // before devices are listed
    if (file == "kv_1_SEARCH") commands += "search /\n";
    if (file == "kv_1_ACTIVATE" || file == "kv_1_ASSIGN") commands += "pop\n";
    if (file == "kv_1_FIND" || file == "kv_1_NEXT") commands += "view up\nview up\n";
    if (file == "kv_1_VIEW") commands += "view up\n";
  }
  directory.write("examples.do", commands);

  test_process simulator(
      {.directory = directory.path(), .words = {"register", "2"}, .program = KIVO_SIMLINK});
  for (int i = 0; i < 200 && !fs::is_fifo(directory.path() / "register/Lorb_To_Spice_Fifo"); ++i)
    std::this_thread::sleep_for(test_time(50));
  test_session session(shared_display(), {.directory = directory.path(),
                                          .words = {"register", "examples.do"},
                                          .environment = {"VELMORAN=" KIVO_PRODUCT_DIR}});
  session.settle();
  session.command(question.mapped().substr(0, question.mapped().find('\n')));
  session.command("XR");
  session.wait_for_line(" READln $VAR1 instance_? XR ");
  session.wait_for_line(" VIEw DOWn  XR");
  session.command("bye");
  EXPECT_NE(session.process().wait().out.find("...0 error, "), std::string::npos);
  for (const auto& line : directory.lines("register/current_session"))
    EXPECT_FALSE(line.starts_with("# !") && !line.starts_with("# !! warning")) << line;
  EXPECT_EQ(simulator.wait().out, "plot v(CLK) \nrun 10n\n");
  EXPECT_TRUE(fs::exists(directory.path() / "started"));
}

}  // namespace
