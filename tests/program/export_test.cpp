// Netlists for other programs, read back by those: JSON, CSV and SQLite by Python, Verilog by
// Icarus and, where it is installed, by Yosys.
#include "tests/program/program_fixture.h"
#include "tests/support/make_design.h"

namespace {

// Sets its variables from the words; `run` is the output of a program that must succeed.
constexpr char prelude[] = R"(
import csv, json, os, resource, shutil, signal, sqlite3, subprocess, sys
kvdump, kvverilog, kvspice, design = sys.argv[1:5]
def run(*words, status=0):
    ended = subprocess.run(words, capture_output=True, timeout=60)
    assert ended.returncode == status, (words, ended.returncode, ended.stderr)
    return ended.stdout if status == 0 else ended.stderr.decode()
)";

class ExportTest : public ::testing::Test {
 protected:
  void expand(const std::string& description, const std::string& commands) {
    make_design(directory, description);
    directory.write("run.do", commands + "RUN\nCHEck DESign\nBYE\n");
    const auto ended = run_program(
        shared_display(), {.directory = directory.path(), .words = {"--batch", "top", "run.do"}});
    ASSERT_NE(ended.status, 2) << ended.err;
  }
  void check(const std::string& script) {
    directory.write("check.py", prelude + script);
    const auto ended = run_program(
        shared_display(), {.directory = directory.path(),
                           .words = {"check.py", KIVO_KVDUMP, KIVO_KVVERILOG, KIVO_KVSPICE, "top"},
                           .program = "/usr/bin/python3"});
    EXPECT_EQ(ended.status, 0) << ended.err << ended.out;
  }
  scratch_directory directory;
};

// Blocks in blocks, a bus cut and tied by bits, a supply that no pin brings in, a part of two kinds
// of ports, names that need care.
constexpr char description[] =
    "symbol r\n pin 1 0,0 IN\n pin 2 4,0 OUT\n prop CLASS=R\n"
    "symbol two\n pin D 0,0 IXO bits 0:1\n pin Q 0,4 OUT\n prop CLASS=U MODEL=logic\n"
    "symbol p\n pin P 0,0 IXO\n prop CLASS=PORTIN\n"
    "symbol g\n pin P 0,0 IXO\n prop CLASS=G\n"
    "symbol cell\n pin A 0,0 IN bits 0:1\n pin B 0,4 OUT\n"
    "symbol pair\n pin A 0,0 IN bits 0:1\n pin Y 0,4 OUT\n"
    "sheet cell\n port A p 0,0 bits 4:5\n port B p 0,9\n part U two 2,0 VALUE='a\"b\\,c'\n"
    " part R r 9,0 W=2.5\n global VDD g 20,20\n bus A 4:5\n  wire A U.D R.1\n  bit 5 R.1\n"
    " net\n  wire B R.2\n net wire\n  wire U.Q 20,20\n"
    "sheet pair\n port A p 0,0 bits 0:1\n port Y p 0,9\n part X cell 4,0\n part Z cell 14,0\n"
    " bus A 0:1\n  wire A X.A Z.A\n net Y\n  wire Y X.B\n net loose\n  wire Z.B 30,30\n"
    "sheet top\n part X cell 2,0\n part Y pair 20,0\n part R r 40,0\n global VDD g 60,20\n"
    " bus D 0:3\n  wire X.A Y.A\n  bit 2 Y.A\n net N-1\n  wire X.B R.1\n net\n  wire R.2 60,20\n"
    " net assign\n  wire Y.Y 70,0\n part S r 80,0\n net open\n  wire S.1 80,20\n";
constexpr char commands[] =
    "PRIMitive CLASS\nPROPerty INStance S CLASS MODEL VALUE\nPROPerty INStance R W\n"
    "PROPerty PIN S PIN\nPROPerty NET S NET\n";

