#!/usr/bin/env python3
"""kvdiff on random edits of the examples: the changes that it writes, applied to the old netlist,
give the new one.

    difference_edits.py BUILD SOURCE
"""

import json
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile

build, source = (pathlib.Path(word).resolve() for word in sys.argv[1:3])
EDITS_EACH = 6


def run(*words, cwd, statuses=(0,)):
    """The output; None for a status that is none of these."""
    ended = subprocess.run(list(map(str, words)), cwd=cwd, capture_output=True, timeout=120)
    return ended.stdout if ended.returncode in statuses else None


# --- edits of a description or a drawing, as text

def renamed(text, chance):
    """Every use of a name becomes another one: of a part, a block, a net or a port."""
    names = re.findall(r"^ *(?:part|port|net|bus) ([A-Z]\w*)|(?:name|lab|refdes|netname)=(\w+)"
                       r'|"Reference" "(\w+)"|label "(\w+)"', text, re.M)
    name = chance.choice([next(filter(None, found)) for found in names])
    return re.sub(rf"\b{name}\b", name + "z", text)


def line_gone(text, chance):
    lines = text.split("\n")
    at = chance.choice([i for i, line in enumerate(lines)
                        if re.match(r" *(part|wire|bit) |[NC] ", line)])
    return "\n".join(lines[:at] + lines[at + 1:])


def value_changed(text, chance):
    found = chance.choice(list(re.finditer(
        r'(?:\b(?:VALUE|W|L|DRIVE|MODEL|w|value)=|"Value" ")\w+', text)))
    return text[:found.end()] + "9" + text[found.end():]


def wire_gone(text, chance):
    found = chance.choice(list(re.finditer(r"^\t\(wire\n(?:\t\t.*\n)*\t\)\n", text, re.M)))
    return text[:found.start()] + text[found.end():]


def pins_swapped(text, chance):
    pins = list(re.finditer(r"\b[A-Z]+\d+\.\w+", text))
    a, b = sorted(chance.sample(pins, 2), key=lambda pin: pin.start())
    return (text[:a.start()] + b[0] + text[a.end():b.start()] + a[0] + text[b.end():])


def part_added(text, chance):
    found = chance.choice(list(re.finditer(r"^ *part (\w+)( .*)$", text, re.M)))
    return text[:found.end()] + f"\n  part {found[1]}x{found[2]}" + text[found.end():]


EDITS = (renamed, line_gone, wire_gone, value_changed, pins_swapped, part_added)


# --- netlists as what kvdiff compares

def netlist(dump):
    """By the path of a leaf: its texts, and the net of each bit of its pins."""
    nets = {0: ""} | {net["id"]: net["path"] for net in dump["nets"]}
    leaves = {}
    for inst in dump["instances"]:
        values = {name: value for name, value in inst["properties"].items()
                  if isinstance(value, str) and value}
        pins = {}
        for pin in inst["pins"]:
            for bit, net in enumerate(pin["bits"]):
                pins[pin["name"] + (f"[{bit}]" if len(pin["bits"]) > 1 else "")] = nets[net]
        assert inst["path"] not in leaves, inst["path"]
        leaves[inst["path"]] = values, pins
    return leaves


def applied(old, changes):
    """The netlist that the changes make of another; AssertionError when one is not true of it."""
    def of(kind):
        return {change["before"]: change["after"] for change in changes if change["change"] == kind}

    branches, insts, nets = of("branch renamed"), of("instance renamed"), of("net renamed")
    gone, gone_branches = of("instance gone"), of("branch gone")
    values = {change["before"]: change for change in changes if change["change"] == "values changed"}
    moved = {pin["pin"]: pin for change in changes if change["change"] != "instance new"
             for pin in change["pins"]}

    def path_after(own, path):
        if path in own:
            return own[path]
        for end in reversed([at.start() for at in re.finditer("/", path)][1:]):
            if path[:end] in branches:
                return branches[path[:end]] + path[end:]
        return path

    new = {change["after"]: ({value["name"]: value["after"] for value in change["values"]},
                             {pin["pin"]: pin["after"] for pin in change["pins"]})
           for change in changes if change["change"] == "instance new"}
    for path, (texts, pins) in old.items():
        if path in gone or any(path.startswith(branch + "/") for branch in gone_branches):
            continue
        after = path_after(insts, path)
        assert after not in new, after
        texts = dict(texts)
        for value in values.get(path, {"values": ()})["values"]:
            if value["name"] not in texts and not value["before"] or value["before"] == texts.get(
                    value["name"]):
                texts[value["name"]] = value["after"]
        pins_after = {}
        for pin, net in pins.items():
            change = moved.pop(f"{after}/{pin}", None)
            assert change is None or change["before"] == net, (change, net)
            pins_after[pin] = change["after"] if change else path_after(nets, net)
        new[after] = {name: text for name, text in texts.items() if text}, pins_after
    assert not moved, moved
    return new


