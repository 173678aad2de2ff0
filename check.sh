#!/bin/sh
# Installs what is missing, builds and passes all tests: plain, then under AddressSanitizer and
# UndefinedBehaviorSanitizer; checks formatting and runs clang-tidy.
set -eu
cd "$(dirname "$0")"
. cmake/prepare.sh

echo "== format"
git ls-files '*.cpp' '*.hpp' '*.h' | xargs clang-format-14 --dry-run --Werror

echo "== tests"
build dev
ctest --preset dev

echo "== tests under sanitizers"
build asan
ctest --preset asan

echo "== clang-tidy"
git ls-files '*.cpp' | grep -v '^tests/.*/data/' | xargs -P "$(nproc)" -n 4 clang-tidy-14 -p build/dev --quiet
