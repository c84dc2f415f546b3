#!/bin/bash
# docs/formats.md holds what the dump tools print of the formats, each between two comments.
#   formats_document.sh DOCUMENT TOOL...   compares; --write before them puts the tables in
set -e -o pipefail
write=no
[[ $1 == --write ]] && { write=yes; shift; }
document=$1
shift
failed=0
for tool in "$@"; do
  begin="<!-- $(basename "$tool") --format -->"
  printed=$("$tool" --format)
  if [[ $write == yes ]]; then
    awk -v begin="$begin" -v tables="$printed" '
      $0 == begin { print; print tables; inside = 1 }
      $0 == "<!-- end -->" { inside = 0 }
      !inside && $0 != begin' "$document" >"$document.new"
    mv "$document.new" "$document"
  fi
  written=$(awk -v begin="$begin" '
    $0 == "<!-- end -->" { inside = 0 } inside { print } $0 == begin { inside = 1 }' "$document")
  if [[ -z $printed || $printed != "$written" ]]; then
    echo "$document is not what $begin prints; tests/formats_document.sh --write mends it" >&2
    diff <(echo "$written") <(echo "$printed") || true
    failed=1
  fi
done
exit $failed
