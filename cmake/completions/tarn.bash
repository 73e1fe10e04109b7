# Completion of tarn in bash. It offers what the help of the program itself lists, so it is always that program's.

# The entries of the help of the given program and command, one a line: section, name or names, type of the argument.
_tarn_entries() {
  command "$@" --help 2>/dev/null | awk '
    /^[A-Z][a-z]*:$/ { section = $1 }
    /^  [^ ]/ {
      entry = substr($0, 3)
      sub(/  .*/, "", entry)
      split(entry " -", part, " ")
      type = part[2] ~ /^[A-Z]+(:|$)|[|]/ && part[2] != "REQUIRED" ? part[2] : "-"
      sub(/:.*/, "", type)
      print section, part[1], type
    }'
}

_tarn() {
  local program=${COMP_WORDS[0]/#\~/$HOME} word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  if [[ $word == = ]]; then
    word=
  elif [[ $previous == = ]]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  local section names type words='' commands='' files='' wanted='' command i
  while read -r section names type; do
    if [[ $section == Subcommands: ]]; then
      commands+=" $names"
    fi
  done < <(_tarn_entries "$program")
  for ((i = 1; i < COMP_CWORD; i++)); do
    if [[ "$commands " == *" ${COMP_WORDS[i]} "* ]]; then
      command=${COMP_WORDS[i]}
      break
    fi
  done
  while read -r section names type; do
    if [[ $names == -* ]]; then
      words+=" ${names//,/ }"
      if [[ ",$names," == *",$previous,"* ]]; then
        wanted=$type
      fi
    elif [[ $section == Positionals: && $names == FILE ]]; then
      files=yes
    fi
  done < <(_tarn_entries "$program"; [[ -z ${command-} ]] || _tarn_entries "$program" "$command")
  case $wanted in
    *'|'*) mapfile -t COMPREPLY < <(compgen -W "${wanted//|/ }" -- "$word") ;;
    DIR) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    FILE) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
    '' | -)
      if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
      elif [[ -z ${command-} ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$word")
      elif [[ -n $files ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
      fi
      ;;
  esac
}
complete -o filenames -F _tarn tarn
