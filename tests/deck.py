#!/usr/bin/env python3
"""A design gets other lines by its file "deck"; ngspice reads the flat deck and that with
subcircuits alike: device by device, node by node, value by value.

usage: deck.py BUILD SOURCE
"""
import pathlib, re, subprocess, sys, tempfile

build, source = map(pathlib.Path, sys.argv[1:3])
DECK = """deck 1
cell dlatch
parameter WP 2
instance MP1
: MP1 @1 @2 @3 @4 pch W='2*WP' L=1
instance MN1
: XMN1 @1 @2 @3 @4 nsub W=WP
statements
: .ic v(x)=0
cell reg4
instance X1
: X1 @1 @2 @3 @4 dlatch WP=5
instance X2
: X2 @1 @2 @3 @4 dlatch WP='1+1'
cell register
statements
: .model pch pmos
: .model nch nmos
: .subckt nsub d g s b W=1
: M1 d g s b nch W=W L=1
: .ends
"""


def run(*words, cwd):
    result = subprocess.run(list(map(str, words)), cwd=cwd, capture_output=True, text=True,
                            stdin=subprocess.DEVNULL, timeout=60)
    assert result.returncode == 0, (words, result.stdout, result.stderr)
    return result.stdout


def expanded(deck, work, name):
    """The devices that ngspice makes of a deck: [words], numbers as numbers."""
    lines = [l for l in deck.splitlines() if l not in (".end",) and not l.startswith(".ic")]
    file = work / (name + ".cir")
    file.write_text("\n".join(lines + [".control", "listing expand", "quit", ".endc", ".end", ""]))
    listing = run("ngspice", "-b", file, cwd=work)
    devices = [l.lower().split() for l in re.findall(r"^\s*\d+ : ([A-Za-z].*)$", listing, re.M)]
    assert devices, listing
    return devices


def joined(devices):
    """Each device without its name and with what its nodes join, names of nodes apart."""
    pins = {}
    count = lambda words: 4 if words[0][0] == "m" else 2
    for words in devices:
        values = " ".join(sorted(words[count(words) + 1:]))
        for place, node in enumerate(words[1:count(words) + 1]):
            pins.setdefault(node, []).append((words[0][0], values, place))
    sign = {node: "0" if node in ("0", "gnd") else repr(sorted(p)) for node, p in pins.items()}
    return sorted((w[0][0], *[sign[n] for n in w[1:count(w) + 1]], *sorted(w[count(w) + 1:]))
                  for w in devices)


with tempfile.TemporaryDirectory() as folder:
    work = pathlib.Path(folder)
    example = source / "examples" / "register"
    run(build / "tools" / "gxmake", "-o", work, example / "register.gxt", cwd=work)
    run("env", f"VELMORAN={build}/product", build / "kivo", "--batch", "--quiet", "register",
        example / "expand.do", cwd=work)
    kvspice = build / "tools" / "kvspice"
    plain = run(kvspice, "register", cwd=work)
    assert "pch.XR.X1.MP1" not in plain and "M.XR.X1.MP1" in plain, plain
    (work / "deck").write_text(DECK)
    flat = run(kvspice, "register", cwd=work)
    tree = run(kvspice, "--hierarchy", "register", cwd=work)
    for line in ["M.XR.X1.MP1 R:X1:N_311 D_1 VDD VDD pch W=10 L=1", ".ic v(R:X3:X)=0"]:
        assert line in flat.splitlines(), flat
    assert re.search(r"^M\.XR\.X2\.MP1 .* W=4 L=1$", flat, re.M), flat
    # X0, X2 and X3 have the same values, X1 has others.
    called = dict(re.findall(r"^X(\d) .* (dlatch\S*)$", tree, re.M))
    assert called["0"] == called["2"] == called["3"] != called["1"], tree
    assert set(called.values()) == {"dlatch", "dlatch__2"}, tree
    assert joined(expanded(flat, work, "flat")) == joined(expanded(tree, work, "tree"))
