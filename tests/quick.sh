# Sourced by ./test.
# The tests of single rooms in the release build: NAME is a folder of tests, or one of fuzz/corpus as fuzz-NAME.
# Without one, or with an unknown one, the names are told.
jobs=$(nproc)
names=$(for room in tests/*/; do
  ! ls "$room"*_test.cpp >/dev/null 2>&1 || basename "$room"
done; ls fuzz/corpus | sed 's/^/fuzz-/')
programs=
pattern=
for name in "$@"; do
  if ! echo "$names" | grep -qx -e "$name"; then
    echo "error: no tests are called $name; the names: $(echo $names)" >&2
    exit 2
  fi
  case $name in
    fuzz-*) programs="$programs $name" ;;
    *) programs="$programs ${name}_tests" ;;
  esac
  pattern="$pattern${pattern:+|}$name"
done
if [ -z "$programs" ]; then
  echo "usage: test quick NAME...; the names: $(echo $names)" >&2
  exit 2
fi

quietly "configuring" cmake --preset release -DVOKTARN_TESTS=ON
# shellcheck disable=SC2086
quietly "building" cmake --build --preset release -j "$jobs" --target $programs
ctest --preset release -j "$jobs" -R "^($pattern)\$"
