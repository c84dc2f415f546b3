#!/bin/bash
# Imports a drawing, expands it, and compares its nets with the netlist that its own editor
# made of it. Says a line: design, instances, nets, time of import and of expansion.
#   import_reference.sh BUILD REFERENCE TOP.sch [PAGE.sch or option of gximport]...
set -e -o pipefail
build=$1 reference=$(realpath "$2") top=$3
shift 2
compare=$(realpath "$(dirname "$0")/compare_reference.py")
export VELMORAN=$build/product
unset DISPLAY
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cell=$(basename "$top" .sch)

# taken PROGRAM WORD...: the milliseconds that it takes; what it prints is in $work/out.
taken() {
  local from=$EPOCHREALTIME
  "$@" >"$work/out" || { cat "$work/out" >&2; exit 1; }
  echo $(( (${EPOCHREALTIME/./} - ${from/./}) / 1000 ))
}
import_ms=$(taken "$build/tools/gximport" -o "$work/design" "$@")
cp "$work/out" "$work/summary"
cd "$work/design"
expand_ms=$(taken "$build/kivo" --batch "$cell" expand.do)

# The reference with two pins of other nets changed for one another must not agree.
case $reference in
  *.spice) awk '!done && /^[A-Za-z]/ && $2 != $3 { $0 = $1 " " $3 " " $2 substr($0, length($1 $2 $3) + 3); done = 1 }
                1' "$reference" >"$work/wrong.spice" ;;
  *) sed -E '0,/^(.* : [^,]*), ([^,]*)$/s//\1/' "$reference" >"$work/wrong.net" ;;
esac
if python3 "$compare" "$cell/kivo_data" "$work"/wrong.* >/dev/null; then
  echo "a netlist with other nets agrees, too"
  exit 1
fi
python3 "$compare" "$cell/kivo_data" "$reference"
sed -n "s/.*: \(.*\); .*/$cell: \1; imported in $import_ms ms, expanded in $expand_ms ms/p" \
  "$work/summary"
