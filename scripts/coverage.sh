#!/usr/bin/env bash
# Builds with coverage, runs the suite and holds what it reached against the bars.
set -euo pipefail

readonly USAGE="Usage: scripts/coverage.sh [-h]

Installs what is missing, builds the coverage preset from nothing, runs the tests and prints for each part of the tree
how many lines and branches they reached, and the bar; branches that only an exception takes are left out. Below a
bar, the files that lack most are named with their lines. build/coverage/report.json has it all, for each file. The
tests of the tree and its packages are left out: they run nothing of this build, and find the counters in it.

The status is 1 when a bar is missed, and that of the tests when one fails."

case "${1:-}" in
  "") ;;
  -h | --help) echo "$USAGE"; exit 0 ;;
  *) echo "$USAGE" >&2; exit 2 ;;
esac

cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh --ci
rm -rf build/coverage
mkdir -p build/coverage
cmake --preset coverage
cmake --build --preset coverage
ctest --preset coverage --parallel "$(nproc)" -E '^(Structure|Packaging)'

gcovr --root . --object-directory build/coverage -j "$(nproc)" --exclude-throw-branches \
  --exclude-unreachable-branches --json --exclude-directories '.*/tests' --exclude 'build/.*' \
  build/coverage > build/coverage/report.json
exec /usr/bin/python3 -B scripts/coverage.py build/coverage/report.json
