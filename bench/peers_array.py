#!/usr/bin/env python3
"""The memory array of `gxmake --array` for the peers: a SPICE deck and the sheets of xschem.

    peers_array.py BLOCKS DIRECTORY

writes DIRECTORY/array.spice, which lists its expansion and ends, and DIRECTORY/array.sch with the
symbols and sheets below it. Cells, nets and names are those of the generator.
"""
import pathlib
import re
import sys

BLOCKS_OF_BANK = 64
BITS = 8


class Cell:
    """A cell: its ports (name, width), and its parts (name, cell, {pin: net}) in their order."""

    def __init__(self, name, **ports):
        self.name, self.ports, self.parts = name, ports, []

    def part(self, name, cell, **pins):
        self.parts.append((name, cell, pins))


DEVICES = {"mos": ("D", "G", "S", "B"), "cap": ("P1", "P2")}


def bit(net, i):
    return f"{net}[{i}]"


def bitcell():
    cell = Cell("bitcell", WL=1, BL=1, BLB=1, CK=1)
    for name, drain, gate, source, bulk in (
            ("MP1", "VDD", "QB", "Q", "VDD"), ("MN1", "Q", "QB", "GND", "GND"),
            ("MP2", "VDD", "Q", "QB", "VDD"), ("MN2", "QB", "Q", "GND", "GND"),
            ("MN3", "BL", "WL", "Q", "GND"), ("MN4", "BLB", "WL", "QB", "GND")):
        cell.part(name, "mos", D=drain, G=gate, S=source, B=bulk)
    cell.part("C1", "cap", P1="Q", P2="GND")
    cell.part("C2", "cap", P1="QB", P2="CK")
    return cell


def row():
    cell = Cell("row", WL=1, BL=BITS, BLB=BITS, CK=1)
    for i in range(BITS):
        cell.part(f"C{i}", "bitcell", WL="WL", BL=bit("BL", i), BLB=bit("BLB", i), CK="CK")
    return cell


def block():
    cell = Cell("block", WL=BITS, BL=BITS, BLB=BITS, CK=1)
    for i in range(BITS):
        cell.part(f"R{i}", "row", WL=bit("WL", i), BL="BL", BLB="BLB", CK="CK")
    for i in range(12):
        line = bit("BLB" if i % 2 else "BL", i % BITS)
        cell.part(f"MP{i}", "mos", D=line, G="CK", S="VDD", B="VDD")
        cell.part(f"CP{i}", "cap", P1="VDD", P2="GND")
    return cell


def add_storage(cell, banks, blocks):
    for i in range(banks):
        cell.part(f"K{i}", "bank", BL="BL", BLB="BLB", CK="CK")
    for i in range(blocks):
        cell.part(f"B{i}", "block", WL=f"WL{i}", BL="BL", BLB="BLB", CK="CK")


def cells_of(blocks):
    """All cells, from the leaves to the top, which has no ports."""
    banks = blocks // BLOCKS_OF_BANK if blocks > BLOCKS_OF_BANK else 0
    cells = [bitcell(), row(), block()]
    if banks:
        cells.append(Cell("bank", BL=BITS, BLB=BITS, CK=1))
        add_storage(cells[-1], 0, BLOCKS_OF_BANK)
    top = Cell("array")
    add_storage(top, banks, blocks - banks * BLOCKS_OF_BANK)
    for i in range(BITS):
        top.part(f"MD{i}", "mos", D=bit("BL", i), G="CK", S="GND", B="GND")
    for i in range(10):
        top.part(f"CD{i}", "cap", P1="CK", P2="GND")
    return cells + [top]


# --- SPICE

def bits_of(net, width):
    """The nodes of a net of that width; ngspice takes a bracket for a part of the name."""
    names = [net] if width == 1 else [bit(net, i) for i in range(width)]
    return [re.sub(r"\[(\d+)\]", r"_\1", name) for name in names]


def spice_part(name, kind, pins, ports_of):
    if kind == "mos":
        return f"{name} {' '.join(bits_of(pins[p], 1)[0] for p in DEVICES[kind])} nch W=1u L=1u"
    if kind == "cap":
        return f"{name} {pins['P1']} {pins['P2']} 1f"
    nodes = [node for port, width in ports_of[kind].items() for node in bits_of(pins[port], width)]
    return f"X{name} {' '.join(nodes)} {kind}"


