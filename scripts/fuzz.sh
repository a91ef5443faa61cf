#!/usr/bin/env bash
# Builds the fuzz targets and lets them look for inputs that break a promise.
set -euo pipefail

readonly USAGE="Usage: scripts/fuzz.sh [-h] [--jobs N] MINUTES [TARGET...]
       scripts/fuzz.sh [-h] [--jobs N] --seconds SECONDS [TARGET...]

Installs what is missing, builds the fuzz preset and runs all targets, or those named, one after another or N at a
time, each for the time given. A target starts from its seeds and from what earlier runs kept in build/fuzz/new/TARGET, and keeps
there each new input that reaches new code. What it says goes to build/fuzz/TARGET.log.

An input that crashes, breaks a promise, takes 10 s or 512 MiB ends its target and is left in build/fuzz/found/TARGET;
the command that repeats it is printed, the other targets still run, and the exit status is 1.

Minutes begin with another seed each time; seconds, for a check before a merge, always with the same.

  scripts/fuzz.sh 5                     five minutes each
  scripts/fuzz.sh 60 settings session   an hour each for these two"

wrong() {
  printf 'fuzz: %s\n\n%s\n' "$1" "$USAGE" >&2
  exit 2
}

cd "$(dirname "${BASH_SOURCE[0]}")/.."
known=()
for dictionary in fuzz/*.dict; do known+=("$(basename "$dictionary" .dict)"); done

unit=60 what=MINUTES seed=0  # 0: any
jobs=1
if [ "${1:-}" = --jobs ]; then
  [[ ${2:-} =~ ^[1-9][0-9]?$ ]] || wrong "--jobs is \"${2:-}\"; give a whole number from 1 to 99"
  jobs=$2
  shift 2
fi
case "${1:-}" in
  -h | --help) printf '%s\n\nTargets: %s\n' "$USAGE" "${known[*]}"; exit 0 ;;
  --seconds) unit=1 what=SECONDS seed=20010101; shift ;;
esac
[ $# -gt 0 ] || wrong "give $what, the time for each target"
[[ $1 =~ ^[1-9][0-9]{0,5}$ ]] || wrong "$what is \"$1\"; give a whole number from 1 to 999999"
readonly TIME=$(($1 * unit))
shift
for target in "$@"; do
  [[ " ${known[*]} " == *" $target "* ]] || wrong "no target \"$target\"; there are: ${known[*]}"
done
[ $# -gt 0 ] || set -- "${known[@]}"

scripts/setup.sh --ci
cmake --preset fuzz
cmake --build --preset fuzz --target "${@/#/tavlo_fuzz_}"

# Files that the targets write need not reach a disk.
shared=/dev/shm
[ -d "$shared" ] && [ -w "$shared" ] || shared=${TMPDIR:-/tmp}
TMPDIR=$(mktemp -d -p "$shared")
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT

# The last number of its kind in a target's log.
last() { # LOG PATTERN
  grep -o "$2[0-9]*" "$1" | tail -n 1 | grep -o '[0-9]*$' || echo 0
}

fuzz() { # TARGET
  local target=$1 log=build/fuzz/$1.log found=build/fuzz/found/$1 program=build/fuzz/fuzz/tavlo_fuzz_$1 input
  local folders=("build/fuzz/new/$target" "fuzz/corpus/$target")
  case "$target" in
    *archive* | property_list | settings) folders+=(tests/fixtures/archives) ;;
  esac
  [ ! -d "tests/fixtures/found/$target" ] || folders+=("tests/fixtures/found/$target")
  mkdir -p "${folders[0]}" "$found"
  echo "fuzz: $target for $TIME s"
  if ! "$program" "-max_total_time=$TIME" "-seed=$seed" -max_len=4096 -timeout=10 -rss_limit_mb=512 -print_final_stats=1 \
    "-artifact_prefix=$found/" "-dict=fuzz/$target.dict" "${folders[@]}" > "$log" 2>&1; then
    input=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
    if [ -z "$input" ]; then
      echo "fuzz: $target ended before it had an input; $log says why" >&2
    else
      printf 'fuzz: %s broke on %s (%s says how). Once more:\n  %s %s\n' "$target" "$input" "$log" "$program" "$input" >&2
      echo "  Mend it, and keep the input in tests/fixtures/found/$target." >&2
    fi
    return 1
  fi
  echo "fuzz: $target held: $(last "$log" number_of_executed_units:\ *) inputs, $(last "$log" new_units_added:\ *) kept," \
    "$(last "$log" cov:\ ) edges, $(last "$log" ft:\ ) features"
}

status=0
running=0
for target in "$@"; do
  if [ "$running" -ge "$jobs" ]; then
    wait -n || status=1
  else
    running=$((running + 1))
  fi
  fuzz "$target" &
done
for ((; running > 0; running--)); do wait -n || status=1; done
exit $status
