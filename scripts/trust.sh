#!/usr/bin/env bash
# Shows that what docs/reliability.md promises holds: builds the tests of each promise and runs them at full figures.
set -euo pipefail

readonly USAGE="Usage: scripts/trust.sh [--seed N] [-h] [ITEM...]

Installs what is missing, builds the release and, for T10, the ThreadSanitizer presets, and runs the tests of all items
of the plan (T1 to T14), or of those named, at the plan's full figures. What the tests say goes to build/trust/ITEM-PRESET.log.

At the end there is a table: each item, the promises that it holds, whether it held, the command that repeats it, and
below it the figures that were reached. The exit status is 1 when an item did not hold or reached no figure.

  --seed N  the seed of random tests, a whole number below 2^63; without it another one each time
  -h        this text

  scripts/trust.sh                  everything, in about an hour
  scripts/trust.sh --seed 7 T6 T7   two items from one seed"

# Item, promises, presets, targets to build, and the tests by ctest's names. Figures are found by the item's label.
readonly TABLE='
T1  P1     release         tavlo_linux_tests,tavlo_kill_tests ^(.*/SettingsKillAt|TracedKill)[.]
T2  P1     release         tavlo_kill_tests              ^RandomKill[.]Loses
T3  P2     release         tavlo_linux_tests,tavlo_fault_tests,tavlo_database_fault_tests ^(.*/)?(Settings|Cache|Database)(Faults?|ShortWrite)[.]
T4  P2     release         tavlo_fault_tests             ^.*/DiskTrouble[.]
T5  P1     release         tavlo_linux_tests             ^.*/SettingsPowerLoss[.]
T6  P3,P4  release         tavlo_real_cache_tests,tavlo_kill_tests ^(CacheUnderThreads[.].*(Directory|Winner|Clearing)|Clearing[.]|RandomKill[.]LeavesNoHalf)
T7  P3     release         tavlo_real_cache_tests        ^CacheUnderThreads[.]Readers
T8  P5,P6  release         tavlo_download_tests          ^(BannerDownload|.*/ThreadedProcess[.])
T9  P7     release         tavlo_archive_tests,tavlo_value_tests,tavlo_amplifier_tests ^(.*/)?(KeyedArchive|PropertyList|Amplifier)
T10 P8     tsan,tsan-clang tavlo_all_operations_tests,tavlo_race ^(AllOperationsThread|ThreadSanitizer)[.]
T11 P9     release         tavlo_resources_tests,tavlo_location_tests ^(Resource|Location)SlotsThread[.]
T12 P10    release         tavlo_location_tests,tavlo_location_thread_tests ^(LateAnswers|OddAddresses|LocationUnderThreads)
T13 P11    release         tavlo_out_of_memory_tests     ^(.*/OutOfMemoryIn|(Banner|AtomicFile|WorkerQueue)OutOfMemory(Thread)?)[.]
T14 P12    release         tavlo_common_tests,tavlo_request_tests,tavlo_cli_test ^(FormatTest|IntValueOf|Md5Test|UrlGrammarTest|UrlEncodeTest|WireContractTest)'

wrong() {
  printf 'trust: %s\n\n%s\n' "$1" "$USAGE" >&2
  exit 2
}

declare -A promises presets targets tests
items=()
while read -r item promise preset target test; do
  [ -n "$item" ] || continue
  items+=("$item")
  promises[$item]=${promise//,/ } presets[$item]=${preset//,/ } targets[$item]=${target//,/ } tests[$item]=$test
done <<< "$TABLE"

seed=$((RANDOM * 32768 + RANDOM))
chosen=()
while [ $# -gt 0 ]; do
  case "$1" in
    -h | --help) printf '%s\n\nItems: %s\n' "$USAGE" "${items[*]}"; exit 0 ;;
    --seed)
      [ $# -gt 1 ] || wrong "give N, the seed, after --seed"
      [[ $2 =~ ^(0|[1-9][0-9]{0,17})$ ]] || wrong "the seed is \"$2\"; give a whole number below 2^63"
      seed=$2
      shift
      ;;
    -*) wrong "no option \"$1\"" ;;
    *)
      [[ -n $1 && -n ${tests[$1]:-} ]] || wrong "no item \"$1\"; there are: ${items[*]}"
      chosen+=("$1")
      ;;
  esac
  shift
done
[ ${#chosen[@]} -gt 0 ] || chosen=("${items[@]}")

cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh --ci
mkdir -p build/trust
export TAVLO_TEST_FULL=1 TAVLO_TEST_SEED=$seed

for preset in release tsan tsan-clang; do
  needed=()
  for item in "${chosen[@]}"; do
    # shellcheck disable=SC2206  # the words of it
    [[ " ${presets[$item]} " != *" $preset "* ]] || needed+=(${targets[$item]})
  done
  [ ${#needed[@]} -gt 0 ] || continue
  cmake --preset "$preset"
  cmake --build --preset "$preset" --target "${needed[@]}"
done

# What the item's tests told, one line for each wording: the numbers that they begin with are added up.
figures() { # ITEM LOG
  sed -n "s/^.*\[ FIGURE \] \($1\(\|[^0-9][^:]*\): .*\)/\1/p" "$2" | awk '
    { label = $0; sub(/: .*/, ": ", label); rest = substr($0, length(label) + 1)
      number = match(rest, /^[0-9]+ /) ? substr(rest, 1, RLENGTH - 1) : ""
      wording = label "\t" substr(rest, number == "" ? 1 : RLENGTH) }
    !(wording in sum) { order[++count] = wording }
    { sum[wording] = number == "" ? "" : sum[wording] + number }
    END { for (i = 1; i <= count; ++i) { split(order[i], part, "\t"); print part[1] sum[order[i]] part[2] } }'
}

status=0
summary=
for item in "${chosen[@]}"; do
  result=held start=$SECONDS reached=
  for preset in ${presets[$item]}; do
    log=build/trust/$item-$preset.log
    echo "trust: $item on $preset"
    ctest --preset "$preset" --verbose --tests-regex "${tests[$item]}" > "$log" 2>&1 || result=FAILED
    told=$(figures "$item" "$log")
    [ -n "$told" ] || result=FAILED told="no figure reached; $log says why"
    while read -r line; do reached+="     $line ($preset)"$'\n'; done <<< "$told"
  done
  [ $result = held ] || status=1
  summary+=$(printf '%-4s %-8s %-6s %5d s  scripts/trust.sh --seed %s %s' "$item" "${promises[$item]}" "$result" \
    $((SECONDS - start)) "$seed" "$item")$'\n'$reached
done
printf '\nitem promises result    time  once more\n%s' "$summary"
exit $status
