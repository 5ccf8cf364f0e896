#!/usr/bin/env bash
# Installs what Corvane's build and tests need on Debian 12, and nothing that
# is already there. Safe to run again.
set -euo pipefail
packages=(
  cmake g++ make libgtest-dev googletest    # the native build and its tests
  clang libclang-rt-14-dev                   # the fuzz build: libFuzzer comes with clang's runtime
  g++-mingw-w64-x86-64 binutils-mingw-w64-x86-64  # the Windows build
  wine wine64                                # running it
  fonts-wine                                 # Wine's Marlett, Tahoma and MS Sans Serif (a recommends, so named)
  xvfb xauth imagemagick xdotool             # a display, screenshots and clicks
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo apt-get update -q
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
