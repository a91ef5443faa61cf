#!/usr/bin/env bash
# Builds the debug preset and runs the whole suite.
set -euo pipefail

readonly USAGE="Usage: scripts/test.sh [-h] [CTEST ARGUMENT...]

Installs what is missing, builds the debug preset and runs the tests, in parallel. Arguments go to ctest:

  scripts/test.sh -R PropertyList     only tests whose name matches
  scripts/test.sh --rerun-failed      only those that failed last time"

case "${1:-}" in
  -h | --help) echo "$USAGE"; exit 0 ;;
esac

cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh
cmake --preset debug
cmake --build --preset debug
exec ctest --preset debug --parallel "$(nproc)" "$@"