def only_texts(leaves, names):
    return {path: ({name: text for name, text in texts.items() if name in names}, pins)
            for path, (texts, pins) in leaves.items()}


class Example:
    def __init__(self, name, file, make, commands):
        self.name, self.file, self.make, self.commands = name, file, make, commands

    def expanded(self, directory, text):
        """Makes and expands the design with this text of its file; its directory, or None."""
        shutil.copytree(source / "examples", directory / "examples")
        (directory / self.file).write_text(text, encoding="latin-1")
        made = run(*self.make, self.file, cwd=directory)
        commands = directory / self.commands
        if made is None or not commands.exists():
            return None
        top = pathlib.Path(self.file).stem
        run(build / "kivo", "--batch", "-q", top, commands, cwd=directory, statuses=(0, 1))
        return directory / top if (directory / top / "design_kv").exists() else None


gxmake, gximport = build / "tools/gxmake", build / "tools/gximport"
# That of faults has two parts of one path on purpose: no list of changes can be applied to it.
EXAMPLES = (
    Example("register", "examples/register/register.gxt", (gxmake, "-q"),
            "examples/register/expand.do"),
    Example("filter", "examples/filter/filter.gxt", (gxmake, "-q"), "examples/filter/expand.do"),
    Example("buffers", "examples/import/buffers.sch", (gximport, "-o", "."), "expand.do"),
    Example("preamp", "examples/import/lepton/preamp.sch", (gximport, "-o", "."), "expand.do"),
    Example("levels", "examples/import/kicad/levels.kicad_sch", (gximport, "-o", "."),
            "expand.do"),
)


def check(example, scratch):
    text = (source / example.file).read_text(encoding="latin-1")
    old = example.expanded(scratch / "old", text)
    assert old, f"{example.name} is not expanded"

    def dumped(design):
        return json.loads(run(build / "tools/kvdump", "--json", design, cwd=scratch))

    changed = 0
    for seed in range(10 * EDITS_EACH):
        if changed == EDITS_EACH:
            break
        chance, edited = random.Random(f"{example.name} {seed}"), text
        for edit in chance.choices(EDITS, k=chance.randint(1, 3)):
            try:
                edited = edit(edited, chance)
            except (IndexError, ValueError):  # nothing of the kind is there
                pass
        new = example.expanded(scratch / str(seed), edited)
        if new is None:
            continue
        written = run(build / "tools/kvdiff", "--json", old, new, cwd=scratch, statuses=(0, 1))
        assert written is not None, f"{example.name} {seed}: kvdiff"
        changes = json.loads(written)["changes"]
        dumps = dumped(old), dumped(new)
        before, after = map(netlist, dumps)
        texts = {name for leaves in (before, after) for values, _ in leaves.values()
                 for name in values}
        texts -= {name for dump in dumps for inst in dump["instances"]
                  for name, value in inst["properties"].items() if not isinstance(value, str)}
        try:
            result, after = (only_texts(each, texts) for each in (applied(before, changes), after))
            assert result == after, {path: (result.get(path), after.get(path))
                                     for path in result.keys() | after.keys()
                                     if result.get(path) != after.get(path)}
            assert changes or only_texts(before, texts) == after
        except AssertionError as error:
            raise SystemExit(f"{example.name}, seed {seed}: {error}\n{written.decode()}")
        changed += bool(changes)
    assert changed == EDITS_EACH, (example.name, changed)


with tempfile.TemporaryDirectory() as made:
    for each in EXAMPLES:
        check(each, pathlib.Path(made) / each.name)
