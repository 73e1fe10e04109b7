#!/bin/bash
# How long after its limit, or after a signal, does `tarn solve` end? Runs it on models that take minutes, with time
# limits and signals at random moments, and prints the largest overrun. It judges no time: machines differ.
#
#   tests/limits.sh [TARN [TRIES [SEED]]]
set -u
tarn=${1:-build/release/bin/tarn}
tries=${2:-50}
RANDOM=${3:-1}
models=$(mktemp -d)
trap 'rm -r "$models"' EXIT

# names PREFIX COUNT [FORMAT]: a list with commas between the names
names() { awk -v p="$1" -v n="$2" -v f="${3:-%s%d}" 'BEGIN { for (i = 0; i < n; ++i) printf (i ? ", " : "") f, p, i, i }'; }

{
  echo "$(names q 40) : enum int [1, 40];"
  echo "all different ($(names q 40)); all different ($(names q 40 '%s%d + %d')); all different ($(names q 40 '%s%d - %d'));"
} >"$models/queens"
{
  echo "$(names p 60) : enum int [1, 59];"
  awk 'BEGIN { for (i = 0; i < 60; ++i) for (j = 0; j < i; ++j) printf "p%d <> p%d;\n", i, j }'
} >"$models/pigeonhole"
{
  echo "$(names d 900) : enum int [1, 1000]; all different ($(names d 900));"
  awk 'BEGIN { for (i = 0; i < 890; i += 3) printf "d%d * d%d <> d%d;\n", i, i + 1, i + 2 }'
} >"$models/all-different"
{
  echo "$(names a 60) : enum int [1, 1000];"
  awk 'BEGIN { for (i = 0; i < 360; ++i) { a = i * 7 % 60; b = (i * 11 + 1) % 60; c = (i * 13 + 5) % 60;
    printf "a%d * a%d mod 997 <> a%d; a%d + a%d <> a%d * 2;\n", a, b, c, a, b, c } }'
} >"$models/products"
{
  echo "$(names v 20000) : enum int [1, 20];"
  awk 'BEGIN { for (i = 0; i < 19999; ++i) printf "v%d + v%d <> v%d; v%d <> v%d;\n", i, i + 1, i * 7 % 20000, i, i + 1 }'
} >"$models/20000-variables"
{
  echo "$(names v 200000) : enum int [1, 20];"
  awk 'BEGIN { for (i = 0; i < 199999; ++i) printf "v%d <> v%d;\n", i, i + 1 }'
} >"$models/200000-variables"
echo 'x, y : interval int [0, 2000000000]; x < y; y < x;' >"$models/slow-bounds"
{
  cat "$models/queens"
  echo 'maximize q0 * q39 + q1 * q38 + q20 * q21;'
} >"$models/objective"
{
  echo "$(names s 100000) : interval int [0, 9];"
  echo "$(names s 100000) = 0" | sed "s/, / + /g; s/ = 0/ = 450000;/"
} >"$models/long-sum"
kinds=("$models"/*)

now() { date +%s%3N; }
largest=0
for ((try = 0; try < tries; ++try)); do
  model=${kinds[try % ${#kinds[@]}]}
  delay=$((100 + RANDOM % 1900))
  how=$((RANDOM % 3))
  options=(solve "$model" -a -s)
  ((RANDOM % 2)) && options+=(--restart luby --var weighted)
  ((RANDOM % 2)) && options+=(--json)
  start=$(now)
  if ((how == 0)); then
    "$tarn" "${options[@]}" --time-limit ${delay}ms >/dev/null 2>&1
    code=$?
    from=$((start + delay))
  else
    "$tarn" "${options[@]}" >/dev/null 2>&1 &
    sleep "$((delay / 1000)).$(printf %03d $((delay % 1000)))"
    from=$(now)
    kill -"$([ $how = 1 ] && echo INT || echo TERM)" $!
    wait $!
    code=$?
  fi
  overrun=$(($(now) - from))
  printf '%-18s %-8s after %4d ms: exit %d, %d ms late\n' "$(basename "$model")" \
    "$([ $how = 0 ] && echo limit || echo signal)" "$delay" "$code" "$overrun"
  if ((code != 3)); then
    echo "expected exit code 3" >&2
    exit 1
  fi
  ((overrun > largest)) && largest=$overrun
done
echo "largest overrun in $tries tries: $largest ms"
