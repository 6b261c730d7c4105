#!/usr/bin/env bash
# Installs the build into a temporary prefix and builds a host against it,
# once through the CMake package and once through pkg-config.
set -euo pipefail
build=$1
src=$(cd "$(dirname "$0")" && pwd)
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build" --prefix "$prefix" >/dev/null
libdir=$(dirname "$(find "$prefix" -name 'librvdataaccess.so' | head -n 1)")

cmake -S "$src/consumer" -B "$prefix/consumer" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$prefix/consumer" >/dev/null
LD_LIBRARY_PATH=$libdir "$prefix/consumer/consumer"

flags=$(PKG_CONFIG_PATH=$libdir/pkgconfig pkg-config --cflags --libs rvdataaccess)
# shellcheck disable=SC2086
cc "$src/consumer/main.c" $flags -o "$prefix/pc-consumer"
LD_LIBRARY_PATH=$libdir "$prefix/pc-consumer"
