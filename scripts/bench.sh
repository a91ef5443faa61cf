#!/usr/bin/env bash
# Races the operations against other libraries and prints the table.
set -euo pipefail

readonly USAGE="Usage: scripts/bench.sh [-h] [ARGUMENT...]

Installs what is missing, builds the release preset (-O3, no machine flags), runs ours and the peers interleaved, each
peer's answer compared with ours first, and prints one table. Results go to build/bench/results.json and results.md.
Arguments:

  --only TEXT        only operations whose name has TEXT in it
  --repetitions N    instead of 9
  --document FILE    also puts the table between the markers in FILE (docs/performance.md)"

case "${1:-}" in
  -h | --help) echo "$USAGE"; exit 0 ;;
esac

cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh --bench
cmake --preset release
cmake --build --preset release --target tavlo_bench
exec /usr/bin/python3 -B bench/table.py build/release/bench/tavlo_bench --results build/bench "$@"
