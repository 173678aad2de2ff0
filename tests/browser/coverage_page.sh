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

# browse OPTION ADDRESS
browse() {
  rm -rf "$work/profile"
  timeout 90 chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
    --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$work/profile" --window-size=1400,900 "$1" "file://$work/$2" \
    2>"$work/errors" || fail "the browser fails at '$2': $(tail -n 1 "$work/errors")"
}

# dump VIEW [KEYS]: the document at that address, one element a line, in $work/dom. Keys are pressed where the first tree
# has its place in the tab order; what has the focus then stands in the body's attribute data-focus.
dump() {
  cat >"$work/keys" <<END
<script>
document.querySelector('#client [tabindex="0"]').focus();
for (const key of "${2:-}".split(" ").filter(word => word)) {
  document.activeElement.dispatchEvent(new KeyboardEvent("keydown", {key, bubbles: true, cancelable: true}));
}
document.body.dataset.focus = document.activeElement.dataset.path || document.activeElement.id;
</script>
END
  sed "/^<\/body>/{
    r $work/keys
    N
  }" "$work/page.html" >"$work/driven.html"
  browse --dump-dom "driven.html#$1" >"$work/raw"
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
expect "leaves of the client model" 23 "$(shown /interfaces)"
expect "leaves of operational data" 170 "$(shown /ethernet-interface)"
expect "leaves of native configuration" 16 "$(shown /interface-configurations)"
all_links=$(count '^<path')
expect "links" 20 "$all_links"
expect "links of the port speed" 1 \
  "$(count '^<path data-client="[^"]*/config/port-speed" data-native="[^"]*/ethernet/speed"')"

dump "filter=config/port-speed"
expect "leaves that fit the filter" 1 "$(shown /interfaces/interface/ethernet/config)"
expect "native leaves linked to them" 1 "$(shown /interface-configurations)"
expect "operational leaves, none linked" 0 "$(shown /ethernet-interface)"

dump "filter=no-such-leaf"
expect "leaves that fit nothing" 0 "$(($(shown /interfaces) + $(shown /ethernet-interface)))"
grep -q "No leaf matches the filter" "$work/dom" || fail "an empty view does not say so"

dump "state=partial"
expect "partially mapped leaves" 1 "$(shown /interfaces/interface/ethernet/config/port-speed)"
expect "other settings" 0 "$(shown /interfaces/interface/ethernet/config/mac-address)"

dump "select=/interfaces/interface/ethernet/config/port-speed"
expect "links of the chosen leaf" 1 "$(count '^<path[^>]*class="[^"]*lit')"
grep -q 'aria-selected="true"' "$work/dom" || fail "the leaf is not chosen"
grep -q 'SPEED_2500MB' "$work/dom" || fail "the details do not show the values"

dump "select=/interface-configurations/interface-configuration/ethernet/auto-negotiation"
grep -q 'no longer reports' "$work/dom" || fail "the details do not show effects on replies"

focus() {
  sed -n 's/.*<body[^>]* data-focus="\([^"]*\)".*/\1/p' "$work/raw"
}

port_speed=/interfaces/interface/ethernet/config/port-speed

dump "" "ArrowDown ArrowDown ArrowDown ArrowDown Enter"
expect "the focus after four steps down" /interfaces/interface/ethernet/config/mac-address "$(focus)"
expect "chosen leaves" 1 "$(count 'aria-selected="true"')"
grep -q '^<aside[^>]*hidden' "$work/raw" && fail "the details are hidden from the keyboard"
expect "places in the tab order, one a tree" 2 "$(count '^<div class="row.*tabindex="0"')"

dump "select=$port_speed" "End Home ArrowRight ArrowRight"
expect "the focus below an open branch" /interfaces/interface/ethernet "$(focus)"
dump "" "ArrowDown ArrowDown ArrowDown ArrowDown ArrowRight"
expect "the focus at the other end of a link" /interface-configurations/interface-configuration/mac-addr "$(focus)"
dump "" "ArrowLeft"
expect "leaves below a closed branch" 0 "$(count '^<div class="row leaf" .*data-path="/interfaces')"
dump "" "/"
expect "the focus after '/'" filter "$(focus)"
dump "select=$port_speed" "Escape"
expect "chosen leaves after Escape" 0 "$(count 'aria-selected="true"')"

browse "--print-to-pdf=$work/page.pdf" page.html >/dev/null
[ "$(grep -ac '/Type /Page$' "$work/page.pdf")" -ge 4 ] || fail "the whole of both trees is not printed"

[ "$failures" = 0 ]
