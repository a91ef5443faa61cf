#!/usr/bin/env bash
# Checks what a release needs, and makes the archive of its sources.
set -euo pipefail

readonly USAGE="Usage: scripts/release.sh [--check] [--suite] [--output DIR] [-h]

Checks that the tree can be released as the version of project() in CMakeLists.txt, then makes the archive of the last
commit's sources, tavlo-VERSION.tar.gz, and prints its SHA-256. The same commit gives the same bytes, in any clone and
at any time. Tagging is left to you; the command is printed.

  --check        only checks, and makes nothing
  --suite        also runs the whole suite (scripts/test.sh)
  --output DIR   where the archive goes, build/release-archive when not given"

wrong() {
  printf 'release: %s\n%s\n' "$1" "$USAGE" >&2
  exit 2
}

only_check=no suite=no output=
while [ $# -gt 0 ]; do
  case "$1" in
    -h | --help) echo "$USAGE"; exit 0 ;;
    --check) only_check=yes ;;
    --suite) suite=yes ;;
    --output)
      [[ -n ${2:-} && $2 != -* ]] || wrong "give DIR, where the archive goes, after --output"
      output=$(realpath -m -- "$2")
      shift
      ;;
    -*) wrong "no option \"$1\"" ;;
    *) wrong "unexpected \"$1\"; the version is that of CMakeLists.txt" ;;
  esac
  shift
done
cd "$(dirname "${BASH_SOURCE[0]}")/.."

faults=0
fault() {
  echo "release: $1" >&2
  faults=$((faults + 1))
}
passed() { echo "release: $1"; }

version=$(sed -n 's/^project(Tavlo VERSION \([^ ]*\) .*/\1/p' CMakeLists.txt)
readonly NUMBER='(0|[1-9][0-9]*)'

check_version() {
  if [[ $version =~ ^$NUMBER\.$NUMBER\.$NUMBER$ ]]; then
    passed "the version is $version"
  else
    fault "CMakeLists.txt: the version is \"$version\"; give project() three numbers, MAJOR.MINOR.PATCH"
  fi
}

check_tree() {
  local changed
  if [ "$(git rev-parse --show-toplevel 2>/dev/null)" != "$(pwd -P)" ] || ! changed=$(git status --porcelain); then
    fault "$PWD is no clone of the repository; release from one"
  elif [ -n "$changed" ]; then
    fault "the tree is not clean; commit or remove: $(cut -c 4- <<< "$changed" | sed -n 1,5p | paste -sd ' ')"
  else
    passed "the tree is clean"
  fi
}

# A tag is a v and a version.
check_tags() {
  local last
  last=$(git tag --list 'v[0-9]*' --sort=-version:refname 2>/dev/null | sed -n 1p)
  if [ -z "$last" ]; then
    passed "there is no release before it"
  elif [ "$(printf '%s\n' "${last#v}" "$version" | sort -V | tail -n 1)" = "${last#v}" ]; then
    fault "CMakeLists.txt: the version $version is not after that of the last tag, $last; raise it"
  else
    passed "the release before it is $last"
  fi
}

check_changelog() {
  local heading wanted="## [$version] - YEAR-MONTH-DAY" date
  heading=$(grep -m 1 '^## ' CHANGELOG.md || true)
  date=${heading#"## [$version] - "}
  if ! [[ $heading == "## [$version] - "* && $date =~ ^[0-9]{4}-[0-9]{2}-[0-9]{2}$ ]]; then
    fault "CHANGELOG.md: the newest heading is \"$heading\"; make it \"$wanted\""
  elif ! date --date "$date" >/dev/null 2>&1; then
    fault "CHANGELOG.md: $date is no date; give the day of the release"
  elif ! sed -n "/^## \[$version\]/,/^## \[[^]]*\] - [0-9]/p" CHANGELOG.md | grep '^- ' >/dev/null; then
    fault "CHANGELOG.md: $version has no entry; say what changed"
  else
    passed "the changelog has it, of $date"
  fi
}

# What scripts measured and wrote down, which readers of a release look for.
check_pages() {
  local page missing=0
  for page in docs/performance.md docs/reliability.md docs/security.md docs/wire-contract.md; do
    [ "$(grep -c '^|' "$page" 2>/dev/null || true)" -gt 2 ] 2>/dev/null && continue
    fault "$page: there is no table; make it anew (CONTRIBUTING.md says how)"
    missing=1
  done
  [ $missing -ne 0 ] || passed "the pages have their tables"
}

make_archive() {
  local archive=${output:-$PWD/build/release-archive}/tavlo-$version.tar.gz
  mkdir -p "$(dirname "$archive")"
  # Times are the commit's, owners root's, and modes do not depend on who asks.
  git -c tar.umask=0022 -c core.autocrlf=false archive --format=tar --prefix="tavlo-$version/" HEAD |
    gzip -9 -n > "$archive.new"
  mv "$archive.new" "$archive"
  (cd "$(dirname "$archive")" && sha256sum "$(basename "$archive")" | tee "$(basename "$archive").sha256")
  passed "made $archive; when it is out: git tag -a v$version -m \"Release $version\""
}

check_version
check_tree
check_tags
check_changelog
check_pages
if [ $suite = yes ]; then
  if scripts/test.sh; then passed "the suite is green"; else fault "the suite is red; mend what failed above"; fi
fi
if [ $faults -gt 0 ]; then
  echo "release: not ready, $faults to mend" >&2
  exit 1
fi
[ $only_check = yes ] || make_archive
