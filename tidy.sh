#!/bin/sh
# Runs clang-tidy over all sources, or over those given. Takes some twenty minutes on two cores.
set -eu
cd "$(dirname "$0")"
. cmake/prepare.sh
install_packages build test tidy
tidy=$(command -v clang-tidy-14 || echo clang-tidy-19)
cmake --preset dev -B build/tidy -DYMAP_BENCH=ON >/dev/null  # nothing has to be built

if [ $# -gt 0 ]; then
  printf '%s\n' "$@"
else
  sources '*.cpp' | grep -v '^./tests/generator/data/'
fi | xargs -P "$(nproc)" -n 1 "$tidy" -p build/tidy --quiet
