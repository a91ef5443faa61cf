#!/usr/bin/env bash
# Makes the API reference from the headers that are installed.
set -euo pipefail

readonly USAGE="Usage: scripts/docs.sh [-h] [BUILD]

Writes the API reference to build/docs/html, from the public headers in BUILD, a build folder that is configured
(build/debug, which is configured when it is not there). Any warning of Doxygen's is an error."

case "${1:-}" in
  -h | --help) echo "$USAGE"; exit 0 ;;
  -*) echo "$USAGE" >&2; exit 2 ;;
esac

cd "$(dirname "${BASH_SOURCE[0]}")/.."
command -v doxygen >/dev/null || { echo "docs: there is no doxygen; scripts/setup.sh --ci installs it" >&2; exit 1; }
build=${1:-build/debug}
[ -d "$build/include/tavlo" ] || cmake --preset debug >/dev/null

TAVLO_DOCS_HEADERS=$(realpath "$build/include/tavlo")
TAVLO_DOCS_OUTPUT=$PWD/build/docs
TAVLO_DOCS_FILTER=$PWD/scripts/doxygen_filter.py
export TAVLO_DOCS_HEADERS TAVLO_DOCS_OUTPUT TAVLO_DOCS_FILTER
rm -rf "$TAVLO_DOCS_OUTPUT"
mkdir -p "$TAVLO_DOCS_OUTPUT"
doxygen docs/Doxyfile
echo "docs: $(find "$TAVLO_DOCS_OUTPUT/html" -name '*.html' | wc -l) pages, from $TAVLO_DOCS_OUTPUT/html/index.html on"
