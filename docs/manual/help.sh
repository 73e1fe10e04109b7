#!/bin/sh
# Stands for the program $TARN before help2man: its help is followed by that of every command.
set -eu

# Of the entries "  -a,--all Excludes: -n   text" and "  FILE REQUIRED   text" keeps what a page shows.
tidy() {
  sed -E -e '/^  -/s/^(  -.),--/\1, --/' -e '/^  -/s/ (Excludes|Needs):( -[^ ]+)+//' -e '/^  -/s/( [A-Z]+):[A-Z ]*[A-Z]/\1/' \
    -e '/^  [^ ]/s/ REQUIRED//' -e '/^  -/s/ \.\.\. /  /'
}

if [ "$1" = --version ]; then
  exec "$TARN" --version
fi
help=$("$TARN" --help)
echo "$help" | sed -n '/^Usage:/,/^Subcommands:/p' | sed '$d' | tidy
echo '*Commands*'
echo "$help" | sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p' | while read -r command; do
  "$TARN" "$command" --help | tidy | awk '
    NR == 1 { about = $0; next }
    /^Usage: / { print "\n" substr($0, 8) ":\n " about "."; next }
    /^(Positionals|Options):$/ || /^  -h, --help / { next }
    { print }'
done
echo '*Exit status*'
echo "$help" | sed -n 's/^Exit codes: //p'
