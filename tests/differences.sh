#!/bin/bash
# kvdiff on an example and edited copies of it: what it prints, its JSON, its status.
#   differences.sh BUILD SOURCE
build=$1 source=$2 faults=0
fail() { echo "$*"; faults=$((faults + 1)); }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1

# make NAME SED-SCRIPT: the edited example, expanded, as the design NAME/register.
make() {
  mkdir -p "$1/examples" && cp -r "$source/examples/lib" "$source/examples/register" "$1/examples"
  sed -i "$2" "$1/examples/register/register.gxt"
  (cd "$1" && "$build/tools/gxmake" -q examples/register/register.gxt &&
    "$build/kivo" --batch -q register examples/register/expand.do >run.log 2>&1) ||
    fail "$1: $(cat "$1"/run.log)"
}
# expect STATUS OLD NEW LINE...: exactly these lines.
expect() {
  local wanted=$1 old=$2 new=$3 out status
  shift 3
  out=$("$build/tools/kvdiff" "$old" "$new" 2>&1)
  status=$?
  [[ $status == "$wanted" && $out == "$(printf '%s\n' "$@")" ]] ||
    fail "kvdiff $old $new: status $status, $out"
}

make old ''
make value 's/part CL1 \(.*\)VALUE=20f/part CL1 \1VALUE=30f/'
make branch 's/\<XR\>/XREG/g'
make bit 's/bit 3 CL3.1/bit 2 CL3.1/'
expect 0 old/register old/register/design_kv
expect 1 old/register value/register '~ instance /CL1: VALUE 20f -> 30f'
expect 1 old/register branch/register '~ branch /XR is now /XREG'
expect 1 old/register bit/register '~ pin /CL3/1 moved from /Q_3 to /Q_2'
expect 2 old/register old "kvdiff: old: not expanded: no design_kv in it"
expect 2 old/register none "kvdiff: none: No such file or directory"
head -c 5000 old/register/design_kv >cut
expect 2 cut old/register "kvdiff: cut: truncated"

"$build/tools/kvdiff" --json old/register value/register >changes.json
python3 - <<'PYTHON' || fail "the JSON"
import json
assert json.load(open("changes.json")) == {
    "format": "kivo-difference", "version": 1, "changes": [
        {"change": "values changed", "before": "/CL1", "after": "/CL1",
         "values": [{"name": "VALUE", "before": "20f", "after": "30f"}], "pins": []}]}
PYTHON
quiet=$("$build/tools/kvdiff" --quiet old/register value/register)
[[ $? == 1 && -z $quiet ]] || fail "--quiet: $quiet"
"$build/tools/kvdiff" old/register value/register >/dev/full 2>&1
[[ $? == 2 ]] || fail "a full disk"
coloured=$(TERM=xterm script -qec "'$build/tools/kvdiff' old/register value/register" /dev/null </dev/null)
[[ $coloured == $'\e[33m~ '* || -z $(command -v script) ]] || fail "on a terminal: $coloured"
(( faults == 0 ))
