#!/usr/bin/env bash
# Installs the Debian 12 packages that the build, the tests and, when asked, benchmarks and continuous integration need.
set -euo pipefail

readonly USAGE="Usage: scripts/setup.sh [--bench] [--ci] [-h]

Installs the Debian packages that are missing. With all of them there it needs neither network nor rights.

  --bench  also the libraries and programs that the benchmarks race against
  --ci     also what .ci/run needs: clang, its sanitizers, clang-format, clang-tidy, compilers for other processors
           and an emulator, Objective-C and GNUstep Base, abidiff, gcovr, Doxygen
  -h       this text"

# What the product is made of; scripts/sbom.py reads it here.
readonly LIBRARIES=(libcli11-dev nlohmann-json3-dev libsqlite3-dev libcurl4-openssl-dev libglib2.0-dev libgeoclue-2-dev
  libgeocode-glib-dev libpng-dev)
packages=(
  g++ cmake ninja-build pkg-config "${LIBRARIES[@]}"
  libgtest-dev libgmock-dev libbenchmark-dev python3 openssl strace shellcheck locales libjansson-dev  # the tests
  dbus geoclue-2.0 xdg-desktop-portal python3-dbus python3-gi
)
readonly BENCH_PACKAGES=(libboost-url1.81-dev libfmt-dev libgcrypt20-dev libplist-dev libssl-dev nettle-dev nginx-light curl)
readonly CI_PACKAGES=(clang libclang-rt-14-dev clang-format-14 clang-tidy-14 gcovr
  gobjc++ libgnustep-base-dev  # the Objective-C face
  doxygen                      # the API reference
  abigail-tools                # the ABI of the C face
  g++-i686-linux-gnu g++-aarch64-linux-gnu g++-s390x-linux-gnu qemu-user googletest  # other processors
  dpkg-dev man-db zsh fish                                                           # packages, manual, completions
)

readonly BENCH_SERVICE=nginx-light  # the benchmarks start it themselves
readonly POLICY=${POLICY_FILE:-/usr/sbin/policy-rc.d}

fail() {
  echo "setup: $1" >&2
  exit 1
}

# Debian starts a service that it installs unless the policy, a program, ends with status 101. One that is there stays.
forbid_services() {
  [ ! -e "$POLICY" ] || return 0
  trap '"${as_root[@]}" rm -f "$POLICY"' EXIT
  # shellcheck disable=SC2016
  "${as_root[@]}" sh -c 'printf "#!/bin/sh\nexit 101\n" > "$1" && chmod 755 "$1"' sh "$POLICY" ||
    fail "could not forbid services in $POLICY"
}

for argument in "$@"; do
  case "$argument" in
    -h | --help) echo "$USAGE"; exit 0 ;;
    --bench) packages+=("${BENCH_PACKAGES[@]}") ;;
    --ci) packages+=("${CI_PACKAGES[@]}") ;;
    *) echo "$USAGE" >&2; exit 2 ;;
  esac
done

for tool in dpkg-query apt-get; do
  command -v "$tool" >/dev/null || fail "this is no Debian system; install by hand: ${packages[*]}"
done

missing=()
for package in "${packages[@]}"; do
  dpkg-query --show --showformat='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
    missing+=("$package")
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: all ${#packages[@]} packages are there"
  exit 0
fi

if [ "$(id -u)" -eq 0 ]; then
  as_root=(env)
elif command -v sudo >/dev/null; then
  as_root=(sudo env)
else
  fail "needs root or sudo to install: ${missing[*]}"
fi

echo "setup: installing ${missing[*]}"
"${as_root[@]}" DEBIAN_FRONTEND=noninteractive apt-get update --quiet --quiet ||
  fail "apt-get update failed; is there a network?"
case " ${missing[*]} " in *" $BENCH_SERVICE "*) forbid_services ;; esac
"${as_root[@]}" DEBIAN_FRONTEND=noninteractive apt-get install --yes --no-install-recommends "${missing[@]}" ||
  fail "could not install: ${missing[*]}"
case " ${missing[*]} " in *" $BENCH_SERVICE "*) "${as_root[@]}" update-rc.d nginx disable ;; esac
