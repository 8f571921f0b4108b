#!/usr/bin/env bash
# Fuzzes everything that takes input, each target for SECONDS (20): scripts/fuzz.sh [SECONDS [TARGET...]].
# What was found lies in build/fuzz/crashes, and fails the run; docs/fuzzing.md tells more.
set -euo pipefail
cd "$(dirname "$0")/.."

export seconds=${1:-20} out=$PWD/build/fuzz fuzz=$PWD/fuzz  # Targets leave the current folder.
shift $(($# > 0 ? 1 : 0))
cmake -G Ninja -S . -B "$out" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
  -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_FLAGS=-fsanitize=fuzzer-no-link \
  -DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link -DVOSTRAND_SANITIZERS=address,undefined \
  -DVOSTRAND_WARNINGS_AS_ERRORS=ON -DVOSTRAND_BUILD_TESTS=OFF -DVOSTRAND_BUILD_FUZZERS=ON >/dev/null
cmake --build "$out" --target "${@:-fuzzers}"
mkdir -p "$out/crashes" "$out/logs"

# In memory where that is possible: some targets write files, and a fuzzer does little else.
TMPDIR=$(mktemp -d -p "$([ -w /dev/shm ] && echo /dev/shm || echo "${TMPDIR:-/tmp}")" vostrand-fuzz-XXXXXX)
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT

run_target() {
  local log=$out/logs/$1.log found=$out/found/$1 dictionary=$fuzz/dictionaries/$1.dict verdict=ok
  mkdir -p "$found"  # What earlier runs learnt; the repository keeps the seeds alone.
  "$out/fuzz/targets/$1" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -dict="$dictionary" -artifact_prefix="$out/crashes/$1-" "$found" "$fuzz/corpus/$1" >"$log" 2>&1 || verdict=FAILED
  printf '%-18s %10s executions  %s\n' "$1" "$(sed -n 's/stat::number_of_executed_units: *//p' "$log")" $verdict
  [ $verdict = ok ] || { tail -n 30 "$log" >&2 && return 1; }
}
export -f run_target

[ $# -gt 0 ] || set -- fuzz/corpus/*
printf '%s\n' "${@##*/}" | xargs -P "$(nproc)" -I{} bash -c 'run_target {}'
