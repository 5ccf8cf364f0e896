#!/usr/bin/env bash
# Installs what is missing, builds the trees with warnings as errors and runs
# every test: the portable ones natively (with ASan and UBSan), the fuzz
# targets for a bounded time, then the Win32 ones under Wine in a throwaway
# prefix with a display of their own.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
scripts/setup.sh
jobs=$(nproc)

cmake --preset native -DCORVANE_WERROR=ON
cmake --build --preset native -j"$jobs"
ctest --preset native -j"$jobs"

cmake --preset fuzz -DCORVANE_WERROR=ON
cmake --build --preset fuzz -j"$jobs"
ctest --preset fuzz -j"$jobs"

cmake --preset windows -DCORVANE_WERROR=ON
cmake --build --preset windows -j"$jobs"
ctest --preset windows -j"$jobs"
echo "All tests passed."
