// What the simulator's side gets from the real program: requests through the FIFO, and the netlist
// that a client of the design-file library makes, read by ngspice.
#include <sys/stat.h>

#include <thread>

#include "tests/program/program_fixture.h"
#include "tests/support/make_design.h"

namespace {

// Makes an example, runs its expand.do with `more` in the place of BYE.
void run_example(const scratch_directory& directory, const std::string& name,
                 const std::string& more = "BYE\n") {
  const std::string folder = std::string(KIVO_SOURCE_DIR "/examples/") + name + "/";
  make_design_of_file(directory, folder + name + ".gxt");
  auto commands = read_file(folder + "expand.do");
  commands.replace(commands.find("BYE"), std::string::npos, more);
  directory.write("expand.do", commands);
  const auto ended =
      run_program(shared_display(), {.directory = directory.path(), .words = {name, "expand.do"}});
  ASSERT_EQ(ended.status, 0) << ended.out << ended.err;
}

TEST(SimulatorSide, RequestsReachTheOtherEndOfTheFifo) {
  scratch_directory directory;
  make_design_of_file(directory, KIVO_SOURCE_DIR "/examples/register/register.gxt");
  test_process simlink(
      {.directory = directory.path(), .words = {"register", "4"}, .program = KIVO_SIMLINK});
  const auto fifo = directory.path() / "register/Lorb_To_Spice_Fifo";
  for (int i = 0; i < 200 && !std::filesystem::is_fifo(fifo); ++i) {
    std::this_thread::sleep_for(test_time(50));
  }
  ASSERT_TRUE(std::filesystem::is_fifo(fifo));
  run_example(directory, "register",
              "SEND run\nSELect PROperty Edit NET CLK\nSELect PIN Edit CL1 1\nGIVE V\n"
              "UNSelect ALL\nVIEw DOWn XR\nVIEw DOWn X2\nSELect PROperty Edit NET X\n"
              "SELect PROperty Edit NET GND\nSELect PIN Edit MP1 G\nGIVE V\nGIVE\nBYE\n");
  const auto ended = simlink.wait();
  EXPECT_EQ(ended.out,
            "run\nplot V(CLK) V(L1:1) \nplot V(R:X2:X) V(GND) V(GND) V(GND) V(R:X2:MP1:G) \n"
            "plot R:X2:X GND GND GND R:X2:MP1:G \n");
  EXPECT_FALSE(std::filesystem::exists(fifo));
}

TEST(SimulatorSide, NgspiceReadsTheExportedExamples) {
  const struct {
    const char *name, *include, *lines[3];
  } cases[] = {// the third latch follows its bit while the clock is high, the fourth has none yet
               {"register",
                "models.inc",
                {"\nM.XR.X2.MP1 R:X2:N_311 D_2 VDD VDD pch W=2 L=1\n",
                 "\nVCLK CLK GND PULSE(0 1.8 5n 100p 100p 5n 10n)\n", "\nCL3 Q_3 GND 20f\n"}},
               {"filter",
                "analysis.inc",
                {"\nE.X1.E1 1:N_171 GND B OUT GAIN=10000\n", "\nVIN IN GND DC 0.9 AC 1\n",
                 "\nC.X1.C1 1:POLE GND 10n\n"}}};
  for (const auto& c : cases) {
    scratch_directory directory;
    run_example(directory, c.name);
    const std::string include =
        std::string(KIVO_SOURCE_DIR "/examples/") + c.name + "/" + c.include;
    const auto netlist = run_tool(directory, KIVO_KVSPICE, {c.name, include});
    EXPECT_EQ(netlist.status, 0) << netlist.err;
    for (const char* line : c.lines) EXPECT_NE(netlist.out.find(line), std::string::npos) << line;
    directory.write("design.cir", netlist.out);
    const auto ngspice = run_tool(directory, "ngspice", {"-b", "design.cir"});
    EXPECT_EQ(ngspice.status, 0);
    for (const auto& text : {ngspice.out, ngspice.err}) {
      for (const char* complaint : {"rror", "arning", "aborted"}) {
        EXPECT_EQ(text.find(complaint), std::string::npos) << text;
      }
    }
    const auto measured = [&](const std::string& what) {
      const auto at = ngspice.out.find("\n" + what + " ");
      return at == std::string::npos ? -1e9
                                     : std::stod(ngspice.out.substr(ngspice.out.find('=', at) + 1));
    };
    if (c.name == std::string("register")) {
      EXPECT_NEAR(measured("q2_high"), 1.8, 0.01);
      EXPECT_NEAR(measured("q3_low"), 0, 0.01);
    } else {
      EXPECT_NEAR(measured("pass_gain"), 1, 0.01);
      EXPECT_NEAR(measured("stop_gain"), 0, 0.05);
    }
  }
}

TEST(SimulatorSide, TheExportRefusesWhatIsNoDesign) {
  scratch_directory directory;
  run_example(directory, "filter");
  const auto image = directory.read("filter/design_kv");
  directory.write("filter/design_kv", std::string(68, '\0') + image.substr(68));
  EXPECT_EQ(run_tool(directory, KIVO_KVSPICE, {"filter"}).status, 1);
  EXPECT_EQ(run_tool(directory, KIVO_KVDUMP, {"filter/design_kv"}).status, 1);
  directory.write("filter/design_kv", image);
  const auto dump = run_tool(directory, KIVO_KVDUMP, {"filter/design_kv"});
  EXPECT_EQ(dump.status, 0);
  EXPECT_NE(dump.out.find("\ninstance 14\n"), std::string::npos);
}

}  // namespace
