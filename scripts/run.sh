#!/usr/bin/env bash
# Installs what is missing, builds Corvane.exe and starts it under Wine.
#
#   scripts/run.sh               on a sample machine, in a prefix of its own
#                                (build/windows/wine/sample, made anew each run)
#   scripts/run.sh --empty       on a bare prefix of its own (build/windows/wine/app)
#   scripts/run.sh --prefix DIR  in an existing Wine prefix of yours; the program
#                                is copied to C:\Corvane in it, where its stores lie
#
# ~/.wine is never touched unless you name it. With a display it runs until
# you close it. Without one it runs under Xvfb, saves a screenshot of each
# pane, each browser tab, the startup pane's Other Places, the file detail
# dialog and the about box to out/, writes the full report to out/report.txt.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"

mode=sample
prefix=
while [ $# -gt 0 ]; do
  case "$1" in
    --empty) mode=empty ;;
    --prefix)
      mode=own
      prefix=${2:?scripts/run.sh: --prefix needs a folder}
      shift ;;
    -h|--help) sed -n '2,13p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    *) echo "scripts/run.sh: unknown argument $1 (see --help)" >&2; exit 2 ;;
  esac
  shift
done
if [ "$mode" = own ]; then
  [ -f "$prefix/system.reg" ] || { echo "scripts/run.sh: $prefix is not a Wine prefix (no system.reg)" >&2; exit 2; }
  prefix=$(cd "$prefix" && pwd)
fi

scripts/setup.sh
cmake --preset windows >/dev/null
targets=(Corvane CorvaneReport corvane_driver)
[ "$mode" = sample ] && targets+=(corvane_sample_machine)
cmake --build --preset windows -j"$(nproc)" --target "${targets[@]}"

. tools/wine-env
bench="$root/build/windows/wine"
built="$root/build/windows/src"
setup=()
case "$mode" in
  empty)
    export CORVANE_WINE_PREFIX="$bench/app"
    tools/wine-bench prefix "$bench" app >/dev/null
    exe="$built/Corvane.exe"
    report="$built/CorvaneReport.exe" ;;
  sample|own)
    if [ "$mode" = sample ]; then
      # Made anew each run: the sample's RunOnce values and services last
      # only until the prefix boots again.
      WINEPREFIX="$bench/sample" wineserver -k >/dev/null 2>&1 || true
      rm -rf "$bench/sample"
      tools/wine-bench prefix "$bench" sample >/dev/null
      export CORVANE_WINE_PREFIX="$bench/sample"
      setup=("$root/build/windows/tests/corvane_sample_machine.exe" 'C:\Corvane')
    else
      export CORVANE_WINE_PREFIX="$prefix"
    fi
    # The program with its help and reference lists in a folder of the
    # prefix, so the stores it keeps beside itself lie there too.
    app="$CORVANE_WINE_PREFIX/drive_c/Corvane"
    mkdir -p "$app"
    cp "$built/Corvane.exe" "$built/CorvaneReport.exe" "$built"/*.qdl "$app/"
    cp -r "$built/Help" "$app/"
    exe='C:\Corvane\Corvane.exe'
    report='C:\Corvane\CorvaneReport.exe' ;;
esac
export CORVANE_WINE_DIR="$bench" WINEPREFIX="$CORVANE_WINE_PREFIX"

if [ -n "${DISPLAY:-}" ]; then
  rm -f "$bench/display"
  if [ ${#setup[@]} -gt 0 ]; then
    # One server from the sample's set-up to the program's end: a new one
    # would boot the prefix and run the sample's RunOnce values.
    wineserver -p >/dev/null 2>&1 || true
    wine cmd /c exit >/dev/null 2>&1 || true
    wine "${setup[@]}"
    trap 'wineserver -k >/dev/null 2>&1 || true' EXIT
  fi
  wine "$exe"
  exit 0
fi
mkdir -p "$root/out"
CORVANE_REPORT="$report" tools/screenshots "$exe" "$root/build/windows/tools/driver/corvane_driver.exe" "$root/out" \
  "${setup[@]}"
