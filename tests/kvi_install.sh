#!/bin/bash
# Installs libkvi from a build folder and builds a client against it in the four ways a user may:
# with the CMake package and with pkg-config, shared and static, each from C alone. Then loads its Python module.
#   kvi_install.sh BUILD SOURCE
set -e
build=$1 source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --component kvi --prefix "$work/prefix" >/dev/null
client=$source/examples/list_nets

cmake -G Ninja -S "$client" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/cmake" >/dev/null
cp -r "$client" "$work/static_client"
sed -i 's/PRIVATE kvi::kvi)/PRIVATE kvi::kvi_static)/' "$work/static_client/CMakeLists.txt"
cmake -G Ninja -S "$work/static_client" -B "$work/cmake_static" \
  -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/cmake_static" >/dev/null
if ldd "$work/cmake_static/list_nets" | grep -q libkvi; then
  echo "kvi::kvi_static links the shared library" && exit 1
fi

PKG_CONFIG_PATH=$(dirname "$(find "$work/prefix" -name kvi.pc)")
export PKG_CONFIG_PATH
LD_LIBRARY_PATH=$(pkg-config --variable=libdir kvi)
export LD_LIBRARY_PATH
mkdir "$work/shared" "$work/static"
# shellcheck disable=SC2046
cc -Wall -Werror "$client/list_nets.c" -o "$work/shared/list_nets" \
  $(pkg-config --cflags --libs kvi)
# shellcheck disable=SC2046
cc -Wall -Werror "$client/list_nets.c" -o "$work/static/list_nets" \
  $(pkg-config --cflags kvi) "$LD_LIBRARY_PATH/libkvi.a" -lstdc++ -lm

# Each answers about a damaged file by itself, so each really runs.
cd "$work"
mkdir design
cp "$source/fuzz/corpus/kvi/half_written" design/design_kv
for way in cmake cmake_static shared static; do
  answer=$("$work/$way/list_nets" design 2>&1) && exit 1
  [[ $answer == "list_nets: status "*"design/design_kv"* ]] || {
    echo "$way: $answer"; exit 1; }
done

# The module finds the library beside it.
unset LD_LIBRARY_PATH
PYTHONPATH=$(dirname "$(find "$work/prefix" -name kivo.py)") python3 -c '
import kivo
try: kivo.load("design")
except kivo.Error as error: assert "design/design_kv" in str(error), error
else: raise SystemExit("a damaged design was loaded")'
