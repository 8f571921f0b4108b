#!/usr/bin/env bash
# real_runs.sh BUILD_DIR RUNS: the demo's design through that many runs of the real tools on a throw-away cluster.
set -euo pipefail
here=$(realpath "$(dirname "$0")")
build=$(realpath "$1")
work=$(mktemp -d)
trap '"$here/throwaway_cluster.sh" stop "$work/cluster"; rm -rf "$work"' EXIT
mkdir "$work/design"
cp "$here"/../../examples/two_clock/two_clock.* "$work/design"
cd "$work/design"
sed -i "s/-n [0-9]*/-n $2/" two_clock.p2t
"$build/toolchain/vostrand-synth" two_clock.v two_clock two_clock_map.ncd >/dev/null
"$here/throwaway_cluster.sh" start "$work/cluster" 3 1 </dev/null >/dev/null 2>&1
export SLURM_CONF=$work/cluster/slurm.conf
time "$build/app/vostrand" --launcher slurm --toolchain "$build/toolchain" two_clock 2>"$work/progress" | tail -8
[ "$(grep -c finished "$work/progress")" = "$2" ]
[ -z "$(squeue -h)" ]