TEST_F(ExportTest, EveryFormHoldsTheSameNetlist) {
  expand(description, commands);
  check(R"(
whole = json.loads(run(kvdump, "--json", design))
assert (whole["format"], whole["version"]) == ("kivo-netlist", 1)
# What each net joins, by bits: from the pins and from the nets.
nets = {net["id"]: net for net in whole["nets"]}
assert {n["path"] for n in whole["nets"]} >= {"/D", "/D_3", "/N-1", "/assign", "/Y/loose"}, nets
joined = {}
for inst in whole["instances"]:
    for pin in inst["pins"]:
        assert pin["path"] == inst["path"] + "/" + pin["name"]
        for net in pin["bits"]:
            joined.setdefault(net, set()).add(pin["id"])
joined.pop(0, None)
for net in whole["nets"]: assert set(net["pins"]) == joined.get(net["id"], set()), net
blocks = {0: ""} | {block["id"]: block["path"] for block in whole["blocks"]}
for part in whole["instances"] + whole["blocks"]:
    assert part["path"] == blocks[part["block"]] + "/" + part["name"], part
values = {part["properties"]["VALUE"] for part in whole["instances"]}
assert 'a"b\\,c' in values, values
assert [2.5] * 3 in [part["properties"]["W"] for part in whole["instances"]]

run(kvdump, "--sqlite", "netlist.db", design)
run(kvdump, "--csv", "tables", design)
base = sqlite3.connect("netlist.db")
ask = lambda words: base.execute(words).fetchall()
tables = {name for name, in ask("SELECT name FROM sqlite_master WHERE type = 'table'")}
assert tables == {name[:-4] for name in os.listdir("tables")} | {"finding"}, tables
for table in tables - {"finding"}:
    with open(f"tables/{table}.csv", newline="", encoding="latin-1") as file:
        rows = list(csv.reader(file))
    found = base.execute(f"SELECT * FROM {table}")
    assert rows[0] == [column[0] for column in found.description]
    kept = [["" if value is None else f"{value:g}" if isinstance(value, float) else str(value)
             for value in row] for row in found]
    assert sorted(rows[1:]) == sorted(kept), table
assert ask("SELECT count(*) FROM instance")[0][0] == len(whole["instances"])
assert set(ask("SELECT pin, net FROM connection WHERE owner_kind = 'instance'")) == {
    (pin["id"], net) for inst in whole["instances"] for pin in inst["pins"]
    for net in pin["bits"] if net}
assert dict(ask("SELECT net, pins FROM fanout")) == {
    net["id"]: len(net["pins"]) for net in whole["nets"] if "range" not in net}
assert ask("SELECT path, loads FROM undriven") == [("/open", 1)]
assert ask("SELECT name, instances FROM cell ORDER BY 1") == [("R", 5), ("logic", 3)]
findings = json.load(open("top/findings.json"))
assert len(findings) == ask("SELECT count(*) FROM finding")[0][0] > 0

# Verilog: a part's pins, found in the text of the flat module; the hierarchical one by its reader.
run(kvverilog, "-o", "flat.v", "--flat", design)
run(kvverilog, "-o", "top.v", design)
text = open("top.v").read()
assert text.count("\nmodule ") == 3 and text.count("module \\logic ") == 1, text  # cell, pair, top
for file in ("flat.v", "top.v"): run("iverilog", "-Wall", "-t", "null", "-s", "top", file)
yosys = json.loads(run(kvdump, "--format", "yosys", design))
def cells(modules):
    nodes = {}
    for name, cell in modules["top"]["cells"].items():
        for port, bits in cell["connections"].items():
            for place, bit in enumerate(bits):
                if not isinstance(bit, str):
                    nodes.setdefault(bit, set()).add((name, cell["type"], port, place))
    return sorted(sorted(node) for node in nodes.values() if len(node) > 1)
wanted = {frozenset((inst["path"][1:].replace("/", "."), pin["name"])
                    for inst in whole["instances"] for pin in inst["pins"]
                    if net["id"] in pin["bits"]) for net in whole["nets"]}
found = {frozenset((name, port) for name, _, port, _ in node) for node in cells(yosys["modules"])}
assert found == {node for node in wanted if len(node) > 1}, (found, wanted)
if shutil.which("yosys"):
    for form in ("top", "flat"):
        run("yosys", "-q", "-p", f"read_verilog {form}.v; hierarchy -top top; flatten; "
            f"write_json {form}.json")
    reads = [cells(json.load(open(f"{form}.json"))["modules"]) for form in ("top", "flat")]
    strip = lambda nodes: [[(n, t.lstrip("\\"), p.lstrip("\\")) for n, t, p, _ in node]
                           for node in nodes]
    assert reads[0] == reads[1], reads
    assert {frozenset((n, p) for n, _, p in node) for node in strip(reads[0])} == found
)");
}

