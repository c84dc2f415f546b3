# What the scripts share: Debian packages, the build, a private X server.
# Sourced, with the top of the project as current directory.

example_packages=(cmake ninja-build g++ libx11-dev zlib1g-dev libsqlite3-dev)
test_packages=("${example_packages[@]}" pkg-config libxtst-dev libgtest-dev xvfb xauth xdotool
               imagemagick ngspice hp2xx qpdf poppler-utils python3 iverilog chromium)
ci_packages=("${test_packages[@]}" ccache git libbenchmark-dev clang-format mandoc appstream
             desktop-file-utils)

build_dir=build

# Installs what is missing of these packages; needs no root when all are there.
install_packages() {
  command -v dpkg-query >/dev/null || return 0   # not Debian: the build reports what it misses
  local package missing=() as_root=()
  for package; do
    [[ "$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null)" == *" installed" ]] ||
      missing+=("$package")
  done
  (( ${#missing[@]} )) || return 0
  if (( EUID != 0 )); then
    command -v sudo >/dev/null || {
      echo "these packages are missing and only root can install them: ${missing[*]}" >&2
      return 1
    }
    as_root=(sudo)
  fi
  echo "installing ${missing[*]}"
  local log
  log=$(mktemp)
  "${as_root[@]}" apt-get -qq update  # where sudo asks for a password
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q install -y \
    --no-install-recommends "${missing[@]}" 2>&1 |
    show_progress "installing packages" "$log" || { tail -20 "$log" >&2; rm -f "$log"; return 1; }
  rm -f "$log"
}

# Passes the output of a build or of tests on to a file, and shows how far it is: on a terminal in
# one line that counts, in a log by a line every half minute.
show_progress() {
  local what=$1 log=$2 line part='' steps='' shown=$SECONDS began=$SECONDS state
  local step='^ *\[?([0-9]+)/([0-9]+)[] ]'
  : >"$log"
  while :; do
    state=0
    IFS= read -r -t 1 line || state=$?
    if (( state == 0 )); then
      printf '%s\n' "$part$line" >>"$log"
      [[ $part$line =~ $step ]] && steps=" ${BASH_REMATCH[1]} of ${BASH_REMATCH[2]},"
      part=''
    else
      part+=$line
      (( state > 128 )) || break
    fi
    if [[ -t 1 ]]; then
      (( SECONDS == shown )) || printf '\r%s:%s %d s\e[K' "$what" "$steps" $((SECONDS - began))
      shown=$SECONDS
    elif (( SECONDS - shown >= 30 )); then
      echo "$what:$steps $((SECONDS - began)) s"
      shown=$SECONDS
    fi
  done
  printf '%s' "$part" >>"$log"
  [[ ! -t 1 ]] || printf '\r\e[K'
}

# The folder that --build-dir names, seen from where the script was called.
take_build_dir() {
  [[ -n ${1:-} ]] || { echo "--build-dir needs a directory" >&2; exit 2; }
  build_dir=$(cd "$called_from" && realpath -m -- "$1")
}

# Makes the build folder this process's own: a second build waits for the first.
lock_build() {
  mkdir -p "$build_dir" 2>/dev/null && [[ -w $build_dir ]] || {
    echo "$build_dir cannot be written; --build-dir DIRECTORY names another one" >&2
    return 1
  }
  build_dir=$(cd "$build_dir" && pwd)
  command -v flock >/dev/null || return 0
  exec 8>"$build_dir/lock"
  flock -n 8 || { echo "waiting for another build in $build_dir"; flock 8; }
}
unlock_build() { exec 8>&-; }

# build PRESET [-DOPTION=VALUE...] [TARGET...]: configures and builds; shows the end of its log when
# it fails.
build() {
  local preset=$1 log=$build_dir/$1.log options=() began=$SECONDS
  shift
  while [[ ${1:-} == -D* ]]; do options+=("$1"); shift; done
  echo "building ($preset), log: ${log#"$PWD"/}"
  { cmake --preset "$preset" -B "$build_dir/$preset" "${options[@]}" &&
      cmake --build "$build_dir/$preset" ${1:+--target "$@"}; } 2>&1 |
    show_progress "building ($preset)" "$log" || { tail -40 "$log" >&2; return 1; }
  echo "built in $((SECONDS - began)) s"
}

# Starts an X server of its own and sets DISPLAY; it ends with the script.
start_private_display() {
  local number_file
  number_file=$(mktemp)
  Xvfb -displayfd 9 -screen 0 "${1:-1280x1024x24}" -nolisten tcp 9>"$number_file" 2>/dev/null &
  xvfb_pid=$!
  trap 'kill "$xvfb_pid" 2>/dev/null' EXIT
  for _ in {1..200}; do
    [[ -s $number_file ]] && break
    sleep 0.05
  done
  DISPLAY=:$(<"$number_file")
  rm -f "$number_file"
  [[ $DISPLAY != : ]] || { echo "Xvfb does not start" >&2; return 1; }
  export DISPLAY
}
