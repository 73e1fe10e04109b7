# Sourced by ./test.
# The share of lines and branches of the product that the tests run, folder by folder; fails below the goals.
# Branches that only an exception takes are not counted.
jobs=$(nproc)

quietly "configuring" cmake --preset coverage
quietly "building" cmake --build --preset coverage -j "$jobs"
find build/coverage -name '*.gcda' -delete
# The counters add symbols to the module, and cannot be written under a limit on the size of files or without memory.
GTEST_FILTER='-*.ExportsOnly*:Faults.AFileThatCannotBeWrittenWhole*:ShortMemory.*' ctest --preset coverage -j "$jobs" -E '^install$'

excluded=
grep -q avx512vl /proc/cpuinfo || excluded="$excluded|src/domain/kernels/avx512.cpp"
grep -q avx2 /proc/cpuinfo || excluded="$excluded|src/domain/kernels/avx2.cpp"
[ -z "$excluded" ] || echo "left out, for this machine lacks the instructions: $(echo "${excluded#|}" | tr '|' ' ')"
gcovr -r . --object-directory build/coverage -f src/ ${excluded:+-e "${excluded#|}"} --exclude-throw-branches \
  --exclude-unreachable-branches --exclude-branches-by-pattern '.*__builtin_cpu_supports.*' \
  --json build/coverage/all.json >/dev/null

# reach NAME LINES BRANCHES FILTER: the figures of the files, and whether they come up to these shares.
failed=0
reach() {
  figures=$(gcovr -r . -a build/coverage/all.json -f "$4" -s --fail-under-line "$2" --fail-under-branch "$3" 2>&1) &&
    verdict=ok || { verdict=BELOW; failed=1; }
  echo "$figures" | sed -n 's/^\(lines\|branches\): \([0-9.]*%\).*/\2/p' | xargs printf '%-12s lines %6s  branches %6s' "$1"
  echo "  (goal $2 %, $3 %)  $verdict"
  [ "$verdict" = ok ] || gcovr -r . -a build/coverage/all.json -f "$4" | grep -v '100%'
}
reach module 100 95 'src/(module|domain|io|narrowing)/'
for folder in numbers constraints framework tarn flatzinc; do
  reach "$folder" 90 80 "src/$folder/"
done
exit $failed