TEST_F(ExportTest, WhatCannotBeWrittenIsToldAndLeavesNothing) {
  expand(description, commands);
  check(R"(
for words, why in (((kvdump, "--sqlite", "none/x.db"), "none/x.db: No such file or directory"),
                   ((kvdump, "--csv", "run.do"), "run.do"),
                   ((kvverilog, "-o", "none/x.v"), "none/x.v: No such file or directory")):
    assert why in run(*words, design, status=1), words
shown = ((kvdump,), (kvdump, "--json"), (kvdump, "--format", "yosys"), (kvverilog,), (kvspice,))
for words in shown:
    read, write = os.pipe()
    os.close(read)
    with open("/dev/full", "w") as full, open(write, "w") as closed:
        for to, why in ((full, b"No space left on device"), (closed, b"Broken pipe")):
            ended = subprocess.run((*words, design), stdout=to, stderr=subprocess.PIPE)
            assert ended.returncode == 1 and why in ended.stderr, (words, ended)
# On a disk that is full what was there stays, and nothing half written is left.
def small_files():
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (200, 200))
os.mkdir("full")
for words, file in (((kvdump, "--sqlite", "full/x"), "full/x"), ((kvverilog, "-o", "full/x"), "full/x"),
                    ((kvspice, "-o", "full/x"), "full/x"),
                    ((kvdump, "--csv", "full"), "full/net.csv")):
    with open(file, "w") as there: there.write("old")
    ended = subprocess.run((*words, design), stderr=subprocess.PIPE, preexec_fn=small_files)
    assert ended.returncode == 1 and file[:4] in ended.stderr.decode(), (words, ended)
    assert os.listdir("full") == [os.path.basename(file)] and open(file).read() == "old", words
    os.remove(file)
# A file that was there stays until the new one is whole, and is replaced by it.
open("old.db", "w").write("old")
run(kvdump, "--sqlite", "old.db", design)
assert sqlite3.connect("old.db").execute("SELECT count(*) FROM net").fetchone()[0] > 0
open("top/design_kv", "r+b").truncate(1000)
for words in ((kvdump, "--json"), (kvdump, "--sqlite", "cut.db"), (kvdump, "--csv", "cut")):
    assert "top/design_kv: truncated" in run(*words, design, status=1)
assert not [name for name in os.listdir(".") if name.startswith("cut") or name.endswith(".part")]
)");
}

// Names and values of any bytes, as a design file may hold them, and a design of nothing.
TEST_F(ExportTest, AnyNameAndNothingAtAllAreWritten) {
  expand(description, commands);
  check(R"(
data = open("top/design_kv", "rb").read()
for plain, odd in ((b"assign", b"as\xe9\"\nn"), (b'a"b\\,c', b'\r\n"\xff,c')):
    assert data.count(plain) > 0, plain
    data = data.replace(plain, odd)
open("top/design_kv", "wb").write(data)
def read_all():
    whole = json.loads(run(kvdump, "--json", design))
    json.loads(run(kvdump, "--format", "yosys", design))
    run(kvdump, "--sqlite", "all.db", design)
    run(kvdump, "--csv", "all", design)
    for form in ((), ("--flat",)):
        run(kvverilog, "-o", "all.v", *form, design)
        run("iverilog", "-Wall", "-t", "null", "-s", "top", "all.v")
    deck = run(kvspice, design).decode("ascii").splitlines()
    assert all(line[:1] in "*.RrUuXx+" for line in deck), deck
    def column(table, place, name):
        with open(f"all/{table}.csv", newline="", encoding="latin-1") as file:
            texts = {row[place] for row in list(csv.reader(file))[1:]}
        with sqlite3.connect("all.db") as base:
            assert texts == {text or "" for text, in base.execute(f"SELECT {name} FROM {table}")}
        return texts
    assert column("net", 1, "path") == {net["path"] for net in whole["nets"]}
    return column("net", 1, "path"), column("property", 4, "text")
paths, texts = read_all()
assert '/as\xe9"\nn' in paths and '\r\n"\xff,c' in texts, (paths, texts)
)");
  expand("sheet top\n", commands);
  check(R"(
whole = json.loads(run(kvdump, "--json", design))
assert whole["instances"] == whole["nets"] == []
run(kvdump, "--csv", "none", design)
assert len(open("none/net.csv").readlines()) == 1
run(kvdump, "--sqlite", "none.db", design)
assert sqlite3.connect("none.db").execute("SELECT count(*) FROM net").fetchone() == (0,)
run(kvverilog, "-o", "none.v", design)
run("iverilog", "-t", "null", "-s", "top", "none.v")
assert json.loads(run(kvdump, "--format", "yosys", design))["modules"]["top"]["cells"] == {}
assert b".end" in run(kvspice, design)
)");
}

}  // namespace
