#!/usr/bin/env python3
"""Imports the drawings of cases that are text files, and compares what comes of them.

usage: import_cases.py BUILD CASE.txt...

A case is a text of sections; what is before the first one says what the case shows. Drawings come in:
  === file NAME           a file of the drawing; the first one is the top sheet
  === import WORD...      what gximport is given (without it: the top sheet)
  === environment         NAME=VALUE lines; @HERE@ is the directory of the case
Symbols that a case has not of its own are looked for in symbols/xschem or symbols/lepton beside the case.
What is expected follows, in any choice and order; all lines of a section are compared:
  === cells               directories of cells, with "/sheet" where they have one
  === nets                after RUN: path of the net (? in place of a name made from a number): pins of
                          leaf instances on it
  === instances           after RUN: path of each leaf instance and its properties that are not empty
  === netlist [OPTION]    after RUN: what kvspice writes, without its title
  === sheet CELL PATTERN  the lines of `gxdump --source CELL` in which the regular expression is found;
  === symbols CELL PATTERN  the same of the symbols that it names
  === findings PATTERN    rule and path of what CHEck DESign finds, of the rules in which the expression
                          is found
  === expand PATTERN      lines of expand.do
  === beside NAME PATTERN  lines of that file of the design directory; all of them without a pattern
  === notes               what gximport.log tells, sorted, without the directory of the case
  === terminal            what gximport prints, and "status N" where that is not 0, but for folders that
                          only some machines have
  === refused             what gximport says when it ends with status 1
The status is 1 where anything differs; then both are shown.
"""
import difflib
import json
import os
import re
import subprocess
import sys
import tempfile

from compare_reference import listed_objects

BUILD = os.path.abspath(sys.argv[1]) if len(sys.argv) > 1 else ""


def sections(path):
    found = []
    for line in open(path, encoding="latin-1"):
        if line.startswith("=== "):
            found.append((line.split()[1], line.rstrip("\n").split(" ", 2)[2:], []))
        elif found:
            found[-1][2].append(line)
    return found


def run(directory, *words, given=()):
    environment = {k: v for k, v in os.environ.items() if not re.match("DISPLAY|XSCHEM_|PDK", k)}
    environment.update(VELMORAN=BUILD + "/product", HOME=directory, **dict(given))
    done = subprocess.run(words, cwd=directory, env=environment, capture_output=True, timeout=120,
                          stdin=subprocess.DEVNULL)
    return done.returncode, (done.stdout + done.stderr).decode("latin-1").replace(directory + "/", "")


