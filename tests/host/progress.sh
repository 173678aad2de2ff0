#!/bin/sh
# What a replay that takes more than a second writes to standard error, a terminal and another file: the captures come
# out of pipes, late.
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
ymap record "$work/captures" -- request examples/set-speed.xml >"$work/log" 2>&1
mkfifo "$work/first" "$work/second"
cat >"$work/replay.sh" <<END
(sleep 2; cat "$work"/captures/* >"$work/first"; sleep 1; cat "$work"/captures/* >"$work/second") &
ymap replay "$work/first" "$work/second" >"$work/result"
END
echo "on a terminal:"
script -qec "sh $work/replay.sh" /dev/null </dev/null | cat -v
echo
echo "elsewhere:"
sh "$work/replay.sh" 2>&1
sed 's/.*: //' "$work/result"
