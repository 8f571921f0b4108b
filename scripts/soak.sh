#!/usr/bin/env bash
# Every case on the throw-away cluster, N times in a row (default 3), then the demo and 99 runs on it and the simulation
# of 10,000. Takes the folder of a dev build; some minutes.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${BUILD:-build/dev}
for _ in $(seq "${1:-3}"); do "$build/tests/cluster_test" --gtest_brief=1; done
tests/cluster/real_runs.sh "$build" 6
tests/cluster/real_runs.sh "$build" 99
for runs in 1000 3000 10000; do "$build/tests/simulation" $runs; done
