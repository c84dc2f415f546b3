# What run-example and run-tests share: Debian packages, the build, a private X server.
# Sourced, with the top of the project as current directory.

packages=(cmake ninja-build g++ ccache pkg-config libx11-dev libxtst-dev libgtest-dev libsqlite3-dev
          libbenchmark-dev xvfb xauth xdotool imagemagick ngspice hp2xx
          python3 clang-format iverilog)

# Installs what is missing of the packages; touches nothing when all are there.
install_packages() {
  command -v dpkg-query >/dev/null || return 0   # not Debian: the build tells what it misses
  local package missing=() as_root=()
  for package in "${packages[@]}"; do
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
  "${as_root[@]}" apt-get -qq update
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq install -y \
    --no-install-recommends "${missing[@]}" >/dev/null
}

# build PRESET [TARGET...]: configures and builds; quiet unless something is wrong.
build() {
  local preset=$1 log
  shift
  mkdir -p build
  log=build/$preset.log
  echo "building ($preset)"
  { cmake --preset "$preset" && cmake --build "build/$preset" ${1:+--target "$@"}; } \
    >"$log" 2>&1 || { tail -40 "$log" >&2; return 1; }
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
