#!/bin/sh
# usage: plugin_binary.sh LIBRARY DATA SANITIZED
# Compares what a built plug-in needs with DATA/needed_names.txt (framework and C library), and checks what it may write
# and where its weak names lead. Which names it exports is compared by abi.sh.
set -eu
library=$1 data=$2 sanitized=$3
export LC_ALL=C

if [ "$sanitized" = 1 ]; then
  echo "skipped: the sanitizers' runtime is part of this library"
  exit 77
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
# expect TITLE EXPECTED-FILE ACTUAL-FILE
expect() {
  if ! diff "$2" "$3" >"$work/diff"; then
    echo "$1 (< expected, > found):"
    cat "$work/diff"
    failed=1
  fi
}

# Optimisation may save a call of the C library or choose a checked variant, never one of the framework.
nm -D --undefined-only "$library" | awk '{ sub(/@.*/, "", $2); print $2 }' | sort >"$work/undefined"
grep -E '^(_kel_|_lstrace|ret_nc_|strcmp_s|yfw_|ymap_)' "$data/needed_names.txt" >"$work/framework"
grep -Fx -f "$work/framework" "$work/undefined" >"$work/framework_found" || true
expect "names needed from the framework" "$work/framework" "$work/framework_found"
: >"$work/nothing"
# What a compiler calls of its own accord, to copy, fill or compare memory, is of the C library, too.
grep -vFx -f "$data/needed_names.txt" "$work/undefined" | grep -vE '^mem(cmp|cpy|move|set)$' >"$work/unknown" || true
expect "names needed from elsewhere" "$work/nothing" "$work/unknown"

echo "libc.so.6" >"$work/libc"
readelf -dW "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' >"$work/libraries"
expect "needed libraries" "$work/libc" "$work/libraries"

# Writable data: the slots, all of them, and nothing between them.
readelf -SW "$library" | sed 's/^ *\[ *\([0-9]*\)\]/\1/' |
  awk '$2 == ".data" || $2 == ".bss" || $2 == ".tdata" || $2 == ".tbss" { print $1, $6 }' >"$work/sections"
readelf -sW "$library" | awk 'NR == FNR { writable[$1]; next } /\.symtab/ { counting = 1 }
  counting && $4 == "OBJECT" && ($7 in writable) { print $8 }' "$work/sections" - >"$work/objects"
grep -v '^_ZZ.*ymap_slot_\|^ymap_slot_' "$work/objects" >"$work/not_slots" || true
expect "writable data" "$work/nothing" "$work/not_slots"
slots=$(wc -l <"$work/objects")
bytes=0
while read -r _ size; do
  bytes=$((bytes + 0x$size))
done <"$work/sections"
if [ "$slots" -eq 0 ] || [ "$bytes" -gt $((slots * 4 + 32)) ]; then
  echo "writable data: $bytes bytes for $slots slots of 4"
  failed=1
fi

# A weak plain name is another name of its body, where it has one.
nm -D --defined-only "$library" | awk '{ address[$3] = $1; kind[$3] = $2 }
  END { for (name in kind) if (kind[name] == "W" && ("__" name) in kind && address[name] != address["__" name]) print name }
' >"$work/strayed"
expect "weak names that are not their body" "$work/nothing" "$work/strayed"

# The other weak names are the no-op of their kind, in their model.
nm -D --defined-only "$library" | awk '{ address[$3] = $1; kind[$3] = $2 }
  END {
    for (name in kind) {
      if (kind[name] != "W" || ("__" name) in kind) continue
      noop = name
      sub(/_leaf_lvla_.*/, "_duck_map_leaf", noop)
      sub(/_list_lvla_.*/, "_duck_map_list", noop)
      sub(/_cont_lvla_.*/, "_duck_map_container", noop)
      if (address[name] != address[noop]) print name
    }
  }' >"$work/strayed"
expect "weak names that are not the no-op of their kind" "$work/nothing" "$work/strayed"

exit $failed
