#!/bin/sh
# Installs what is missing, builds the program and the plug-in, and runs a typical read, set and reply on the shipped examples.
set -eu
cd "$(dirname "$0")"
. cmake/prepare.sh
install_packages build
build release ymap
ymap=build/release/bin/ymap

show() {
  printf '\n$ cat %s\n' "$1"
  cat "$1"
}
run() {
  printf '\n$ ymap %s\n' "$*"
  "$ymap" "$@"
}

echo
echo "== A typical read: what the device is asked for"
show examples/get-counters.xml
run request --to paths examples/get-counters.xml
run request examples/get-counters.xml

echo
echo "== A typical set: what the device is asked to change"
show examples/set-speed.xml
run request --to paths examples/set-speed.xml
run request examples/set-speed.xml

echo
echo "== A typical reply: native data as OpenConfig"
show examples/reply.xml
run reply examples/reply.xml
run reply --to json --content nonconfig --entry GigabitEthernet0/0/0/1 examples/reply.xml
