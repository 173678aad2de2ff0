#!/bin/sh
# usage: ./check.sh [--all]
# Installs what is missing, builds the preset `dev` and runs all tests. With --all also what a change must pass: the
# formatting, the page of `ymap coverage --format html` in a browser, the tests under AddressSanitizer and
# UndefinedBehaviorSanitizer, those of threads under ThreadSanitizer, and a short run of the fuzzers.
set -eu
cd "$(dirname "$0")"
. cmake/prepare.sh

case "$*" in
  '') is_all=false ;;
  --all) is_all=true ;;
  *)
    sed -n '2s/^# //p' "$0" >&2
    exit 2
    ;;
esac

install_packages build test
if $is_all; then
  install_packages format browser fuzz
  echo "== format"
  if command -v clang-format-14 >/dev/null; then
    sources '*.cpp' '*.hpp' '*.h' | xargs clang-format-14 --dry-run --Werror
  else
    echo "skipped: this system does not have clang-format-14"
  fi
fi

build dev
echo "== test"
ctest --preset dev
$is_all || exit 0

build asan
echo "== test under AddressSanitizer and UndefinedBehaviorSanitizer"
ctest --preset asan

build tsan
echo "== test under ThreadSanitizer"
ctest --preset tsan

fuzz/run.sh --short
