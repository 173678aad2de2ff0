#!/bin/sh
# Installs what is missing, builds and passes all tests: plain, then under AddressSanitizer and
# UndefinedBehaviorSanitizer, and the one of what uses threads under ThreadSanitizer. Checks the formatting first, and lets the fuzzers run for a short while last.
set -eu
cd "$(dirname "$0")"
. cmake/prepare.sh

echo "== format"
sources '*.cpp' '*.hpp' '*.h' | xargs clang-format-14 --dry-run --Werror

echo "== tests"
build dev
ctest --preset dev

echo "== tests under sanitizers"
build asan
ctest --preset asan

echo "== threads"
build tsan
ctest --preset tsan

echo "== fuzzers, a short run"
fuzz/run.sh --short
