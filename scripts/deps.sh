#!/usr/bin/env bash
# Installs the Debian packages that the build needs, when they are missing.
set -euo pipefail

packages=(
  cmake g++ make ninja-build pkg-config binutils
  libgtest-dev libgmock-dev libbenchmark-dev
  libpugixml-dev libpolyclipping-dev
  libcairo2-dev libcli11-dev
  libfreetype-dev libfontconfig-dev fonts-ipafont-gothic
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
  echo "Installing: ${missing[*]}"
  sudo_cmd=()
  [[ $(id -u) -eq 0 ]] || sudo_cmd=(sudo)
  export DEBIAN_FRONTEND=noninteractive
  "${sudo_cmd[@]}" apt-get install -y --no-install-recommends "${missing[@]}" ||
    { "${sudo_cmd[@]}" apt-get update && "${sudo_cmd[@]}" apt-get install -y --no-install-recommends "${missing[@]}"; }
fi
