#!/usr/bin/env python3
"""Writes a drawing of KiCad: a top sheet, and others with parts that are wired by names.

usage: kicad_sheets.py SHEETS PARTS DIRECTORY
"""
import itertools
import os
import sys

sheets, parts, directory = int(sys.argv[1]), int(sys.argv[2]), sys.argv[3]
ids, references = itertools.count(1), itertools.count(1)
PINS = " ".join(
    f'(pin {"input" if i < 8 else "output"} line (at {-12.7 if i < 8 else 12.7} {8.89 - 2.54 * (i % 8):.2f} '
    f'{0 if i < 8 else 180}) (length 2.54) (name "P{i}") (number "{i + 1}"))' for i in range(16))
LIBRARY = f'''(lib_symbols
 (symbol "R" (symbol "R_0_1" (rectangle (start -1.016 -2.54) (end 1.016 2.54) (stroke (width 0.254)) (fill (type none))))
  (symbol "R_1_1" (pin passive line (at 0 3.81 270) (length 1.27) (name "~") (number "1"))
   (pin passive line (at 0 -3.81 90) (length 1.27) (name "~") (number "2"))))
 (symbol "U" (symbol "U_0_1" (rectangle (start -10.16 12.7) (end 10.16 -12.7) (stroke (width 0)) (fill (type none))))
  (symbol "U_1_1" {PINS}))
 (symbol "GND" (power) (symbol "GND_1_1"
  (pin power_in line (at 0 0 270) (length 0) (hide yes) (name "GND") (number "1")))))
'''


def new_id():
    return f'(uuid "{next(ids):08x}-0000-4000-8000-000000000000")'


def wire(x, y, x2, y2):
    return f"(wire (pts (xy {x:.2f} {y:.2f}) (xy {x2:.2f} {y2:.2f})) {new_id()})"


def label(kind, name, x, y, turn=0):
    shape = "" if kind == "label" else " (shape input)"
    return f'({kind} "{name}"{shape} (at {x:.2f} {y:.2f} {turn}) {new_id()})'


def write(name, sheet_id, items):
    with open(f"{directory}/{name}.kicad_sch", "w", encoding="ascii") as out:
        out.write(f'(kicad_sch (version 20250114) {sheet_id} (paper "A1") {LIBRARY}' + "\n".join(items) + ")\n")


def sheet(path, count):
    items = []

    def place(symbol, letter, x, y):
        reference = letter + str(next(references))
        items.append(
            f'(symbol (lib_id "{symbol}") (at {x:.2f} {y:.2f} 0) (unit 1) {new_id()} '
            f'(property "Reference" "{reference}" (at {x + 2.54:.2f} {y:.2f} 0)) '
            f'(property "Value" "10k" (at {x + 2.54:.2f} {y + 2.54:.2f} 0)) '
            f'(property "Footprint" "Resistor_SMD:R_0603" (at 0 0 0) (effects (hide yes))) '
            f'(instances (project "big" (path "{path}" (reference "{reference}") (unit 1)))))')

    chips = count // 12
    for i in range(chips):
        x, y = 50.8 + 63.5 * (i % 5), 38.1 + 38.1 * (i // 5)
        place("U", "U", x, y)
        for k in range(8):
            row = y - 8.89 + 2.54 * k
            items += [wire(x - 12.7, row, x - 20.32, row), label("label", f"D{k}", x - 20.32, row),
                      wire(x + 12.7, row, x + 20.32, row), label("label", f"Q{i}_{k}", x + 15.24, row)]
    for i in range(count - chips):
        x, y = 25.4 + 5.08 * (i % 70), 203.2 + 25.4 * (i // 70)
        place("R", "R", x, y)
        place("GND", "#PWR", x, y + 3.81)
        items.append(wire(x, y - 3.81, x, y - 7.62))
        items.append(label("label", f"Q{i // 8}_{i % 8}", x, y - 6.35, 90) if i < 8 * chips
                     else label("global_label", f"N{i}", x, y - 7.62, 90))
    for k in range(8):
        y = 12.7 + 2.54 * k
        items += [label("hierarchical_label", f"D{k}", 25.4, y, 180), wire(25.4, y, 30.48, y),
                  label("label", f"D{k}", 30.48, y)]
    return items


os.makedirs(directory, exist_ok=True)
root, top = new_id(), []
for s in range(1, sheets):
    block, x, y = new_id(), 25.4 + 50.8 * ((s - 1) % 9), 25.4 + 50.8 * ((s - 1) // 9)
    rows = [(k, y + 5.08 + 2.54 * k) for k in range(8)]
    pins = " ".join(f'(pin "D{k}" input (at {x:.2f} {row:.2f} 180) {new_id()})' for k, row in rows)
    top.append(f'(sheet (at {x:.2f} {y:.2f}) (size 25.4 30.48) {block} (property "Sheetname" "S{s}" (at {x:.2f} {y:.2f} 0)) '
               f'(property "Sheetfile" "s{s}.kicad_sch" (at {x:.2f} {y + 33:.2f} 0)) {pins})')
    for k, row in rows:
        top += [wire(x, row, x - 7.62, row), label("label", f"D{k}", x - 7.62, row)]
    path = f"/{root.split(chr(34))[1]}/{block.split(chr(34))[1]}"
    write(f"s{s}", new_id(), sheet(path, parts // (sheets - 1) + (s <= parts % (sheets - 1))))
write("big", root, top + ['(sheet_instances (path "/" (page "1")))'])
