#!/usr/bin/env bash
# build.sh DIR [cmake options...]: configures (once) and builds into DIR.
set -euo pipefail
dir=$1
shift
root=$(cd "$(dirname "$0")/.." && pwd)
generator=()
command -v ninja >/dev/null && generator=(-G Ninja)
if [[ ! -f "$dir/CMakeCache.txt" ]]; then
  cmake -S "$root" -B "$dir" "${generator[@]}" "$@" >/dev/null
else
  cmake "$dir" "$@" >/dev/null
fi
cmake --build "$dir" --parallel "$(nproc)"
