#!/usr/bin/env bash
# Installs the build into a temporary prefix and builds a small host against it twice: through
# the exported CMake package and through pkg-config. Both must run and see the delivery.
set -euo pipefail
build_dir=$1
source_dir=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --prefix "$work/prefix" > /dev/null
expected=$'progress 0\nprogress 0.5'

cmake -S "$source_dir" -B "$work/cmake-build" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" \
    > /dev/null
cmake --build "$work/cmake-build" > /dev/null
actual=$("$work/cmake-build/consumer")
[[ "$actual" == "$expected" ]] || { echo "CMake consumer printed: $actual"; exit 1; }

libdir=$(find "$work/prefix" -name vantrokelui.pc -printf '%h\n')
export PKG_CONFIG_PATH=$libdir
# shellcheck disable=SC2046
g++ -o "$work/pc-consumer" "$source_dir/main.cpp" $(pkg-config --cflags --libs vantrokelui) \
    -Wl,-rpath,"$(pkg-config --variable=libdir vantrokelui)"
actual=$("$work/pc-consumer")
[[ "$actual" == "$expected" ]] || { echo "pkg-config consumer printed: $actual"; exit 1; }
echo "installed package works through CMake and pkg-config"
