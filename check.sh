#!/bin/sh
# usage: ./check.sh [--all]
# Installs what is missing, builds what would be installed and runs the tests on it. With --all it runs instead what a
# change must pass: the formatting, the tests with all warnings as errors and the page of `ymap coverage --format html` in
# a browser, the tests under AddressSanitizer and UndefinedBehaviorSanitizer, those of threads under ThreadSanitizer,
# and a short run of the fuzzers.
set -eu
cd "$(dirname "$0")"
. cmake/prepare.sh

# check PRESET: builds it and runs its tests.
check() {
  build "$1"
  echo "== test: preset $1"
  ctest --preset "$1"
}

case "$*" in
  '')
    install_packages build test
    check check
    ;;
  --all)
    install_packages build test format browser fuzz
    echo "== format"
    if command -v clang-format-14 >/dev/null; then
      sources '*.cpp' '*.hpp' '*.h' | xargs clang-format-14 --dry-run --Werror
    else
      echo "skipped: this system does not have clang-format-14"
    fi
    check dev
    check asan
    check tsan
    fuzz/run.sh --short
    ;;
  *)
    sed -n '2s/^# //p' "$0" >&2
    exit 2
    ;;
esac
