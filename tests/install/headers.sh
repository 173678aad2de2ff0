#!/bin/sh
# usage: headers.sh FOLDER
# Compiles each header of FOLDER alone, with CXX: an installed header includes only installed ones and the system's.
# Fails if one does not compile, or if there are none of the framework.
set -eu
cd "$1"
ls yfw/*.hpp >/dev/null
find . -name '*.h' -o -name '*.hpp' |
  xargs -P "$(nproc)" -I '{}' "${CXX:-c++}" -std=c++20 -fsyntax-only -I . -include '{}' -x c++ /dev/null
