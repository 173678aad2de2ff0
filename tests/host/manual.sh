#!/bin/sh
# Prints the warnings of the manual page, and the commands and options of the program that it does not describe.
groff -mandoc -ww -Tutf8 docs/ymap.1 2>&1 >/dev/null
page=docs/ymap.1
for command in $(ymap --help | awk '/^Subcommands:/ { on = 1; next } /^$/ { on = 0 } on { print $1 }'); do
  grep -q "^\.It Nm Cm $command " $page || echo "$command is missing"
  for option in $(ymap "$command" --help | grep -oE '^  (-[a-z],)?--[a-z-]+' | sed 's/.*--//'); do
    grep -qE "Fl -$option( |\$)" $page || echo "--$option of $command is missing"
  done
done
grep -oE '^\.It Nm Cm [a-z]+' $page | while read -r _ _ _ command; do
  ymap "$command" --help >/dev/null 2>&1 || echo "$command is in it, and not in the program"
done
