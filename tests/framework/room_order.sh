#!/bin/sh
# usage: room_order.sh ROOMS
# Fails when an object of a room uses what a room defines that it does not link, as a declaration typed by hand would
# let it. ROOMS has a line for each room: its name, the rooms that it links, separated by commas, and its objects.
set -eu
rooms=$1
while read -r name links objects; do
  echo "room $name $links"
  # Strong definitions only: an inline function is defined wherever it is used.
  nm --defined-only $objects | awk -v name="$name" 'NF == 3 && $2 ~ /^[TDBR]$/ { print "defines", name, $3 }'
  nm --undefined-only -A $objects | awk -v name="$name" '{ sub(/:.*/, "", $1); print "uses", name, $NF, $1 }'
done <"$rooms" | awk '
  $1 == "room" { links[$2] = $3; ++count }
  $1 == "defines" { room_of[$3] = $2 }
  $1 == "uses" { uses[++used] = $2 " " $3 " " $4 }
  # What a room links, directly or through others.
  function reaches(from, to,   names, i, n) {
    if (from == to) return 1
    n = split(links[from], names, ",")
    for (i = 1; i <= n; ++i) if (reaches(names[i], to)) return 1
    return 0
  }
  END {
    for (i = 1; i <= used; ++i) {
      split(uses[i], use, " ")
      to = room_of[use[2]]
      if (to == "" || to == use[1]) continue
      key = use[1] " " to
      if (!(key in known)) known[key] = reaches(use[1], to)
      ++between
      if (!known[key]) { print use[1] " uses " use[2] " of " to ", which it does not link: " use[3]; bad = 1 }
    }
    if (count < 10 || between < 100) { print "only " count " rooms and " between " uses were looked at"; bad = 1 }
    exit bad
  }'
