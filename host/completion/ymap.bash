# Completion of ymap for bash. Commands, options and their values are read from `ymap --help`, so that they
# are those of the installed program.

# The commands, one a line.
_ymap_commands() {
  "$1" --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\) .*/\1/p'
}

# The options of a command, `--to {json,xml} …`, one a line.
_ymap_options() {
  "$1" ${2:+"$2"} --help 2>/dev/null | sed -n 's/^  \(-[a-z],\)\{0,1\}\(--.*\)/\2/p'
}

_ymap() {
  local program=$1 word=$2 before=$3 command='' option i
  # `record DIR --` is followed by another command.
  for ((i = 1; i < COMP_CWORD; i++)); do
    case ${COMP_WORDS[i]} in
      --) command='' ;;
      -*) ;;
      *) command=${command:-${COMP_WORDS[i]}} ;;
    esac
  done
  COMPREPLY=()
  if [[ $before == --* && $before != -- ]]; then
    option=$(_ymap_options "$program" "$command" | grep -E -m 1 -- "^$before( |\$)")
    case $option in
      "$before {"*) mapfile -t COMPREPLY < <(compgen -W "$(sed 's/[^{]*{\([^}]*\)}.*/\1/; y/,/ /' <<<"$option")" -- "$word") && return ;;
      "$before DIR"*) mapfile -t COMPREPLY < <(compgen -d -- "$word") && return ;;
      "$before "[A-Z]*) mapfile -t COMPREPLY < <(compgen -f -- "$word") && return ;;
    esac
  fi
  if [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$(_ymap_options "$program" "$command" | sed 's/ .*//')" -- "$word")
  elif [[ -z $command ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$(_ymap_commands "$program")" -- "$word")
  else
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}

complete -o filenames -F _ymap ymap
