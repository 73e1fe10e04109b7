# Shared by the start scripts: what they need from the system, and how they build. Sourced, POSIX sh.

# need_packages NAME...: installs the Debian packages that are missing, and says which.
need_packages() {
  missing=
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
  done
  [ -n "$missing" ] || return 0
  if ! command -v apt-get >/dev/null 2>&1; then
    echo "error: these packages are needed and this system has no apt-get to install them:$missing" >&2
    exit 2
  fi
  as_root=
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null 2>&1; then
      echo "error: these packages are missing and installing them needs root or sudo:$missing" >&2
      exit 2
    fi
    as_root=sudo
  fi
  echo "installing:$missing" >&2
  log=$(mktemp)
  # shellcheck disable=SC2086
  if ! { $as_root apt-get update && $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $missing; } >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    echo "error: the packages could not be installed:$missing" >&2
    exit 2
  fi
  rm -f "$log"
}

# quietly LABEL COMMAND...: runs the command; shows its output only when it fails.
quietly() {
  label=$1
  shift
  mkdir -p build
  log=$(mktemp build/log.XXXXXX)
  if ! "$@" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    echo "error: $label failed" >&2
    exit 2
  fi
  rm -f "$log"
}

product_packages="g++ cmake ninja-build libcli11-dev libedit-dev"
test_packages="$product_packages clang clang-format clang-tidy libclang-rt-14-dev libgtest-dev libgmock-dev
  graphviz help2man groff-base pkg-config dpkg-dev file"
