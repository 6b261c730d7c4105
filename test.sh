#!/usr/bin/env bash
# Runs the whole test suite: installs what is missing, builds, runs every test
# through CTest, then does the same again under AddressSanitizer and
# UndefinedBehaviorSanitizer in a separate build folder.
set -euo pipefail
cd "$(dirname "$0")"
scripts/deps.sh

jobs=$(nproc)
echo "== plain build"
scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo
(cd build && ctest --output-on-failure -j "$jobs")

echo "== sanitizer build"
scripts/build.sh build-asan -DCMAKE_BUILD_TYPE=Debug -DRV_SANITIZE=ON -DRV_BUILD_BENCH=OFF
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:strict_string_checks=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
(cd build-asan && ctest --output-on-failure -j "$jobs")
echo "== all tests passed"
