#!/bin/sh
# Every model of this directory through MiniZinc and the program: `% passes on:` names the constraints that the library
# hands over as they are, `% solutions:` how many solutions there are. Usage: run.sh DIRECTORY, that of tarn.msc.
# Ends with 77 where MiniZinc is not installed.
set -u
command -v minizinc > /dev/null || exit 77
models=$(dirname "$0")
solver=$1/tarn.msc
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

fail() {
  echo "$@"
  failed=1
}

MZN_SOLVER_PATH=$1 minizinc --solvers 2>&1 | grep -q '^ *Tarn ' || fail "minizinc --solvers does not list Tarn"
for model in "$models"/*.mzn; do
  name=$(basename "$model" .mzn)
  minizinc -c --solver "$solver" "$model" --fzn "$work/$name.fzn" --ozn "$work/$name.ozn" ||
    { fail "$name: not compiled"; continue; }
  for constraint in $(sed -n 's/^% passes on: //p' "$model"); do
    grep -q "^constraint $constraint(" "$work/$name.fzn" || fail "$name: $constraint is not passed on"
  done
  expected=$(sed -n 's/^% solutions: //p' "$model")
  found=$(minizinc --solver "$solver" -a "$model" | grep -c '^----------$')
  [ "$found" = "$expected" ] || fail "$name: $found solutions in place of $expected"
done
printf 'var 0.0..3.0: x;\nconstraint x * x > 2.0;\nsolve satisfy;\n' > "$work/float.mzn"
minizinc -c --solver "$solver" "$work/float.mzn" 2>&1 | grep -q 'does not support float' ||
  fail "float variables are not refused"
exit $failed
