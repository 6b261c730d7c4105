#!/usr/bin/env bash
# Side by side, whole processes on this machine:
#  1. `rvtool info` against `hp2xx -m hpgl` on a generated 10 MB HP-GL file
#     (17 000 PD lists of 51 points), timed with hyperfine;
#  2. `rvtool plot` with and without --sort on the two garment-nesting files
#     of ../shared/realdata, time (hyperfine) and peak memory (GNU time).
# Prints the figures and their ratios. Installs hyperfine, hp2xx and time
# when they are missing.
#
#   [CPU=1] [RUNS=5] bench/compare.sh [RVTOOL]     (default: build/bin/rvtool)
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
rvtool=${1:-$here/build/bin/rvtool}
realdata=${RV_REALDATA:-$here/../shared/realdata}
runs=${RUNS:-5}

need=()
command -v hyperfine >/dev/null || need+=(hyperfine)
command -v hp2xx >/dev/null || need+=(hp2xx)
[[ -x /usr/bin/time ]] || need+=(time)
if ((${#need[@]})); then
  sudo_cmd=()
  [[ $(id -u) -eq 0 ]] || sudo_cmd=(sudo)
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y --no-install-recommends "${need[@]}"
fi
[[ -x $rvtool ]] || { echo "no rvtool at $rvtool (build it first)" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Mean time in seconds of one command, by hyperfine: the wall time, or with
# CPU=1 (for a machine that others share) user plus system time.
mean() {
  hyperfine --style none --warmup 1 --runs "$runs" --export-csv "$work/t.csv" "$1" >/dev/null 2>&1 ||
    { echo "failed: $1" >&2; exit 1; }
  awk -F, -v cpu="${CPU:-0}" 'NR == 2 { print cpu == 1 ? $5 + $6 : $2 }' "$work/t.csv"
}
# Peak resident memory in MB of one command.
peak() {
  /usr/bin/time -f %M -o "$work/m.txt" bash -c "$1" >/dev/null 2>&1
  awk '{ printf "%.1f", $1 / 1024 }' "$work/m.txt"
}
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }

# The 10 MB file: a pen-up move, then 50 short pen-down moves, per line.
awk 'BEGIN {
  printf "IN;SP1;"; x = 1000; y = 1000; seed = 12345; size = 7
  for (line = 0; line < 17000; ++line) {
    s = sprintf("PU%d,%d;PD", x, y)
    for (i = 0; i < 50; ++i) {
      seed = (seed * 1103515245 + 12345) % 2147483648
      x = 1000 + (x + int(seed / 65536) % 41 - 20) % 30000
      y = 1000 + (y + int(seed / 256) % 41 - 20) % 20000
      s = s (i ? "," : "") x "," y
    }
    s = s ";\n"; printf "%s", s; size += length(s)
  }
}' >"$work/moves.plt"
bytes=$(stat -c %s "$work/moves.plt")
[[ ${CPU:-0} == 1 ]] && echo "Times are user plus system CPU seconds."
echo "Import of $(awk -v b="$bytes" 'BEGIN { printf "%.1f", b / 1048576 }') MB of short moves ($work/moves.plt):"
t_rv=$(mean "$rvtool info $work/moves.plt")
t_hp=$(mean "hp2xx -q -m hpgl -f $work/out.hpgl $work/moves.plt")
m_rv=$(peak "$rvtool info $work/moves.plt")
printf '  rvtool info   %8.3f s  %7s MB\n' "$t_rv" "$m_rv"
printf '  hp2xx -m hpgl %8.3f s\n' "$t_hp"
echo "  rvtool is $(ratio "$t_hp" "$t_rv") times faster than hp2xx (aim: 5)"
echo "  $(awk -v m="$m_rv" 'BEGIN { printf "%.0f", m * 1048576 / (17000 * 51) }') bytes of process per point (all of it)"

echo
echo "Plots of the nesting files (--sort against none; aims: 1.5 at most):"
printf '  %-40s %9s %9s %6s %9s %9s %6s\n' file plain sorted ratio "plain MB" "sorted MB" ratio
for f in straightcoding_B_Fabric_Nesting.plt straightcoding_S_Fabric_Nesting.plt; do
  in="$realdata/$f"
  [[ -f $in ]] || { echo "  $f: not found in $realdata"; continue; }
  plain="$rvtool plot -o $work/plain.rvl $in"
  sorted="$rvtool plot --sort -o $work/sorted.rvl $in"
  tp=$(mean "$plain")
  ts=$(mean "$sorted")
  mp=$(peak "$plain")
  ms=$(peak "$sorted")
  printf '  %-40s %8.3fs %8.3fs %6s %9s %9s %6s\n' "$f" "$tp" "$ts" "$(ratio "$ts" "$tp")" "$mp" "$ms" "$(ratio "$ms" "$mp")"
done
