#!/usr/bin/env bash
# Races the operations against other libraries and prints the table.
set -euo pipefail

readonly USAGE="Usage: scripts/bench.sh [-h] [--only TEXT] [--repetitions N] [--document FILE]

Installs what is missing, builds the release preset (-O3, no machine flags), runs ours and the peers interleaved, each
peer's answer compared with ours first, and prints one table; below it the bytes of the rooms, the start of a process
and the shared objects that it loads. Results go to build/bench/results.json and results.md. The status is 1 when a
bar is missed.

  --only TEXT        only operations whose name has TEXT in it; what stands below the table is called footprint
  --repetitions N    instead of 9
  --document FILE    also puts the table between the markers in FILE (docs/performance.md)"

usage() {
  echo "$USAGE" >&2
  exit 2
}

arguments=("$@")
while [ $# -gt 0 ]; do
  case "$1" in
    -h | --help) echo "$USAGE"; exit 0 ;;
    --repetitions) [[ "${2:-}" =~ ^[1-9][0-9]*$ ]] || usage ;;
    --only | --document) [ $# -gt 1 ] || usage ;;
    *) usage ;;
  esac
  shift 2
done

cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh --bench
cmake --preset release
cmake --build --preset release --target tavlo_bench tavlo_footprint
exec /usr/bin/python3 -B bench/table.py build/release/bench/tavlo_bench --results build/bench \
  --footprint build/release/bench/footprint "${arguments[@]}"
