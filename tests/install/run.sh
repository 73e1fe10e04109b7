#!/bin/sh
# Installs a build, moves it elsewhere, and uses everything that it promises: the program, the packages for CMake and
# pkg-config with the two examples that build on them, the manual page, the completions, the Debian package.
# Usage: run.sh SOURCE-DIRECTORY BUILD-DIRECTORY
set -eu
source=$1
build=$2
temporary=$(mktemp -d)
trap 'rm -rf "$temporary"' EXIT
cd "$temporary"
unset VOKTARN_MODULE_PATH LD_LIBRARY_PATH || true

fail() {
  echo "failed: $*" >&2
  exit 1
}
# expect TEXT COMMAND...: the command must succeed and print the text.
expect() {
  text=$1
  shift
  "$@" >output 2>&1 || { cat output >&2; fail "$*"; }
  case $(cat output) in
    *"$text"*) ;;
    *) cat output >&2; fail "$*: does not print: $text" ;;
  esac
}

echo "== installed, then moved"
cmake --install "$build" --prefix "$temporary/first" >log || { cat log; fail install; }
mkdir -p 'other place'
mv first 'other place/prefix'
prefix="$temporary/other place/prefix"
tarn=$prefix/bin/tarn
expect 'S = 9' "$tarn" solve "$source/examples/send-more-money.tarn"
expect 'module VokFenNumbers' "$tarn" modules
if command -v minizinc >/dev/null; then
  printf 'include "circuit.mzn"; array[1..3] of var 1..3: x; constraint circuit(x); solve satisfy;' >tour.mzn
  expect '----------' minizinc --solver "$prefix/share/minizinc/solvers/tarn.msc" tour.mzn
fi
if grep -rlF -e "$source" -e "$temporary/first" "$prefix" >found; then
  fail "names a directory of the build: $(cat found)"
fi

echo "== a module and a program built on it"
for example in module-even embedding; do
  cmake -S "$prefix/share/doc/tarn/examples/$example" -B "build-$example" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_PREFIX_PATH="$prefix" >log 2>&1 && cmake --build "build-$example" >>log 2>&1 || { cat log; fail "$example"; }
done
expect 'c = even {10}' "$tarn" solve -M build-module-even "$source/examples/module-even/even.tarn"
"$tarn" solve -a -M build-module-even "$source/examples/module-even/even.tarn" >output
[ "$(grep -c '^a = ' output)" = 4 ] || fail "the module's model has other solutions"
build-embedding/embedding >output || fail "the embedding program"
# The first line, what propagation leaves of squares, may become shorter one day, and the order of solutions another.
sed 1d output | LC_ALL=C sort | diff - /dev/fd/3 3<<'END' || fail "the embedding program's output"
a = 3, b = 4, c = 5
a = 5, b = 12, c = 13
a = 6, b = 8, c = 10
x = 1, y = 2
x = 1, y = 3
x = 2, y = 3
x = { 1, 2 }, y = { 2, 3 }
END

echo "== every header, with the flags of pkg-config"
if command -v pkg-config >/dev/null; then
  export PKG_CONFIG_PATH="$(dirname "$(find "$prefix" -name voktarn.pc)")"
  [ "$(pkg-config --modversion voktarn)" = "$("$tarn" --version | sed 's/tarn //')" ] || fail "the version of voktarn.pc"
  (cd "$prefix/include/voktarn" && find . -name '*.h') | sed 's/.*/#include "&"/' >headers.cpp
  cat headers.cpp - >program.cpp <<'END'
int main() { return tarn::Modules().TryOpen("VokFenEnumIntegers") == nullptr; }
END
  eval "g++ -std=c++20 program.cpp -o program $(pkg-config --cflags --libs voktarn)"
  LD_LIBRARY_PATH=$(dirname "$PKG_CONFIG_PATH") ./program || fail "a program linked by pkg-config"
fi

echo "== manual page and completions"
page=$prefix/share/man/man1/tarn.1.gz
if [ -e "$page" ] && command -v groff >/dev/null; then
  gunzip -c "$page" | groff -man -Tascii -P-cbou -ww >page.txt 2>warnings
  [ ! -s warnings ] || { cat warnings; fail "the manual page"; }
  for word in $("$tarn" --help | sed -n '/^Subcommands:/,$s/^  \([a-z-]*\) .*/\1/p') EXIT ENVIRONMENT; do
    grep -q "$word" page.txt || fail "the manual page lacks $word"
  done
fi
# complete WORD...: what bash offers in place of the last word.
complete() {
  PATH=$prefix/bin:$PATH bash -uc 'complete() { :; }; source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _tarn
    echo " ${COMPREPLY[*]} "' "$prefix/share/bash-completion/completions/tarn" "$@"
}
touch model.tarn
expect ' solve ' complete tarn ''
expect ' --node-limit ' complete tarn solve --n
expect ' first-fail ' complete tarn solve --var f
expect ' model.tarn ' complete tarn -M /tmp solve mo
if command -v zsh >/dev/null; then
  zsh -n "$prefix/share/zsh/site-functions/_tarn" || fail "the completions for zsh"
fi

echo "== Debian package"
if command -v dpkg-deb >/dev/null && command -v dpkg-shlibdeps >/dev/null && [ -e "$page" ]; then
  cpack -G DEB --config "$build/CPackConfig.cmake" -B deb >log 2>&1 || { cat log; fail cpack; }
  mkdir root
  dpkg-deb -x deb/tarn_*.deb root
  expect 'libc6' dpkg-deb -f deb/tarn_*.deb Depends
  # It holds what an installation holds, besides the place of zsh's completions.
  (cd "$prefix" && find . ! -type d | sed 's,/site-functions/,/vendor-completions/,' | sort) >installed
  (cd root/usr && find . ! -type d | sort) >packaged
  diff installed packaged || fail "the content of the package"
  expect 'S = 9' root/usr/bin/tarn solve "$source/examples/send-more-money.tarn"
fi
