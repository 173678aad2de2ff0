#!/bin/sh
# usage: headers.sh FOLDER
# Compiles each header of FOLDER alone, with CXX: an installed header includes only installed ones and the system's.
# Fails if one does not compile, or if there are none of the framework.
set -eu
cd "$1"
ls yfw/*.hpp >/dev/null
find . -name '*.h' -o -name '*.hpp' | sort | {
  status=0
  while read -r header; do
    "${CXX:-c++}" -std=c++20 -fsyntax-only -I . -include "$header" -x c++ /dev/null || status=1
  done
  exit $status
}
