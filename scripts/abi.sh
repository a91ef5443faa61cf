#!/usr/bin/env bash
# Whether programs that were linked with the shared library of the C interface still run with the one built here.
set -euo pipefail

readonly USAGE="Usage: scripts/abi.sh [--renew] [LIBRARY]

Compares the binary interface of LIBRARY (build/debug/c/libtavlo.so) with the one that is kept in c/abi/libtavlo.abi:
functions, their types, the structs and their members. It prints each difference and ends with status 1 when there is
any. The library must have debug information.

  --renew  keeps the one of LIBRARY instead; what changed is then read in the commit
  -h       this text"
readonly KEPT=c/abi/libtavlo.abi

fail() {
  echo "abi: $1" >&2
  exit 2
}

wrong() {
  printf 'abi: %s\n%s\n' "$1" "$USAGE" >&2
  exit 2
}

renew=false
library=
for argument in "$@"; do
  case "$argument" in
    -h | --help) echo "$USAGE"; exit 0 ;;
    --renew) renew=true ;;
    -*) wrong "no option \"$argument\"" ;;
    "") wrong "the name of LIBRARY is empty" ;;
    *)
      [ -z "$library" ] || wrong "one LIBRARY only, not \"$argument\" as well"
      library=$(realpath -m -- "$argument")
      ;;
  esac
done
cd "$(dirname "${BASH_SOURCE[0]}")/.."
library=${library:-build/debug/c/libtavlo.so}
command -v abidw >/dev/null || fail "there is no abidw; scripts/setup.sh --ci installs it (Debian: abigail-tools)"
[ -f "$library" ] || fail "there is no $library; build it (cmake --build --preset debug --target tavlo_c)"
sections=$(readelf --sections --wide "$library" 2>/dev/null) || fail "$library is no library"
[[ $sections == *" .debug_info "* ]] || fail "$library has no debug information; build it with -g (the preset debug does)"

# Nothing in what is kept tells the folder or the libraries that it was built with.
now=$(mktemp)
trap 'rm -f "$now"' EXIT
abidw --exported-interfaces-only --headers-dir c --drop-private-types --drop-undefined-syms --no-elf-needed \
  --no-corpus-path --no-comp-dir-path --no-show-locs --no-parameter-names --type-id-style hash "$library" |
  sed "s|path='[^']*/c/|path='c/|" >"$now"

if $renew; then
  cp "$now" "$KEPT"
  echo "abi: $KEPT is that of $library"
  exit 0
fi
status=0
abidiff "$KEPT" "$now" || status=$?
[ $status -eq 0 ] || { echo "abi: $library differs; is it meant to, scripts/abi.sh --renew keeps it" >&2; exit 1; }
