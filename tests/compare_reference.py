#!/usr/bin/env python3
"""Compares an expanded design with a netlist that another program made of the same source.

usage: compare_reference.py KIVO_DATA REFERENCE [EXPECTED.JSON]

KIVO_DATA is the data listing of a run (GENerate DATa ON), REFERENCE a netlist in the format "geda"
of gEDA and its successors, whose refdes are joined by "/" over the levels; or, ending in .spice, a
flat SPICE netlist of xschem, whose names are in capitals and joined by "_" from the leaf on (pins
are told by their position there). The two agree when every net joins the same pins. EXPECTED.JSON
holds counts that the listing must reach. Says what differs; the exit status is 1 then.

Names are compared as they were drawn: the listing spells some of their letters, as "%CF%95". A part
whose name ends in ~2, ~3 ... is a further part of the same package.
"""
import collections
import json
import re
import sys
import urllib.parse


def reference_nets(path):
    """The pins of each net by its name; nets of no pin are left out."""
    nets = {}
    lines = iter(open(path, encoding="utf-8"))
    for line in lines:
        if line.startswith("START nets"):
            break
    for line in lines:
        if line.startswith("END nets"):
            break
        name, colon, pins = line.rstrip("\n").partition(" : ")
        if colon:
            nets[name] = frozenset(
                "/" + "/".join(pin.rsplit(" ", 1)) for pin in pins.split(", "))
    return nets


def nodes_of(words):
    """How many words of a SPICE line are nodes; the last plain one of a call names what it calls."""
    letter = words[0][0]
    if letter == "X":
        plain = next((i for i, word in enumerate(words) if "=" in word), len(words))
        return plain - 2
    return {"M": 4, "E": 4, "G": 4, "S": 4, "Q": 3, "J": 3}.get(letter, 2)


def spice_nets(path):
    """The pins of each net, as (device, position)."""
    lines = []
    commands = False
    for line in open(path, encoding="utf-8"):
        commands = line.lower().startswith(".control") or (
            commands and not line.lower().startswith(".endc"))
        if commands:
            continue
        if line.startswith("+") and lines:
            lines[-1] += " " + line[1:]
        elif line[:1].isalpha():
            lines.append(line)
    nets = collections.defaultdict(set)
    for words in (re.sub(r"\s*=\s*", "=", line).split() for line in lines):
        for position, node in enumerate(words[1:1 + nodes_of(words)], 1):
            nets[node].add(f"{words[0]} {position}")
    return {name: frozenset(pins) for name, pins in nets.items()}


def spice_name(path):
    """/XA/X1/M2 as xschem's flat netlist says it: M2_XA_X1."""
    *levels, leaf = path.upper().strip("/").split("/")
    # Levels that an import added where a sheet was too large.
    levels = [level for level in levels if not re.fullmatch(r"PART\d+", level)]
    return "_".join([leaf] + levels)


def listed_objects(path):
    """Of a data listing: the paths of nets by their numbers, the pins of leaf instances as (path, net),
    the leaf instances as (path, [(property, value)]), and the counts of its head."""
    names, pins, instances, counts = {}, [], [], {}
    kind = index = sim_path = name = None
    for line in open(path, encoding="latin-1"):
        if m := re.match(r" nbof_(.*?) *:(\d+)$", line):
            counts[m.group(1)] = int(m.group(2))
        elif m := re.match(r" (Instance|NET|MACRO|Pin)  ?: (\d+)$", line):
            # A pin of a macro is told from a pin of an instance by what is above it.
            if m.group(1) == "Pin":
                kind = "macro pin" if kind in ("MACRO", "macro pin") else "pin"
            else:
                kind = m.group(1)
            index, sim_path = int(m.group(2)), None
        elif (m := re.match(r' sim_path *: "(.*)"$', line)) and sim_path is None:
            sim_path = m.group(1)
            if kind == "NET":
                names[index] = sim_path
            if kind == "Instance":
                instances.append((sim_path, []))
        elif (m := re.match(r" net_ind *: (\d+)$", line)) and kind == "pin":
            pins.append((sim_path, int(m.group(1))))
        elif m := re.match(r' Prop instance : name : "(.*)" prop_type', line):
            name = m.group(1)
        elif (m := re.match(r" prop_(?:char *: \"(.*)\"|\w+ 1 : *(.*))$", line)) and kind == "Instance":
            instances[-1][1].append((name, m.group(1) or m.group(2)))
    return names, pins, instances, counts


def listed_nets(path, spice=False):
    """The same as the reference's of a data listing."""
    names, pins, _, counts = listed_objects(path)
    positions, on = collections.Counter(), collections.defaultdict(set)
    for path, net in pins:
        device = path.rsplit("/", 1)[0]
        positions[device] += 1
        on[net].add(f"{spice_name(device)} {positions[device]}" if spice
                    else urllib.parse.unquote(re.sub(r"~\d+(?=/[^/]*$)", "", path)))
    return {names[net]: frozenset(pins_on) for net, pins_on in on.items()}, counts


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    spice = sys.argv[2].endswith(".spice")
    here, counts = listed_nets(sys.argv[1], spice)
    there = spice_nets(sys.argv[2]) if spice else reference_nets(sys.argv[2])
    faults = []
    # A pin that nothing is joined to may be missing there.
    joined = {pin for pins in there.values() for pin in pins}
    groups_here, groups_there = set(here.values()), set(there.values())
    for name, pins in here.items():
        if pins not in groups_there and (len(pins) > 1 or pins & joined):
            faults.append(f"only here:  {name}: {' '.join(sorted(pins))}")
    for name, pins in there.items():
        if pins not in groups_here:
            faults.append(f"only there: {name}: {' '.join(sorted(pins))}")
    if len(sys.argv) == 4:
        expected = json.load(open(sys.argv[3], encoding="utf-8"))
        listed = {"instances": "instance", "macros": "macro", "pins": "pin",
                  "macro_pins": "pin (for macro)", "nets": "net"}
        for name, ours in listed.items():
            if counts[ours] != expected[name]:
                faults.append(f"{name}: {counts[ours]}, expected {expected[name]}")
    print("\n".join(faults) if faults
          else f"{sys.argv[1]}: {len(here)} nets with pins, {len(there)} nets there, all agree")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
