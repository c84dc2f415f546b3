#!/usr/bin/env python3
"""Commands as they are typed, and all that they print.

usage: transcripts.py BUILD CASE.txt...

"$ COMMAND" of a case, with the lines "> ..." after it, is run by bash in a directory of the case's own, in
which those before it ran; $SOURCE is the project. What follows is what it prints, errors among it, and
"[N]", the status of each command that fails. "## " begins a comment.
The status is 1 where anything differs; then both are shown.
"""
import difflib
import os
import subprocess
import sys
import tempfile

SOURCE = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def commands_of(case):
    commands = []
    for line in open(case, encoding="utf-8"):
        line = line.rstrip("\n")
        if line.startswith("$ "):
            commands.append((line[2:], []))
        elif line.startswith("> "):
            commands[-1] = (commands[-1][0] + "\n" + line[2:], [])
        elif commands and not line.startswith("## "):
            commands[-1][1].append(line)
    return commands


def faults_of(case, build):
    faults = []
    with tempfile.TemporaryDirectory() as here:
        here = os.path.realpath(here)
        environment = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "NO_COLOR")}
        environment.update(VELMORAN=build + "/product", SOURCE_DATE_EPOCH="86400", SOURCE=SOURCE,
                           PATH=f"{build}/tools:{build}:{os.environ['PATH']}")
        for command, expected in commands_of(case):
            words = ["bash", "-o", "pipefail", "-c", "trap 'echo [$?]' ERR\n" + command]
            done = subprocess.run(words, cwd=here, env=environment, timeout=100, stdin=subprocess.DEVNULL,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            got = done.stdout.decode("latin-1").replace(here, "HERE").splitlines()
            if got != expected:
                faults += [f"{case}: $ {command}", *difflib.unified_diff(expected, got, lineterm="", n=99)]
    return faults


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    told = [line for case in sys.argv[2:] for line in faults_of(case, os.path.abspath(sys.argv[1]))]
    print("\n".join(told))
    sys.exit(1 if told else 0)
