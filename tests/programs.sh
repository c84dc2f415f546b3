#!/bin/bash
# What every program of the house says about itself: --help and --version with status 0, wrong options
# with 2 on standard error; its man page and its completion know every option that its help names.
#   programs.sh BUILD SOURCE
build=$1 source=$2 faults=0
fail() { echo "$*"; faults=$((faults + 1)); }
source "$source/docs/completion/kivo.bash"

# ask STATUS PROGRAM WORD...: leaves what it printed in $out and $err.
ask() {
  local wanted=$1 status
  shift
  out=$("$@" 2>"$err_file" </dev/null)
  status=$?
  err=$(<"$err_file")
  (( status == wanted )) || fail "$*: status $status, not $wanted"
}
err_file=$(mktemp)
trap 'rm -f "$err_file"' EXIT
unset DISPLAY

options_in() { grep -oE '(^|[][ ,|(])--?[A-Za-z][A-Za-z-]*' | grep -oE -- '-.*' | sort -u; }

# One version, of the build, of the list of changes and of the packages.
version=$(sed -n 's/^project(kivo VERSION \([0-9.]*\) .*/\1/p' "$source/CMakeLists.txt")
[[ $(sed -n 's/^## \([0-9.]*\) .*/\1/p;T;q' "$source/CHANGELOG.md") == "$version" ]] ||
  fail "CHANGELOG.md does not begin with version $version"
[[ $(head -1 "$source/debian/changelog") == "kivo ($version-"* ]] ||
  fail "debian/changelog does not begin with version $version"

programs=("$build/kivo")
for tool in "$source"/tools/*.cpp; do programs+=("$build/tools/$(basename "$tool" .cpp)"); done
for program in "${programs[@]}"; do
  name=$(basename "$program")
  ask 0 "$program" --version
  [[ $out == "$name (KIVO) $version" && -z $err ]] || fail "$name --version: $out$err"
  ask 2 "$program" --no-such-option
  [[ -z $out && $err == "$name: unknown option --no-such-option"* ]] || fail "$name: $out$err"
  ask 0 "$program" --help
  [[ $out == "usage: $name"* && -z $err ]] || fail "$name --help: $out$err"
  options=$(options_in <<<"$out")
  page=$source/docs/man/$name.1
  missing=$(comm -23 <(echo "$options") <(sed 's/\\-/-/g; s/\\f.//g' "$page" | tr '"' ' ' | options_in))
  [[ -z $missing ]] || fail "$page does not tell:" $missing
  COMP_WORDS=("$program" -) COMP_CWORD=1
  _kivo_programs "$program" - "$program"
  offered=$(printf '%s\n' "${COMPREPLY[@]}" | sort -u)
  [[ $offered == "$options" ]] || fail "$name offers" $offered "but helps with" $options
  [[ $("$program" --help >/dev/full 2>&1; echo $?) == 1 ]] || fail "$name --help: a full disk"
done

# The formats that gximport reads, as its help names them: each is offered and has its line in the page.
read -r formats < <("$build/tools/gximport" --help | sed -n 's/.*--format NAME *\(.*\) (default.*/\1/p')
formats=${formats//,/} formats=${formats/ or / }
COMP_WORDS=(gximport --format "") COMP_CWORD=2
_kivo_programs gximport "" --format
[[ $formats == *\ * && ${COMPREPLY[*]} == "$formats" ]] || fail "gximport reads $formats, offered: ${COMPREPLY[*]}"
in_page=$(sed -n '/^.BI .*-format/,/^.TP/p' "$source/docs/man/gximport.1")
for format in $formats; do [[ $in_page == *"$format"* ]] || fail "gximport.1 does not name the format $format"; done

(( ${#programs[@]} > 9 && faults == 0 ))
