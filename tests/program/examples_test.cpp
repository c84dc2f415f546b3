// The main job on the designs that users start from: open, expand, write the netlist.
#include <algorithm>
#include <sstream>

#include "gxmake/memory_array.h"
#include "tests/program/listing.h"
#include "tests/program/program_fixture.h"
#include "tests/support/make_design.h"

namespace {

// Makes an example of the project in the directory and runs its expand.do.
process_result expand_example(const scratch_directory& directory, const std::string& name) {
  const std::string folder = std::string(KIVO_SOURCE_DIR "/examples/") + name + "/";
  make_design_of_file(directory, folder + name + ".gxt");
  directory.write("expand.do", read_file(folder + "expand.do"));
  return run_program(shared_display(),
                     {.directory = directory.path(), .words = {name, "expand.do"}});
}

using counts_t = std::map<std::string, int>;
void expect_counts(const listing_t& listing, const counts_t& expected) {
  EXPECT_TRUE(listing.complete);
  for (const auto& [name, count] : expected) EXPECT_EQ(listing.counts.at(name), count) << name;
}

using paths_t = std::set<std::string>;

constexpr char no_faults[] = "\n -- KIVO  Execution complete...0 error, 0 warning --\n";

TEST(Examples, RegisterExpandsThroughThreeLevels) {
  scratch_directory directory;
  const auto ended = expand_example(directory, "register");
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_TRUE(ended.out.ends_with(no_faults)) << ended.out;

  auto session = directory.lines("register/current_session");
  // What comes before are the key bindings of the product directory.
  session.erase(session.begin(), std::find(session.begin(), session.end(), "# KIVO  version 2.02"));
  const std::vector<std::string> beginning = {"# KIVO  version 2.02",
                                              "# DO expand.do ",
                                              " PRIMitive CLASS ",
                                              " PARAMeter WN 0.5 ",
                                              " PARAMeter WP 1.0 ",
                                              " PROPerty INStance S CLASS MODEL VALUE ",
                                              " PROPerty INStance R W L DRIVE ",
                                              " PROPerty PIN  S PIN PINTYPE ",
                                              " PROPerty NET S NET ",
                                              " GENerate DATa ON ",
                                              " RUN ",
                                              "# Processing : \"\"",
                                              "# Processing : \"/XR\"",
                                              "# Processing : \"/VD0\""};
  ASSERT_GE(session.size(), beginning.size());
  EXPECT_EQ(std::vector<std::string>(session.begin(), session.begin() + 14), beginning);

  // 4 latches of 10 transistors, a clock driver of 4, 6 sources, 4 loads. Nets: the buses D and Q
  // with 4 members each, CLK, VDD, GND; CK and CKB of reg4; 5 inside each latch.
  const auto listing = read_listing(directory.read("register/kivo_data"));
  expect_counts(listing, {{"nbof_instance", 54},
                          {"nbof_macro", 6},
                          {"nbof_pin", 44 * 4 + 10 * 2},
                          {"nbof_pin (for macro)", 3 + 3 + 4 * 4},
                          {"nbof_net", 2 * 5 + 3 + 2 + 4 * 5},
                          {"num_errors", 0},
                          {"num_warnings", 0}});

  // A bit of the bus goes down two levels to the gates of its latch.
  EXPECT_EQ(listing.nets.at("/D_2").pins, (paths_t{"/VD2/P", "/XR/X2/MP1/G", "/XR/X2/MN1/G"}));
  EXPECT_EQ(listing.nets.at("/Q_3").pins,
            (paths_t{"/CL3/1", "/XR/X3/MP3/D", "/XR/X3/MN3/D", "/XR/X3/MP4/G", "/XR/X3/MN4/G"}));
  // One net by its name: the stubs at MN5 and the port of the latch, through all four of them.
  paths_t ckb = {"/XR/XCK/MP1/D", "/XR/XCK/MN1/D", "/XR/XCK/MP2/G", "/XR/XCK/MN2/G"};
  for (const char* latch : {"/XR/X0", "/XR/X1", "/XR/X2", "/XR/X3"}) {
    ckb.insert(std::string(latch) + "/MP2/G");
    ckb.insert(std::string(latch) + "/MN5/G");
  }
  EXPECT_EQ(listing.nets.at("/XR/CKB").pins, ckb);
  // The global: the bulk of every p transistor and the source of those at a rail; the supply.
  EXPECT_EQ(listing.nets.at("/VDD").kind, 4);
  EXPECT_EQ(listing.nets.at("/VDD").pins.size(), 4U * 8 + 2 * 2 + 1);

  // Widths: WP = 1, WN = 0.5; DRIVE 2 comes down from the top, 4 times that to the clock driver.
  const auto width = [&](const char* path) {
    return listing.instances.at(path).properties.at("W");
  };
  EXPECT_EQ(width("/XR/X1/MP1"), "2.000 2.000 2.000");
  EXPECT_EQ(width("/XR/X1/MN3"), "2.000 2.000 2.000");
  EXPECT_EQ(width("/XR/X1/MN4"), "0.250 0.250 0.250");
  EXPECT_EQ(width("/XR/XCK/MP2"), "16.000 16.000 16.000");
  EXPECT_EQ(listing.macros.at("/XR/XCK").properties.at("DRIVE"), "8.000 8.000 8.000");
  EXPECT_EQ(listing.instances.at("/XR/X0/MP1").properties.at("MODEL"), "pch");
  EXPECT_EQ(listing.instances.at("/VCLK").properties.at("VALUE"),
            "PULSE(0 1.8 5n 100p 100p 5n 10n)");
}

TEST(Examples, FilterJoinsTurnedAndMirroredParts) {
  scratch_directory directory;
  const auto ended = expand_example(directory, "filter");
  EXPECT_TRUE(ended.out.ends_with(no_faults)) << ended.out;
  const auto listing = read_listing(directory.read("filter/kivo_data"));
  expect_counts(listing, {{"nbof_instance", 14},
                          {"nbof_macro", 1},
                          {"nbof_pin", 12 * 2 + 2 * 4},
                          {"nbof_net", 8 + 2}});
  EXPECT_EQ(listing.nets.at("/OUT").pins, (paths_t{"/C1/2", "/R3/1", "/X1/E1/D", "/X1/E2/P"}));
  EXPECT_EQ(listing.nets.at("/B").pins, (paths_t{"/R2/2", "/C2/1", "/X1/E1/C"}));
  EXPECT_EQ(listing.nets.at("/GND").pins,
            (paths_t{"/VIN/N", "/VSUP/N", "/R5/2", "/C2/2", "/R3/2", "/X1/E1/N", "/X1/C1/2",
                     "/X1/E2/D", "/X1/E2/N"}));
  EXPECT_EQ(listing.instances.at("/X1/E1").properties.at("GAIN"), "10000.000 10000.000 10000.000");
}

TEST(Examples, ASecondRunGivesTheSameBytes) {
  scratch_directory directory;
  make_design_of_file(directory, KIVO_SOURCE_DIR "/examples/register/register.gxt");
  auto commands = read_file(KIVO_SOURCE_DIR "/examples/register/expand.do");
  commands.replace(
      commands.find("BYE"), 3,
      "SYSTem 'cp register/design_kv first'\nSYSTem 'cp register/kivo_data first.txt'\n"
      "RUN\nBYE");
  directory.write("expand.do", commands);
  const program_start start{.directory = directory.path(), .words = {"register", "expand.do"}};
  EXPECT_EQ(run_program(shared_display(), start).status, 0);
  const auto image = directory.read("register/design_kv");
  EXPECT_GT(image.size(), 20000U);
  EXPECT_EQ(directory.read("first"), image);
  EXPECT_EQ(directory.read("first.txt"), directory.read("register/kivo_data"));

  EXPECT_EQ(run_program(shared_display(), start).status, 0);
  EXPECT_EQ(directory.read("register/design_kv"), image);
}

TEST(Examples, EverySheetPassesTheCheck) {
  const struct {
    const char *name, *commands;
    int sheets;
  } cases[] = {{"register",
                "CHECK SHEET\nVIEW DOWN XR\nCHECK SHEET\nVIEW DOWN X3\nCHECK SHEET\nVIEW UP\n"
                "VIEW DOWN XCK\nCHECK SHEET\nPRIMITIVE CLASS\nCHECK DESIGN\nBYE\n",
                4},
               {"filter",
                "CHECK SHEET\nVIEW DOWN X1\nCHECK SHEET\nPRIMITIVE CLASS\nCHECK DESIGN\nBYE\n", 2}};
  for (const auto& c : cases) {
    scratch_directory directory;
    make_design_of_file(directory,
                        std::string(KIVO_SOURCE_DIR "/examples/") + c.name + "/" + c.name + ".gxt");
    directory.write("check.do", c.commands);
    run_program(shared_display(), {.directory = directory.path(), .words = {c.name, "check.do"}});
    int clean = 0, clean_designs = 0;
    for (const auto& line : directory.lines(std::string(c.name) + "/current_session")) {
      EXPECT_FALSE(line.starts_with("# !! Error")) << line;
      clean += line == "# CHEck  SHEet > nb_error    = 0 ";
      clean_designs += line == "# CHEck  DESign > nb_error    = 0 ";
    }
    EXPECT_EQ(clean_designs, 1) << c.name;
    EXPECT_EQ(clean, c.sheets) << c.name;
  }
}

#ifdef KIVO_KVI_LIBRARY
// What the Python module reports of a design, a line for each object, against the listing of the
// run.
TEST(Examples, PythonReadsWhatTheListingHolds) {
  scratch_directory directory;
  expand_example(directory, "filter");
  expand_example(directory, "register");
  directory.write("read.py", R"(
import json, subprocess, sys
import kivo
def line(kind, thing, more=()):
    values = [f"{k}={v if isinstance(v, str) else ' '.join(f'{n:.3f}' for n in v)}"
              for k, v in sorted(thing.properties.items())]
    print(kind, thing.path, *values, *more)
with kivo.load("register") as design:
    for net in design.nets(): line("net", net, sorted(pin.path for pin in net.pins()))
    for inst in design.instances(): line("inst", inst)
    for macro in design.macros(): line("macro", macro)
    assert all(pin.path in [p.path for p in pin.net().pins()]
               for pin in design.pins() if pin.net().type != 3)
    assert all(pin.instance().index == macro.index for macro in design.macros()
               for pin in macro.pins())
    members = {net.index for bus in design.nets() for net in bus.members()}
    assert members == {net.index for net in design.nets() if net.bus}, members
    for index in (0, -1, 1 << 40, "/XR/NONE"):
        try: design.net(index)
        except (IndexError, KeyError): continue
        assert False, index
    # Pins read at once and one by one, by path, where they are drawn; a child has its net's pins.
    fields = lambda pin: (pin.index, pin.path, pin.name, pin.properties, pin.type, pin.first_bit,
                          pin.last_bit, pin.net_first_bit, pin.net_index, pin.owner_index)
    kept = list(design.pins())
    assert list(map(fields, kept)) == [fields(p) for i in design.instances() for p in i.pins()]
    assert all(design.pin(pin.path).index == pin.index for pin in kept)
    net = design.net("xr:ckb")
    assert (net.path, design.net("/XR/X0/CKB").path) == ("/XR/CKB", "/XR/CKB")
    assert sorted(p.path for p in net.drivers) == ["/XR/XCK/MN1/D", "/XR/XCK/MP1/D"]
    assert {p.path for p in net.pins()} == {p.path for p in (*net.drivers, *net.loads)}
    assert (net.block.path, net.sheet) == ("/XR", "reg4/sheet.gx_1"), (net.block, net.sheet)
    part = design.instance("/XR/X2/MP1")
    assert (part.block.path, part.sheet, part.sheet) == ("/XR/X2", part.file, "dlatch/sheet.gx_1")
    assert design.pin("/XR/X2/MP1/G").block.path == "/XR/X2"
    assert design.macro("/XR").block is None and 0 < part.object_id <= 30000
    whole = design.to_dict()
    dumped = subprocess.run((sys.argv[1], "--json", "register"), stdout=subprocess.PIPE).stdout
    assert whole == json.loads(dumped)
    assert kivo.diff(design, "register/design_kv") == []
    # Of another design: all is gone, all is new; the one that is loaded stays so.
    kinds = {change["change"] for change in kivo.diff("register", "filter")}
    assert {"branch gone", "branch new", "instance gone", "instance new"} <= kinds, kinds
    try: kivo.diff("none", "register")
    except kivo.Error as error: assert "none: No such file" in str(error), error
    else: assert False
    assert design.net(1).index == 1
    assert [pin["path"] for part in whole["instances"] for pin in part["pins"]] == [
        pin.path for pin in kept]
    unread = design.nets()
    next(unread)
    open("register/design_kv", "r+b").write(bytes(68))
    for use in (lambda: next(unread), lambda: kivo.load("register"), lambda: design.net(1)):
        try: use()
        except kivo.Error as error: assert str(error), error
        else: assert False
assert kept[0].properties["PINTYPE"] and kept[0].path  # as they were
)");
  const auto read =
      run_program(shared_display(), {.directory = directory.path(),
                                     .words = {"read.py", KIVO_KVDUMP},
                                     .environment = {"KIVO_LIBKVI=" KIVO_KVI_LIBRARY,
                                                     "PYTHONPATH=" KIVO_SOURCE_DIR "/kvi/python"},
                                     .program = "/usr/bin/python3"});
  EXPECT_EQ(read.status, 0) << read.err;
  const auto listing = read_listing(directory.read("register/kivo_data"));
  std::set<std::string> expected;
  const auto expect = [&](std::string line, const auto& object, const paths_t& pins = {}) {
    for (const auto& [name, value] : object.properties) line += " " + name + "=" + value;
    for (const auto& pin : pins) line += " " + pin;
    expected.insert(line);
  };
  for (const auto& [path, net] : listing.nets) expect("net " + path, net, net.pins);
  for (const auto& [path, instance] : listing.instances) expect("inst " + path, instance);
  for (const auto& [path, macro] : listing.macros) expect("macro " + path, macro);
  const auto lines = split_lines(read.out);
  EXPECT_EQ(std::set<std::string>(lines.begin(), lines.end()), expected);
}
#endif

TEST(Examples, ACheckInABatchFailsUntilEveryErrorIsWaived) {
  scratch_directory directory;
  make_design_of_file(directory, KIVO_SOURCE_DIR "/examples/faults/faults.gxt");
  directory.write("check.do", read_file(KIVO_SOURCE_DIR "/examples/faults/check.do"));
  const program_start start{.directory = directory.path(),
                            .words = {"--batch", "faults", "check.do"}};
  EXPECT_EQ(run_program(shared_display(), start).status, 1);
  EXPECT_EQ(directory.read("faults/design_kv"), "");

  std::string waivers;
  for (const auto& line : directory.lines("faults/current_session")) {
    std::istringstream words(line);
    std::string mark, number, severity, rule, path;
    words >> mark >> number >> severity >> rule >> path;
    if (severity == "Error") waivers += rule + " " + path + " \"known\" 2026-01-31\n";
  }
  directory.write("faults/waivers", waivers);
  const auto ended = run_program(shared_display(), start);
  EXPECT_EQ(ended.status, 0) << ended.out;
  EXPECT_NE(ended.out.find("# CHEck  DESign > nb_waived   = 31 \n"), std::string::npos);
}

TEST(Examples, MemoryArraysExpandToWhatTheirSizeSays) {
  const struct { int blocks, variants; } cases[] = {{1, 1}, {2, 8}, {7, 8}};
  for (const auto& c : cases) {
    scratch_directory directory;
    make_design(directory, gxm_memory_array(c.blocks, c.variants));
    directory.write("run.do",
                    "PRIMitive CLASS\nPROPerty INStance S CLASS VALUE\nPROPerty PIN S PINTYPE\n"
                    "PROPerty NET S NET\nGENerate DATa ON\nRUN\nBYE\n");
    const auto ended = run_program(shared_display(),
                                   {.directory = directory.path(), .words = {"array", "run.do"}});
    EXPECT_TRUE(ended.out.ends_with(no_faults)) << ended.out;
    const auto listing = read_listing(directory.read("array/kivo_data"));
    const auto counts = gxm_count_memory_array(c.blocks);
    expect_counts(listing, {{"nbof_instance", counts.leaves},
                            {"nbof_pin", counts.pins},
                            {"nbof_macro", counts.macros},
                            {"nbof_net", counts.nets}});
    // Every cell has the clock on one pin; the transistors beside the rows and the top's too.
    EXPECT_EQ(listing.nets.at("/CK").pins.size(),
              static_cast<std::size_t>(c.blocks) * (64 + 12) + 8 + 10);
    // A bit line meets its column of cells in every block.
    const auto& bit_line = listing.nets.at("/BL_3").pins;
    EXPECT_TRUE(bit_line.contains("/B0/R5/C3/MN3/D"));
    EXPECT_FALSE(bit_line.contains("/B0/R5/C4/MN3/D"));
  }
}

}  // namespace
