# Completion of tarn in bash. Commands, options and their words are those that the program's help tells, so they are
# always those of the installed program.

# _tarn_help PROGRAM [COMMAND]: the entries of its help, one a line: "option,option TYPE" or "command".
_tarn_help() {
  command "$@" --help 2>/dev/null | sed -n 's/^  \([^ ].*\)$/\1/p' | sed 's/  .*//'
}

_tarn() {
  local program=${COMP_WORDS[0]} word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local commands command='' i entry options type='' words=''
  commands=$(command "$program" --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/s/^  \([^ ]*\) .*/\1/p')
  for ((i = 1; i < COMP_CWORD; i++)); do
    if [[ -z $command && " "${commands//$'\n'/ }" " == *" ${COMP_WORDS[i]} "* ]]; then
      command=${COMP_WORDS[i]}
    fi
  done
  # What is on offer, and what the word before asks for.
  while read -r options entry; do
    [[ $options == -* ]] && words+=" ${options//,/ }"
    [[ ",$options," == *",$previous,"* ]] && type=${entry%%[ :]*}
  done < <(_tarn_help "$program"; [[ -z $command ]] || _tarn_help "$program" "$command")
  COMPREPLY=()
  case $type in
    *'|'*) mapfile -t COMPREPLY < <(compgen -W "${type//|/ }" -- "$word") ;;
    DIR) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    FILE) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
    '' | Excludes* | REQUIRED*)
      if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
      elif [[ -z $command ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$word")
      else
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
      fi
      ;;
  esac
}
complete -o filenames -F _tarn tarn
