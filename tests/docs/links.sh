#!/bin/sh
# usage: links.sh ROOT
# Prints each relative link of README.md, CHANGELOG.md and docs/*.md below ROOT that leads to no file, and each page that
# the README does not link; fails if there is one.
set -eu
cd "$1"

# The targets of FILE's links outside of code blocks, without their anchors.
links() {
  awk '/^```/ { code = !code } !code' "$1" | grep -o '](\([^)]*\))' | sed 's/^](//; s/)$//; s/#.*//' |
    grep -v -e '^[a-z]*:' -e '^$' || true
}

problems() {
  for page in README.md CHANGELOG.md docs/*.md; do
    for target in $(links "$page"); do
      [ -e "$(dirname "$page")/$target" ] || echo "$page: no file '$target'"
    done
  done
  for page in CHANGELOG.md docs/*; do
    links README.md | grep -qx "$page" || echo "README.md: no link to '$page'"
  done
}

problems | { ! grep .; }
