// Values of a simulator in the real program: on the picture, as waveforms, under the pointer; and
// those that ngspice finds when it is at the other end.
#include <unistd.h>

#include <algorithm>

#include "tests/program/interactive.h"
#include "tests/support/raw_results.h"

namespace {

class ValuesProgram : public Interactive {
 protected:
  static constexpr spot in_context = {1060, 800};
  void SetUp() override {
    directory_.write(
        "a.raw", raw_header("Transient Analysis", "real", "2", {"time\ttime", "v(a)\tvoltage"}) +
                     double_bytes({0, 0, 1e-8, 1.8}));
    open("values file a.raw");
    session().wait_for_line(" VALues FILe a.raw ");
  }
  using pixels_t = std::vector<std::uint32_t>;
  pixels_t part(int x0, int y0, int x1, int y1) {
    point_at(in_edit);
    const auto picture = session().picture();
    pixels_t pixels;
    for (int y = y0; y <= y1; ++y)
      for (int x = x0; x <= x1; ++x) pixels.push_back(picture.at(x, y));
    return pixels;
  }
  // Both without their borders.
  pixels_t edit() { return part(12, 12, 1223, 675); }
  pixels_t context() { return part(930, 712, 1223, 905); }
  static long count(const pixels_t& pixels, std::uint32_t color) {
    return std::count(pixels.begin(), pixels.end(), color);
  }
  void say(const std::string& command, const std::string& answer) {
    session().command(command);
    session().wait_for_line(answer);
  }
};

TEST_F(ValuesProgram, ANetHasItsValueBesideItAndTheColourOfIt) {
  const auto plain = edit();
  say("values on nets", " VALues ON nets ");
  const auto zero = edit();
  EXPECT_GT(count(zero, yellow), count(plain, yellow) + 10);
  say("values at 10n", " VALues AT 10 ns ");
  const auto full = edit();
  EXPECT_GT(count(full, yellow), count(zero, yellow) + 10);  // "1.8V" in the place of "0V"
  say("values colour 0 1.8", " VALues COLour 0 1.8 ");
  EXPECT_GT(count(edit(), red), count(full, red) + 50);
  say("values at 0", " VALues AT 0 s ");
  EXPECT_GT(count(edit(), blue), count(full, blue) + 50);
  // Also where the theme has one colour for all wires.
  say("display theme light", " DISplay THEme LIGht ");
  constexpr std::uint32_t blue_of_light = 0x1f4fd1, red_of_light = 0xc0241a;
  EXPECT_GT(count(edit(), blue_of_light), 50);
  say("values at 10n", " VALues AT 10 ns ");
  EXPECT_GT(count(edit(), red_of_light), 50);
  say("display theme classic", " DISplay THEme CLAssic ");
  say("values off", " VALues OFF ");
  EXPECT_EQ(edit(), plain);
  bye();
}

TEST_F(ValuesProgram, WavesStandInTheSmallViewportAndAClickThereSetsX) {
  const auto sheet = context();
  say("show waves /a", " SHOw WAVes /a ");
  const auto waves = context();
  EXPECT_NE(waves, sheet);
  session().click(in_context.x, in_context.y, 1);
  session().wait_for_head(" VALues AT ");
  const auto clicked = context();
  EXPECT_NE(clicked, waves);
  session().key_down(XK_Control_L);  // over the sheet a notch is a hundredth of the range
  session().click(in_edit.x, in_edit.y, 4);
  session().key_up(XK_Control_L);
  EXPECT_NE(context(), clicked);
  say("values at 0", " VALues AT 0 s ");
  session().key_down(XK_Control_L);
  session().click(in_edit.x, in_edit.y, 4);
  session().key_up(XK_Control_L);
  say("values at", " VALues AT 100 ps ");
  session().click(in_context.x, in_context.y, 4);  // the wheel zooms
  EXPECT_NE(context(), waves);
  say("show waves off", " SHOw WAVes OFF ");
  EXPECT_EQ(context(), sheet);
  bye();
}

// The register, and ngspice at its other end.
program_start ngspice_link(const scratch_directory& directory) {
  make_design_of_file(directory, KIVO_SOURCE_DIR "/examples/register/register.gxt");
  const auto tool = std::filesystem::path(KIVO_KVSPICE).parent_path() / "kivo-ngspice";
  return {.directory = directory.path(),
          .words = {"--save", "id", "register", KIVO_SOURCE_DIR "/examples/register/models.inc"},
          .environment = {"DISPLAY=" + shared_display().name()},
          .program = tool.string()};
}

// Nobody waits in a batch, so a request waits for its answer, and the answer for the run before it.
TEST(SimulatorValues, ABatchGetsTheAnswersOfNgspice) {
  scratch_directory directory;
  test_process link(ngspice_link(directory));
  for (int i = 0;
       i < 500 && !std::filesystem::exists(directory.path() / "register" / "Lorb_To_Spice_Fifo");
       ++i)
    ::usleep(20000);
  auto commands = read_file(KIVO_SOURCE_DIR "/examples/register/expand.do");
  directory.write("all.do", commands.substr(0, commands.find("BYE")) +
                                "SENd echo v(r:x2:x)\nVALues FILe\n"
                                "VALues EXPect /q_2 1.79 1.81 at 58n\nBYE\n");
  const auto ended = run_tool(directory, KIVO_PROGRAM, {"--batch", "register", "all.do"});
  EXPECT_EQ(ended.status, 0) << ended.err << ended.out;
  const auto answer = ended.out.find("\n# v(r:x2:x)\n");
  ASSERT_NE(answer, ended.out.npos) << ended.out;
  EXPECT_LT(answer, ended.out.find("\n SENd echo v(r:x2:x) \n"));
  EXPECT_EQ(link.wait().status, 0);
}

// A simulator at the other end: what it finds of each RUN, its answers, names in them.
TEST(SimulatorValues, ARunIsSimulatedAndAnsweredByNgspice) {
  scratch_directory directory;
  test_process link(ngspice_link(directory));
  auto commands = read_file(KIVO_SOURCE_DIR "/examples/register/expand.do");
  directory.write("expand.do", commands.substr(0, commands.find("BYE")));
  test_session session(shared_display(), {.directory = directory.path(),
                                          .words = {"register", "expand.do"},
                                          .environment = {"VELMORAN=/nowhere"}});
  session.wait_for_head("# results : register/results.raw");
  session.command("values file");
  session.wait_for_line(" VALues FILe ");
  session.command("values expect /q_2 1.79 1.81 at 58n");
  session.wait_for_line(" VALues EXPect /q_2 1.79 1.81 at 58n ");
  session.command("send echo v(r:x2:x)");
  session.wait_for_line("# v(r:x2:x)");
  session.command("bye");
  EXPECT_EQ(session.process().wait().status, 0);
  EXPECT_EQ(link.wait().status, 0);
  for (const char* fifo : {"register/Lorb_To_Spice_Fifo", "register/Spice_To_Kivo_Fifo"}) {
    EXPECT_FALSE(std::filesystem::exists(directory.path() / fifo)) << fifo;
  }
}

}  // namespace
