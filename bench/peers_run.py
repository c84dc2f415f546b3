"""Runs what bench/peers measures: peers_run.py BUILD [ROUNDS [BLOCKS...]].

Whole processes, one after the other, each with its output in a file: wall time here, CPU time from
the kernel's account of the process and all it waited for, peak memory (of the largest process) from
time(1) in a run of its own, which also fills the caches.
"""
import json
import os
import pathlib
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
DO_FILE = """PRIMitive CLASS
PROPerty INStance S CLASS VALUE
PROPerty PIN S PINTYPE
PROPerty NET S NET
STOre SIZe 2000000000
RUN
BYE
"""
XSCHEM_RC = """set XSCHEM_LIBRARY_PATH {here}
set netlist_dir {here}/netlist
set netlist_type spice
set spice_simulator ngspice
set hspice_netlist 0
"""
BLOCKS = [7, 19, 187, 1866]


class Program:
    """A command, run in the folder of the design, and what it leaves there."""

    def __init__(self, name, command, folder, outputs):
        self.name, self.command, self.folder = name, command, folder
        self.outputs = [folder / path for path in ["stdout.txt", *outputs]]
        self.times = []  # (wall, CPU) in seconds
        self.memory = 0  # bytes

    def start(self, prefix=()):
        with open(self.folder / "stdout.txt", "wb") as out:
            return subprocess.Popen([*prefix, *self.command], cwd=self.folder, stdout=out,
                                    stdin=subprocess.DEVNULL, stderr=subprocess.PIPE)

    def measure_memory(self):
        process = self.start(["time", "-q", "-f", "%M"])
        error = process.communicate()[1].decode(errors="replace")
        self.memory = int(error.split()[-1]) * 1024
        missing = [path for path in self.outputs[1:] if not path.exists()]
        if missing or process.returncode != 0:
            sys.exit(f"{self.name}: status {process.returncode}, {missing}: {error}")

    def measure_time(self):
        start = time.perf_counter()
        process = self.start()
        _, status, used = os.wait4(process.pid, 0)
        self.times.append((time.perf_counter() - start, used.ru_utime + used.ru_stime))
        process.returncode = os.waitstatus_to_exitcode(status)
        process.stderr.close()
        if process.returncode != 0:
            sys.exit(f"{self.name}: status {process.returncode}")

    def medians(self):
        return [statistics.median(column) for column in zip(*self.times)]

    def bytes_written(self):
        return sum(path.stat().st_size for path in self.outputs)


def programs(build, blocks, root):
    """What is timed, with the designs that it reads; the counts of the array."""
    folders = [root / name for name in ("kivo", "ngspice", "xschem")]
    for folder in folders:
        folder.mkdir()
    kivo, ngspice, xschem = folders
    made = subprocess.run([build / "tools/gxmake", "-o", kivo, "--array", str(blocks)], check=True,
                          stdout=subprocess.PIPE, text=True).stdout
    (kivo / "run.do").write_text(DO_FILE)
    cells = xschem / "array_cells"
    subprocess.run([sys.executable, HERE / "peers_array.py", str(blocks), cells], check=True)
    shutil.move(cells / "array.spice", ngspice)
    (xschem / "netlist").mkdir()
    (xschem / "rc").write_text(XSCHEM_RC.format(here=xschem))
    return int(made.split("its netlist: ")[1].split()[0]), [
        Program("kivo --batch", [build / "kivo", "--batch", "array", "run.do"], kivo,
                ["array/design_kv", "array/current_session"]),
        Program("ngspice -b", ["ngspice", "-b", "array.spice"], ngspice, []),
        Program("xschem -f", ["xschem", "--rcfile", "rc", "-x", "-r", "-q", "-n", "-s", "-f",
                              "array_cells/array.sch"], xschem, ["netlist/array.spice"])]


def check_leaves(leaves, runs):
    """All three netlists hold every leaf."""
    kivo, ngspice, xschem = runs
    with open(kivo.outputs[1], "rb") as image:
        header = image.read(40)[36:]
    found = [int.from_bytes(header, "little")]
    with open(ngspice.outputs[0], encoding="latin-1") as text:
        found.append(sum(bool(re.match(r" *\d+ : [mc]", line)) for line in text))
    with open(xschem.outputs[1], encoding="latin-1") as text:
        found.append(sum(line[:1] in ("M", "C") for line in text))
    if found != [leaves] * 3:
        sys.exit(f"{leaves} leaves, but the netlists have {found}")


def floor_times(build, blocks):
    """Wall and CPU time of the bare loop and of RUN in a fresh store, in seconds; none for a size
    that kivo_bench does not know."""
    run = subprocess.run(
        [build / "bench/kivo_bench", f"--benchmark_filter=first_run/{blocks}(/1)?$",
         "--benchmark_repetitions=3", "--benchmark_format=json"],
        check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    return {entry["run_name"].split("/")[0]: (entry["real_time"] / 1e6, entry["cpu_time"] / 1e6)
            for entry in json.loads(run.stdout or '{"benchmarks": []}')["benchmarks"]
            if entry.get("aggregate_name") == "median"}


def row(leaves, name, times, beside, memory="", output=""):
    wall, cpu = times
    print(f"| {leaves:,} | {name} | {wall * 1e3:,.1f} | {cpu * 1e3:,.1f} | {memory} | {output} |"
          f" {wall / beside[0]:.2f} | {cpu / beside[1]:.2f} |", flush=True)


def measure(build, blocks, rounds):
    with tempfile.TemporaryDirectory(prefix="peers") as root:
        leaves, runs = programs(build, blocks, pathlib.Path(root))
        for program in runs:
            program.measure_memory()
        check_leaves(leaves, runs)
        for _ in range(rounds):
            for program in runs:
                program.measure_time()
        own = runs[0].medians()
        for program in runs:
            row(leaves, program.name, program.medians(), own, f"{program.memory / 1e6:,.1f}",
                f"{program.bytes_written() / 1e6:,.2f}")
    for name, times in floor_times(build, blocks).items():
        row(leaves, f"`{name}`", times, own)


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 21
    sizes = [int(word) for word in sys.argv[3:]] or BLOCKS
    print(f"{os.cpu_count()} cores, load {os.getloadavg()[0]:.1f} at the start;"
          " ratios are to kivo\n\n"
          "| leaves | program | wall, ms | CPU, ms | peak memory, MB | output, MB | wall, ratio |"
          " CPU, ratio |\n|---|---|---|---|---|---|---|---|")
    for blocks in sizes:
        measure(build, blocks, max(3, min(rounds, rounds * 60 // blocks)))


main()
