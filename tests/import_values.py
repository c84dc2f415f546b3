#!/usr/bin/env python3
"""A drawing of xschem is imported and simulated, by decks of kvspice and by the one that xschem itself
writes: every net of the sheet has the voltage that ngspice prints for it.

usage: import_values.py BUILD SOURCE
"""
import math, os, pathlib, re, subprocess, sys, tempfile

from compare_reference import listed_objects

build, source = (pathlib.Path(path).resolve() for path in sys.argv[1:3])
AT = "7.3n"
STIMULI = """.model nch nmos level=1 vto=0.4 kp=100u
.model pch pmos level=1 vto=-0.4 kp=40u
Vdd VDD 0 1.8
Vin3 IN[3] 0 pulse(0 1.8 7n 1n 1n 10n)
Vin2 IN[2] 0 pulse(1.8 0 6n 2n 2n 10n)
Vin1 IN[1] 0 0.9
Vin0 IN[0] 0 0.7
"""
# As xschem writes it.
OWN = """** sch_path: buffers.sch
""" + "".join(f"xa[{i}] net1[{i}] IN[{i}] inv wp=2u\n" for i in (3, 2, 1, 0)) + \
    "".join(f"xb[{i}] Q[{i}] net1[{i}] inv wp=4u\n" for i in (3, 2, 1, 0)) + \
    "".join(f"C[{i}] Q[{i}] 0 10f m=1\n" for i in (3, 2, 1, 0)) + """M1 TAP Q[2] 0 0 nch w=3u l=0.18u m=1
x9 OUT TAP inv wp=2u
.subckt inv Y A wp=2u
M1 Y A VDD VDD pch w=wp l=0.18u m=1
M2 Y A 0 0 nch w=1u l=0.18u m=1
.ends
.GLOBAL VDD
"""


def run(*words, cwd):
    environment = {k: v for k, v in os.environ.items() if k != "DISPLAY"}
    result = subprocess.run(list(map(str, words)), cwd=cwd, capture_output=True, text=True, timeout=60,
                            stdin=subprocess.DEVNULL, env={**environment, "VELMORAN": f"{build}/product"})
    assert result.returncode == 0, (words, result.stdout, result.stderr)
    return result.stdout


def printed(deck, work):
    """The voltages that ngspice prints, by node; its results are in a.raw."""
    lines = deck.replace("\n.end\n", "\n") + STIMULI
    control = ".control\ntran 0.1n 20n\nwrite a.raw\n{}quit\n.endc\n.end\n"
    nodes = {w.lower() for l in lines.splitlines()[1:] for w in l.split()[1:5]
             if re.fullmatch(r"(in|q|net1)\[\d\]|tap|out|vdd", w.lower())}
    asked = "".join(f"meas tran m{i} find v({node}) at={AT}\n" for i, node in enumerate(sorted(nodes)))
    (work / "a.cir").write_text("* " + lines + control.format(asked))
    out = run("ngspice", "-b", "a.cir", cwd=work)
    return {node: float(re.search(rf"^m{i} += +(\S+)", out, re.M)[1]) for i, node in enumerate(sorted(nodes))}


def shown(nets, work):
    """What VALues NET answers, by path."""
    asked = "".join(f"VALues NET {net} AT {AT}\n" for net in nets)
    (work / "a.do").write_text("VALues FILe a.raw\n" + asked + "VALues CHEck\nBYE\n")
    out = run(build / "kivo", "--batch", "buffers", "a.do", cwd=work)
    assert "# 5 names that meet nothing, 0 nets without a value" in out, out  # the stimuli
    unit = {"m": 1e-3, "u": 1e-6, "n": 1e-9, "p": 1e-12, "f": 1e-15, "": 1}
    return {path: float(value) * unit[prefix] for path, value, prefix in
            re.findall(rf"^# (/\S+) : (\S+) ([munpf]?)V at {AT}$", out, re.M)}


with tempfile.TemporaryDirectory() as folder:
    work = pathlib.Path(folder) / "design"
    run(build / "tools" / "gximport", "-q", "-o", work, source / "examples/import/buffers.sch", cwd=folder)
    run(build / "kivo", "--batch", "--quiet", "buffers", "expand.do", cwd=work)
    nets = sorted(listed_objects(work / "buffers" / "kivo_data")[0].values())
    decks = [run(build / "tools" / "kvspice", *option, "buffers", cwd=work) for option in ([], ["--hierarchy"])]
    first = None
    for deck in [*decks, OWN]:
        prints, values = printed(deck, work), shown(nets, work)
        assert set(values) == set(nets) and len(nets) > 15, (nets, values)
        for path, value in values.items():
            wanted = prints.get(path[1:].lower(), 0.0 if path == "/0" else math.nan)
            assert math.isclose(value, wanted, rel_tol=2e-5, abs_tol=1e-9), (path, value, wanted, deck)
        first = first or values
        assert all(math.isclose(values[net], first[net], rel_tol=1e-4, abs_tol=1e-9) for net in nets), deck
        assert len({round(v, 4) for v in prints.values()}) > 8, prints
