#!/bin/sh
# Runs cppcheck over all sources. What it is told to pass over stands, with the reasons, in cmake/cppcheck-suppressions.
set -eu
cd "$(dirname "$0")"
. cmake/prepare.sh
install_packages build test cppcheck
cmake --preset dev >/dev/null
work=build/dev/cppcheck
mkdir -p "$work"

check() {
  cppcheck --library=googletest --enable=warning,performance,portability --suppressions-list=cmake/cppcheck-suppressions \
    --error-exitcode=1 --quiet "$@"
}

# The mapping's points are written with __VA_OPT__, which cppcheck 2.10 does not know: it gets what the compiler makes
# of them, lines kept.
for source in mapping/*/src/*.cpp; do
  g++ -std=c++20 -E -I "$(dirname "$source")/../include" "$source" -o "$work/$(basename "$source")"
done
check "$work"/*.cpp

# The rest as it is compiled. What it says of the mapping here it says for want of __VA_OPT__.
mkdir -p "$work/state"
check --project=build/dev/compile_commands.json --suppress='*:mapping/*' --cppcheck-build-dir="$work/state" -j "$(nproc)"
