#!/bin/sh
# Installs what is missing, builds and passes all tests: plain, then under AddressSanitizer and
# UndefinedBehaviorSanitizer; checks formatting and runs clang-tidy.
set -eu
cd "$(dirname "$0")"
. cmake/prepare.sh

# sources PATTERN...: the files with such names, built ones left out.
sources() {
  for pattern in "$@"; do
    find . -path ./build -prune -o -name "$pattern" -print
  done
}

echo "== format"
sources '*.cpp' '*.hpp' '*.h' | xargs clang-format-14 --dry-run --Werror

echo "== tests"
build dev
ctest --preset dev

echo "== tests under sanitizers"
build asan
ctest --preset asan

echo "== clang-tidy"
sources '*.cpp' | xargs -P "$(nproc)" -n 4 clang-tidy-14 -p build/dev --quiet
