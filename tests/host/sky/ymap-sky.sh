#!/bin/sh
# ymap COMMAND with the mapping of weather masts.
programs=$(dirname "$(command -v ymap)")
command=$1
shift
exec ymap "$command" --plugin "$programs/../lib/ymap/libymap_sky.so" --yang tests/generator/data/golden/yang "$@"
