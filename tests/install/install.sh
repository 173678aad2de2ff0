#!/bin/sh
# usage: install.sh BUILD FOLDER
# Installs BUILD, moves the installation to FOLDER/prefix, and makes FOLDER/sky, which holds the plug-in of made-up
# models as its author has it before anything is generated.
set -eu
build=$1
folder=$2
tests=$(cd "$(dirname "$0")/.." && pwd)
rm -rf "$folder/prefix" "$folder/sky" "$folder/elsewhere"
cmake --install "$build" --prefix "$folder/elsewhere" >/dev/null
mv "$folder/elsewhere" "$folder/prefix"

golden=$tests/generator/data/golden
mkdir "$folder/sky" "$folder/sky/src" "$folder/sky/include"
cp -r "$golden/models" "$golden/yang" "$tests/install/sky/CMakeLists.txt" "$tests/host/sky/manifest.json" "$folder/sky"
cp "$golden/sky_by_hand.h" "$folder/sky/include"
cp "$tests/host/sky/sky_by_hand.cpp" "$folder/sky/src"