class Import:
    """The design that a case's drawings become."""

    def __init__(self, case, directory):
        self.here, self.design = directory, directory + "/design"
        parts = sections(case)
        files = [words[0] for kind, words, _ in parts if kind == "file"]
        for kind, words, lines in parts:
            if kind == "file":
                os.makedirs(os.path.dirname(f"{directory}/{words[0]}"), exist_ok=True)
                with open(f"{directory}/{words[0]}", "w", encoding="latin-1") as out:
                    out.writelines(lines)
        options = next((w[0].split() for kind, w, _ in parts if kind == "import"), files[:1])
        given = [line.strip().replace("@HERE@", directory).split("=", 1)
                 for kind, _, lines in parts if kind == "environment" for line in lines if "=" in line]
        head = open(f"{directory}/{files[0]}", encoding="latin-1").read(6)
        symbols = os.path.join(os.path.dirname(case), "symbols", "xschem" if "v {" in head else "lepton")
        self.status, self.said = run(directory, BUILD + "/tools/gximport", "-o", "design", *options, "-L", symbols,
                                     given=given)
        self.symbol_files = symbols
        self.said = self.said.replace(symbols, "SYMBOLS").replace(directory, "HERE")
        self.top = os.path.splitext(os.path.basename(files[0]))[0]
        self.expanded = None

    def refused(self, _):
        return self.said.splitlines() if self.status == 1 else [f"status {self.status}: {self.said}"]

    def terminal(self, _):
        lines = self.said.splitlines()
        lines = [line for line in lines if "looked in /" not in line]
        return lines + [f"status {self.status}"] * bool(self.status)

    def cells(self, _):
        return [cell + ("/sheet" if os.path.exists(f"{self.design}/{cell}/sheet.gx") else "")
                for cell in sorted(os.listdir(self.design)) if os.path.isdir(f"{self.design}/{cell}")]

    def notes(self, _):
        lines = open(self.design + "/gximport.log", encoding="latin-1").read().replace(self.here + "/", "")
        lines = lines.replace(self.symbol_files + "/", "")
        return sorted(lines.splitlines()[5:])

    def beside(self, words):
        name, _, pattern = words[0].partition(" ")
        lines = open(f"{self.design}/{name}", encoding="latin-1").read().splitlines()
        return [line for line in lines if re.search(pattern, line)]

    def expand(self, words):
        lines = open(self.design + "/expand.do", encoding="latin-1").read().splitlines()
        return [line for line in lines if re.search(words[0], line)]

    def sheet(self, words, of_symbols=False):
        cell, pattern = words[0].split(" ", 1)
        status, text = run(self.design, BUILD + "/tools/gxdump", "--source", cell, "sheet")
        if status:
            return [text]
        parts = re.split(r"^(?=  in @)", text, flags=re.M)
        chosen = [part for part in parts if part.startswith("  in @symbol_family") == of_symbols]
        return [line.strip() for part in chosen for line in part.splitlines() if re.search(pattern, line)]

    def symbols(self, words):
        return self.sheet(words, True)

    def flat(self):
        if self.expanded is None:
            status, text = run(self.design, BUILD + "/kivo", "--batch", "--strict", self.top, "expand.do")
            if status:
                raise RuntimeError(f"RUN ends with status {status}:\n{text}")
            self.expanded = listed_objects(f"{self.design}/{self.top}/kivo_data")
        return self.expanded

    def netlist(self, words):
        self.flat()
        status, text = run(self.design, BUILD + "/tools/kvspice", *" ".join(words).split(), self.top)
        lines = re.sub(r"\bN_\d+", "?", text).splitlines()[1:]
        return lines + [f"status {status}"] * bool(status)

    def nets(self, _):
        names, pins, *_ = self.flat()
        on = {net: [] for net in names}
        for pin, net in pins:
            on[net].append(pin[1:])
        return sorted(re.sub(r"N_\d+$", "?", names[net]) + ": " + " ".join(sorted(on[net])) for net in names)

    def findings(self, words):
        run(self.design, BUILD + "/kivo", "--batch", self.top, "check.do")
        with open(f"{self.design}/{self.top}/findings.json", encoding="ascii") as file:
            found = json.load(file)
        return sorted(re.sub(r"N_\d+$", "?", f"{one['rule']} {one['path']}")
                      for one in found if re.search(words[0], one["rule"]))

    def instances(self, _):
        return sorted(path + "".join(f" {k}={v}" for k, v in properties if v)
                      for path, properties in self.flat()[2])


def faults_of(case):
    with tempfile.TemporaryDirectory() as directory:
        directory = os.path.realpath(directory)
        made = Import(case, directory)
        faults, compared = [], 0
        for kind, words, lines in sections(case):
            if kind in ("file", "import", "environment"):
                continue
            expected = [line.strip() for line in lines if line.strip()]
            try:
                if made.status and kind not in ("refused", "terminal"):
                    raise RuntimeError(made.said)
                got = [line.strip() for line in getattr(made, kind)(words)]
            except RuntimeError as error:
                got = str(error).splitlines()
            compared += 1
            if got != expected:
                faults += [f"{case}: === {' '.join([kind, *words])}",
                           *difflib.unified_diff(expected, got, "expected", "got", lineterm="", n=99)]
        return faults if compared else [f"{case}: expects nothing"]


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    told = [line for case in sys.argv[2:] for line in faults_of(os.path.abspath(case))]
    print("\n".join(told))
    sys.exit(1 if told else 0)
