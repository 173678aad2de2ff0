#!/bin/sh
# coverage_page.sh YMAP: does the coverage page of the shipped mapping render, filter and link? A headless Chromium runs
# it and prints the document that comes of it; views are chosen by the address, as a reader shares them.
set -u
ymap=$1
if ! command -v chromium >/dev/null; then
  echo "skipped: the program 'chromium' is not installed"
  exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
}

# dump VIEW: the document at that address, one element a line, in $work/dom
dump() {
  rm -rf "$work/profile"
  timeout 90 chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
    --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$work/profile" --window-size=1400,900 --dump-dom "file://$work/page.html#$1" \
    >"$work/raw" 2>"$work/errors" || fail "the browser fails at '#$1': $(tail -n 1 "$work/errors")"
  # What the script draws stands before the data.
  sed '/<script/,$d; s/<\(div\|path\|aside\|button\)/\n<\1/g' "$work/raw" >"$work/dom"
  grep -q 'role="treeitem"' "$work/dom" || fail "nothing is drawn at '#$1'"
}

# count PATTERN: elements of the last document that fit
count() {
  grep -c "$1" "$work/dom"
}

# shown TREE: the leaves that are not hidden, by a path that begins so
shown() {
  grep '^<div class="row leaf' "$work/dom" | grep "data-path=\"$1" | grep -vc ' hidden=""'
}

expect() {  # WHAT WANTED FOUND
  [ "$2" = "$3" ] || fail "$1: expected $2, found $3"
}

"$ymap" coverage --format html >"$work/page.html" || fail "the page is not written"
grep -qE '(src|href)="?(https?:)?//' "$work/page.html" && fail "the page needs something from elsewhere"

dump ""
expect "leaves of the high model" 23 "$(shown /interfaces)"
expect "leaves of operational data" 170 "$(shown /ethernet-interface)"
expect "leaves of native configuration" 16 "$(shown /interface-configurations)"
all_links=$(count '^<path')
expect "links" 20 "$all_links"
expect "links of the port speed" 1 \
  "$(count '^<path data-high="[^"]*/config/port-speed" data-native="[^"]*/ethernet/speed"')"

dump "filter=config/port-speed"
expect "leaves that fit the filter" 1 "$(shown /interfaces/interface/ethernet/config)"
expect "native leaves linked to them" 1 "$(shown /interface-configurations)"
expect "operational leaves, none linked" 0 "$(shown /ethernet-interface)"

dump "filter=no-such-leaf"
expect "leaves that fit nothing" 0 "$(($(shown /interfaces) + $(shown /ethernet-interface)))"
grep -q "No leaf fits the filter" "$work/dom" || fail "an empty view does not say so"

dump "state=refused-value"
expect "leaves with refused values" 1 "$(shown /interfaces/interface/ethernet/config/port-speed)"
expect "other settings" 0 "$(shown /interfaces/interface/ethernet/config/mac-address)"

dump "select=/interfaces/interface/ethernet/config/port-speed"
expect "links of the chosen leaf" 1 "$(count '^<path[^>]*class="[^"]*lit')"
grep -q 'aria-selected="true"' "$work/dom" || fail "the leaf is not chosen"
grep -q 'SPEED_2500MB' "$work/dom" || fail "the details do not tell the values"

[ "$failures" = 0 ]
