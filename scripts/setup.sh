#!/usr/bin/env bash
# Installs what Corvane's build and tests need on Debian 12, and nothing that
# is already there. Safe to run again.
set -euo pipefail
packages=(
  cmake g++ make libgtest-dev googletest    # the native build and its tests
  nlohmann-json3-dev                         # the JSON parser, header-only, behind foundations/json
  clang libclang-rt-14-dev                   # the fuzz build: libFuzzer comes with clang's runtime
  g++-mingw-w64-x86-64 binutils-mingw-w64-x86-64  # the Windows build
  wine wine64                                # running it
  fonts-wine                                 # Wine's Marlett, Tahoma and MS Sans Serif (a recommends, so named)
  xvfb xauth imagemagick xdotool             # a display, screenshots and clicks
  locales                                    # the Russian locale below
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  $sudo apt-get update -q
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
fi
# Wine takes a process's ANSI code page from its Unix locale, and a test runs
# the program in Russian (code page 1251); a fresh system has generated none.
locale -a 2>/dev/null | grep -qix 'ru_RU.utf8' || $sudo localedef -i ru_RU -f UTF-8 ru_RU.UTF-8
