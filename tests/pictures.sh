#!/bin/bash
# The pictures that kivo-plot writes, as the programs of others see them.
#   pictures.sh BUILD SOURCE
set -e -o pipefail
build=$1 source=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
fail() { echo "$*"; exit 1; }
plot() { "$build/tools/kivo-plot" "$@"; }
words() { tr -s ' \f' '\n' | sort -u; }
export VELMORAN=$build/product

"$build/tools/gxmake" -q -o . "$source/examples/register/register.gxt"
"$build/kivo" --batch -q register "$source/examples/register/expand.do" >/dev/null

# Every use of every sheet: each flat net that is drawn is found by its name.
plot --pdf --per-instance -o uses.pdf register
qpdf --check uses.pdf >/dev/null || fail "qpdf complains of uses.pdf"
sed -n '/^ NET  *: /,/sim_path/{s/^ sim_path *: "\(.*\)" *$/\1/p}' register/kivo_data | sort -u >nets
[[ $(wc -l <nets) -gt 30 ]] || fail "the listing has $(wc -l <nets) nets"
pdftotext -raw uses.pdf - | words >shown
missing=$(comm -23 nets shown)
# Bits of a bus are drawn as the bus.
[[ -z $(grep -v '_[0-9]*$' <<<"$missing") ]] || fail "nets without a name in uses.pdf:" $missing
pages=$(qpdf --show-npages uses.pdf)
[[ $pages == 7 ]] || fail "uses.pdf has $pages pages"

# Each sheet once: blocks lead down, titles up, the outline goes by path.
plot --pdf --all --paper fit --colours screen -o sheets.pdf register
qpdf --check sheets.pdf >/dev/null || fail "qpdf complains of sheets.pdf"
[[ $(qpdf --show-npages sheets.pdf) == 4 ]] || fail "sheets.pdf has not a page a sheet"
qpdf --json sheets.pdf | python3 -c '
import json, sys
pdf = json.load(sys.stdin)
def titles(items):
    return [(i["title"], titles(i["kids"])) for i in items]
tree = titles(pdf["outlines"])
expected = [("register", [("XR", [("X0", []), ("XCK", [])])])]
if sorted(map(str, tree)) != sorted(map(str, expected)):
    sys.exit(f"outline: {tree}")
'

# SVG: each file is XML, each link leads to a file.
plot --svg --all -o svg register
python3 - <<'PYTHON'
import pathlib, re, xml.dom.minidom
files = sorted(pathlib.Path("svg").glob("*.svg"))
assert len(files) == 4, files
for file in files:
    xml.dom.minidom.parse(str(file))
links = {f.name: re.findall(r'href="([^"]*)"', f.read_text()) for f in [*files, pathlib.Path("svg/index.html")]}
for name, targets in links.items():
    for target in targets:
        assert pathlib.Path("svg", target).is_file(), (name, target)
assert links["register.svg"] == ["reg4.svg"], links
assert links["dlatch.svg"] == ["reg4.svg"], links
PYTHON

# A block with the property and value of a primitive is shown as it is.
printf 'symbol block\n pin A 0,0\n prop KIND=hard\nsheet block\n page 9,9\nsheet two\n page 9,9\n part X block 5,5\n' >two.gxt
"$build/tools/gxmake" -q -o . two.gxt
for kind in soft hard; do plot --svg --all --primitive KIND=$kind -o $kind two; done
[[ -f soft/block.svg && -f hard/two.svg && ! -e hard/block.svg ]] || fail "$(ls soft hard)"

# What is no file stays.
mkfifo pipe
if plot --svg -o pipe register 2>err; then fail "a pipe is written over"; fi
[[ -p pipe && $(<err) == "kivo-plot: cannot write pipe: Not a regular file" ]] || fail "$(<err)"

# From elsewhere only the top sheet is found: the rest is reported.
(cd / && plot --pdf --all -o "$scratch/away.pdf" "$scratch/register" 2>"$scratch/err") && fail "no status"
grep -q "the sheets below: their paths begin in $scratch" err || fail "$(<err)"

# A damaged sheet is named and left out; the others are written.
printf 'no sheet' >"dlatch/$(ls dlatch | grep 'sheet.gx_')"
if plot --pdf --all -o rest.pdf register 2>err; then fail "a damaged sheet is passed over"; fi
grep -q '^kivo-plot: dlatch/sheet.gx_.*(left out)$' err || fail "$(<err)"
[[ $(qpdf --show-npages rest.pdf) == 3 ]] || fail "rest.pdf lacks sheets that are sound"
