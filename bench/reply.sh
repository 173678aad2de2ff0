#!/bin/sh
# Measures 'ymap reply' beside what one would otherwise take for the same counters: xsltproc with a stylesheet for XML,
# jq for JSON. First the results are compared, byte by byte. Then each line shows the best of several runs: wall time,
# time on processors, and the most memory that was resident.
# Usage: bench/reply.sh BUILD_DIR [RUNS]   (needs xsltproc, jq, taskset and GNU time)
set -eu

build=${1:?usage: bench/reply.sh BUILD_DIR [RUNS]}
runs=${2:-5}
here=$(dirname "$0")
ymap=$build/bin/ymap
data=$(mktemp -d)
trap 'rm -rf "$data"' EXIT

for count in 100 1000 10000 100000; do
  "$build/bin/make_reply" $count xml >"$data/$count.xml"
done
"$build/bin/make_reply" 10000 json >"$data/10000.json"

"$ymap" reply "$data/10000.xml" >"$data/ymap.out"
xsltproc "$here/openconfig.xsl" "$data/10000.xml" | cmp - "$data/ymap.out"
"$ymap" reply "$data/10000.json" >"$data/ymap.out"
jq -f "$here/openconfig.jq" "$data/10000.json" | cmp - "$data/ymap.out"
echo 'results are equal'

# measure WORDS COMMAND...: the best run by wall time.
measure() {
  what=$1
  shift
  run=0
  while [ $run -lt "$runs" ]; do
    /usr/bin/time -a -o "$data/times" -f '%e %U %S %M' "$@" >/dev/null
    run=$((run + 1))
  done
  sort -n "$data/times" | head -1 |
    awk -v what="$what" '{printf "%-44s %6.2f s wall %6.2f s processor %8.1f MiB\n", what, $1, $2 + $3, $4 / 1024}'
  rm "$data/times"
}

echo "XML, 10,000 interfaces, $(($(wc -c <"$data/10000.xml") / 1000000)) MB"
measure 'ymap reply, all processors' "$ymap" reply "$data/10000.xml"
measure 'ymap reply, one processor' taskset -c 0 "$ymap" reply "$data/10000.xml"
measure 'xsltproc' xsltproc "$here/openconfig.xsl" "$data/10000.xml"
echo "JSON, 10,000 interfaces, $(($(wc -c <"$data/10000.json") / 1000000)) MB"
measure 'ymap reply, all processors' "$ymap" reply "$data/10000.json"
measure 'ymap reply, one processor' taskset -c 0 "$ymap" reply "$data/10000.json"
measure 'jq' jq -f "$here/openconfig.jq" "$data/10000.json"
echo 'Growth, XML'
for count in 100 1000 10000 100000; do
  measure "ymap reply, $count interfaces" "$ymap" reply "$data/$count.xml"
done
measure 'ymap reply, 100000 interfaces from a pipe' sh -c "cat '$data/100000.xml' | '$ymap' reply -"
echo 'Start'
hundred_times() {
  what=$1
  shift
  measure "$what, 100 times" sh -c 'i=0; while [ $i -lt 100 ]; do "$@"; i=$((i + 1)); done' - "$@"
}
hundred_times 'ymap --version' "$ymap" --version
hundred_times 'ymap request of one leaf' "$ymap" request --operation edit "$here/../examples/set-mac.json"
