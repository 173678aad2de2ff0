#!/bin/bash
# usage: completion.sh
# Prints the differences between the completed words and those of the help; nothing when there are none.
source host/completion/ymap.bash

# completed WORD...: the completions of the last word.
completed() {
  COMP_WORDS=(ymap "$@")
  COMP_CWORD=$#
  local before=ymap
  (($# > 1)) && before=${*: -2:1}
  _ymap ymap "${*: -1}" "$before"
  printf '%s\n' "${COMPREPLY[@]}"
}

# "completed WORD..." alone, for a transcript.
if (($# > 0)); then
  completed "$@"
  exit
fi

commands=$(ymap --help | awk '/^Subcommands:/ { on = 1; next } /^$/ { on = 0 } on { print $1 }')
diff <(echo "$commands") <(completed '') && count=$(wc -w <<<"$commands")
for command in $commands; do
  diff <(ymap "$command" --help | grep -oE '^  (-[a-z],)?--[a-z-]+' | sed 's/.*--/--/') <(completed "$command" --) ||
    echo "of $command"
done
echo "${count:-0} commands"
