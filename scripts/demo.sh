#!/usr/bin/env bash
# Builds the release preset and lets the program show itself, in a container of its own.
set -euo pipefail

readonly USAGE="Usage: scripts/demo.sh [-h]

Installs what is missing, builds the program and runs \"tavlo demo\" in a temporary container."

case "${1:-}" in
  "") ;;
  -h | --help) echo "$USAGE"; exit 0 ;;
  *) echo "$USAGE" >&2; exit 2 ;;
esac

cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh
cmake --preset release
cmake --build --preset release --target tavlo

container=$(mktemp -d)
trap 'rm -rf "$container"' EXIT
build/release/cli/tavlo demo --container "$container"
