#!/usr/bin/env bash
# Installs what is missing, builds Corvane.exe and starts it under Wine in a
# prefix of its own (build/windows/wine/app; ~/.wine is never touched).
# With a display it runs until you close it. Without one it runs under Xvfb,
# saves a screenshot of each pane and of the about box to out/, writes the
# full report to out/report.txt, and exits.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
scripts/setup.sh
cmake --preset windows >/dev/null
cmake --build --preset windows -j"$(nproc)" --target Corvane CorvaneReport corvane_driver

bench="$root/build/windows/wine"
export CORVANE_WINE_DIR="$bench" CORVANE_WINE_PREFIX="$bench/app"
tools/wine-bench prefix "$bench" app >/dev/null
exe="$root/build/windows/src/Corvane.exe"

if [ -n "${DISPLAY:-}" ]; then
  rm -f "$bench/display"
  exec tools/wine-run "$exe"
fi
tools/screenshots "$exe" "$root/build/windows/tools/driver/corvane_driver.exe" "$root/out"
# And the full report, as the console twin writes it.
( . tools/wine-env; WINEPREFIX="$CORVANE_WINE_PREFIX" wine "$root/build/windows/src/CorvaneReport.exe" "Z:$root/out/report.txt" )
echo "saved $root/out/report.txt"
