#!/bin/sh
# usage: fuzz/run.sh SECONDS [TARGET...]
#        fuzz/run.sh --short
# Builds the fuzzers below build/fuzz and runs the targets (default: all), one after the other, for SECONDS each. What
# they learn is kept in build/fuzz/corpus/TARGET and used again. The input of a finding is left in
# build/fuzz/findings; once it is understood and mended, it belongs to seeds/TARGET. With --short each target runs for
# a fixed number of executions, always the same ones, and keeps nothing.
#
# Run it in several terminals for several targets at once.
set -eu
cd "$(dirname "$0")/.."
. cmake/prepare.sh
install_packages build fuzz

# Executions of a target in a short run: about two seconds' worth.
executions() {
  case "$1" in
    path | chunks) echo 200 ;;
    manifest) echo 20000 ;;
    *) echo 3000 ;;
  esac
}

dictionary() {
  case "$1" in
    *_xml | device | formats | chunks) echo -dict=fuzz/dictionaries/xml.dict ;;
    *_json) echo -dict=fuzz/dictionaries/json.dict ;;
    plugin) ;;
    *) echo "-dict=fuzz/dictionaries/$1.dict" ;;
  esac
}

# run TARGET ARGUMENT...: with what all runs have in common.
run() {
  target=$1
  shift
  echo "== $target" >&2
  build/fuzz/bin/"fuzz_$target" $(dictionary "$target") -artifact_prefix="build/fuzz/findings/$target-" \
    -max_len=4096 -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 "$@"
}

if [ $# -eq 0 ]; then
  sed -n '2,3s/^# //p' "$0" >&2
  exit 2
fi
length=$1
shift
[ $# -gt 0 ] || set -- $(ls fuzz/seeds)

mkdir -p build/fuzz/findings
(flock 9; build fuzz) 9>build/fuzz/lock  # others may be started at the same time
for target in "$@"; do
  if [ "$length" = --short ]; then
    rm -rf build/fuzz/scratch
    mkdir -p build/fuzz/scratch
    run "$target" -seed=1 -runs="$(executions "$target")" build/fuzz/scratch "fuzz/seeds/$target" \
      2>build/fuzz/"$target.log" ||
      { cat build/fuzz/"$target.log" >&2; exit 1; }
  else
    mkdir -p build/fuzz/corpus/"$target"
    run "$target" -max_total_time="$length" build/fuzz/corpus/"$target" "fuzz/seeds/$target"
  fi
done
