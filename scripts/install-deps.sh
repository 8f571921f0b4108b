#!/usr/bin/env bash
# Installs the Debian packages that building and testing need; with --tools only those that running a design needs,
# with --bench the ones for the benchmarks too.
# Run as often as you like: what is there is left alone.
set -euo pipefail

packages=(
  g++ cmake ninja-build                # build
  qt6-base-dev                         # Qt 6 Core
  libcli11-dev                         # the program's options
  libboost-dev                         # the odds that more runs help
  nextpnr-generic opensta yosys        # the engines behind par and sorv
)
[ "${1:-}" = --tools ] || packages+=(
  clang                                # the other compiler
  libclang-rt-14-dev llvm              # its sanitizers and fuzzer, scripts/fuzz.sh
  libgtest-dev                         # tests
  locales                              # tests in other locales
  procps                               # tests that end processes
  strace                               # tests on machines that fail
  abigail-tools dpkg-dev file lintian pkg-config  # tests of what is installed, and of the package
  slurmctld slurmd slurm-client        # tests on a cluster of their own
  python3-jsonschema                   # tests of the schemas in docs/schemas
  clang-format clang-tidy              # style and checks
  chromium                             # tests of the report page
)
# Node.js of another origin brings npm along and would conflict with Debian's.
[ "${1:-}" = --tools ] || { command -v node && command -v npm; } >/dev/null || packages+=(nodejs npm)

[ "${1:-}" != --bench ] || packages+=(
  libbenchmark-dev                     # benchmarks
)

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "Installing: ${missing[*]}"
sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
