#!/usr/bin/env bash
# Every system call of a small sweep failing in turn, on disks of every size; the library loaded and unloaded 1,000
# times; every case on the throw-away cluster, N times in a row (default 3), the demo and 99 runs on it and the
# simulation of 10,000. Takes the folder of a dev build; some ten minutes more than the cluster alone.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${BUILD:-build/dev}
VOSTRAND_SOAK=1 "$build/tests/hardship_test" --gtest_brief=1
VOSTRAND_SOAK=1 "$build/tests/faults/faults_test" --gtest_brief=1
VOSTRAND_SOAK=1 "$build/tests/load_test" --gtest_brief=1
for _ in $(seq "${1:-3}"); do "$build/tests/cluster_test" --gtest_brief=1; done
tests/cluster/real_runs.sh "$build" 6
tests/cluster/real_runs.sh "$build" 99
for runs in 1000 3000 10000; do "$build/tests/simulation" $runs; done
