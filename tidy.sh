#!/bin/sh
# Runs clang-tidy over all sources, or over those given. Takes about ten minutes on two cores.
set -eu
cd "$(dirname "$0")"
. cmake/prepare.sh
build dev

if [ $# -gt 0 ]; then
  printf '%s\n' "$@"
else
  sources '*.cpp' | grep -v '^./tests/generator/data/'
fi | xargs -P "$(nproc)" -n 4 clang-tidy-14 -p build/dev --quiet
