#!/usr/bin/env bash
# From a Verilog design to the chosen run: installs what is missing, builds, synthesises examples/two_clock, runs it
# through several place-and-route runs prints the ranking and writes a report page. `scripts/demo.sh 2` makes two runs.
set -euo pipefail
cd "$(dirname "$0")/.."

runs=${1:-6}
if ! [[ $runs =~ ^[1-9][0-9]?$ ]]; then
  echo "usage: scripts/demo.sh [RUNS, 1 to 99]" >&2
  exit 2
fi
scripts/install-deps.sh --tools
cmake --preset release -DVOSTRAND_BUILD_TESTS=OFF -B build/demo >/dev/null
cmake --build build/demo

work=build/demo/two_clock
mkdir -p "$work"
cp examples/two_clock/two_clock.* "$work"
sed -i "s/-n [0-9]*/-n $runs/" "$work/two_clock.p2t"

echo "Synthesising two_clock.v"
build/demo/toolchain/vostrand-synth "$work/two_clock.v" two_clock "$work/two_clock_map.ncd"

echo "Running $runs place-and-route runs"
build/demo/app/vostrand --toolchain build/demo/toolchain --chdir "$work" \
  --html "$work/two_clock.html" --json "$work/two_clock.json" two_clock
