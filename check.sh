#!/bin/sh
# Installs what is missing, builds and passes all tests: plain, then under AddressSanitizer and
# UndefinedBehaviorSanitizer. Checks the formatting first.
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
