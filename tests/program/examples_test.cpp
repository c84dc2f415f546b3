// The Python module on the designs that users start from.
#include "tests/program/program_fixture.h"
#include "tests/support/make_design.h"

#ifdef KIVO_KVI_LIBRARY
namespace {

// What the Python module reports of a design, against the whole of it as JSON.
TEST(Examples, PythonReadsWhatTheDesignHolds) {
  scratch_directory directory;
  for (const std::string name : {"filter", "register"}) {
    const std::string folder = KIVO_SOURCE_DIR "/examples/" + name + "/";
    make_design_of_file(directory, folder + name + ".gxt");
    run_tool(directory, KIVO_PROGRAM, {"--batch", name, folder + "expand.do"});
  }
  directory.write("read.py", R"(
import json, subprocess, sys
import kivo
with kivo.load("register") as design:
    whole = design.to_dict()
    dumped = subprocess.run((sys.argv[1], "--json", "register"), stdout=subprocess.PIPE).stdout
    assert whole == json.loads(dumped)
    for things, kept in ((design.instances(), "instances"), (design.macros(), "blocks"),
                         (design.nets(), "nets")):
        assert [(t.path, json.loads(json.dumps(t.properties))) for t in things] == [
            (k["path"], k["properties"]) for k in whole[kept]], kept
    assert [sorted(pin.index for pin in net.pins()) for net in design.nets()] == [
        sorted(net["pins"]) for net in whole["nets"]]
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
}

}  // namespace
#endif
