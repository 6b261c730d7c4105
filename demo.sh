#!/usr/bin/env bash
# The main job: on a fresh Debian machine this installs what is missing,
# builds the library and its command-line tool rvtool, and turns the sample
# sign into a plot job and a picture of that job, both under out/.
set -euo pipefail
cd "$(dirname "$0")"
scripts/deps.sh

echo "== build"
generator=()
command -v ninja >/dev/null && generator=(-G Ninja)
# The same build folder and type as ./test.sh, so that neither undoes the other.
if [[ ! -f build/CMakeCache.txt ]]; then
  cmake -S . -B build "${generator[@]}" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
fi
cmake --build build --target rvtool --parallel "$(nproc)"
rvtool=build/bin/rvtool
mkdir -p out

echo "== the drawing"
"$rvtool" info samples/sign.plt

echo "== the job: media \"Vinyl\" of samples/sign-conditions.xml, cut inside out, starts at corners"
"$rvtool" plot samples/sign.plt -o out/sign.rvl \
  --conditions samples/sign-conditions.xml --machine TQ --media Vinyl \
  --sort --optimize-start

echo "== pictures of the job, read back from out/sign.rvl"
"$rvtool" render out/sign.rvl -o out/sign.png
"$rvtool" render out/sign.rvl -o out/sign.svg

echo
echo "Plot job:      $PWD/out/sign.rvl"
echo "Its picture:   $PWD/out/sign.png (and $PWD/out/sign.svg)"