def write_spice(cells, path):
    ports_of = {cell.name: cell.ports for cell in cells}
    lines = ["* memory array", ".global VDD", ".model nch nmos level=1"]
    for cell in cells:
        nodes = [node for port, width in cell.ports.items() for node in bits_of(port, width)]
        if nodes:
            lines.append(f".subckt {cell.name} {' '.join(nodes)}")
        lines += [spice_part(*part, ports_of) for part in cell.parts]
        if nodes:
            lines.append(f".ends {cell.name}")
    lines += [".control", "listing expand", "quit", ".endc", ".end", ""]
    path.write_text("\n".join(lines))


# --- xschem

LIBRARY = "array_cells"  # the folder of symbols and sheets, below the library path
SYMBOLS = {
    "mos": ('type=nmos\nformat="@name @pinlist nch w=1u l=1u"\ntemplate="name=M1"',
            [(pin, "inout", 0) for pin in DEVICES["mos"]]),
    "cap": ('type=capacitor\nformat="@name @pinlist 1f"\ntemplate="name=C1"',
            [(pin, "inout", 0) for pin in DEVICES["cap"]]),
    "label": ('type=label\nformat="*.alias @lab"\ntemplate="name=l1 sig_type=std_logic lab=xxx"',
              [("p", "in", 0)]),
    "supply": ('type=label\nglobal=1\nformat="*.alias @lab"\ntemplate="name=l1 lab=VDD"',
               [("p", "inout", 0)]),
    "port": ('type=iopin\nformat="*.iopin @lab"\ntemplate="name=p1 lab=xxx"', [("p", "inout", 0)]),
}
PIN_STEP = 20


def bus(net, width):
    return net if width == 1 else f"{net}[0:{width - 1}]"


def write_symbol(directory, name, text, pins):
    lines = ["G {" + text + "}", "V {}", "S {}", "E {}"]
    for i, (pin, direction, _) in enumerate(pins):
        y = i * PIN_STEP
        lines.append(f"B 5 -2.5 {y - 2.5} 2.5 {y + 2.5} {{name={pin} dir={direction}}}")
    (directory / f"{name}.sym").write_text("\n".join(lines) + "\n")


def write_sheet(directory, cell, pins_of):
    lines = ["G {}", "V {}", "S {}", "E {}"]
    labels = 0

    def place(symbol, x, y, text):
        lines.append(f"C {{{LIBRARY}/{symbol}}} {x} {y} 0 0 {{{text}}}")

    def label(x, y, net):
        nonlocal labels
        labels += 1
        place("supply" if net in ("VDD", "GND") else "label", x, y, f"name=l{labels} lab={net}")

    for i, (port, width) in enumerate(cell.ports.items()):
        place("port", -200, i * 40, f"name=p{i} lab={bus(port, width)}")
    for i, (name, kind, pins) in enumerate(cell.parts):
        x, y = 200 * (i % 16), 400 * (i // 16)
        is_cell = kind not in DEVICES
        place(kind, x, y, f"name={'X' if is_cell else ''}{name}")
        for k, (pin, _, width) in enumerate(pins_of[kind]):
            net = pins[pin.split("[")[0]]
            label(x, y + k * PIN_STEP, bus(net, width) if width > 1 else net)
    (directory / f"{cell.name}.sch").write_text("\n".join(lines) + "\n")


def write_xschem(cells, directory):
    pins_of = {name: [(pin, d, 1) for pin, d, _ in pins] for name, (_, pins) in SYMBOLS.items()}
    for name, (text, pins) in SYMBOLS.items():
        write_symbol(directory, name, text, pins)
    for cell in cells:
        pins_of[cell.name] = [(bus(port, width), "inout", width)
                              for port, width in cell.ports.items()]
        text = 'type=subcircuit\nformat="@name @pinlist @symname"\ntemplate="name=X1"'
        if cell.ports:
            write_symbol(directory, cell.name, text, pins_of[cell.name])
        write_sheet(directory, cell, pins_of)


def main():
    if len(sys.argv) != 3 or not sys.argv[1].isdigit() or int(sys.argv[1]) < 1:
        sys.exit("usage: peers_array.py BLOCKS DIRECTORY")
    directory = pathlib.Path(sys.argv[2])
    directory.mkdir(parents=True, exist_ok=True)
    cells = cells_of(int(sys.argv[1]))
    write_spice(cells, directory / "array.spice")
    write_xschem(cells, directory)


main()
