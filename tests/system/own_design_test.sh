#!/usr/bin/env bash
# own_design_test.sh SOURCE_DIR: README's "Your own design", as typed, after the demo has built everything.
set -euo pipefail
cd "$1"

block() { awk -v wanted="$1" '/^```/ { inside = !inside; n += inside; next } inside && n == wanted' README.md; }

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
block 3 >"$folder/blinker.v"
block 4 >"$folder/blinker.prf"
block 5 >"$folder/blinker.p2t"
commands=$(block 6)
eval "$(head -n 1 <<<"$commands")"
cd "$folder"
bash -e <<<"$(tail -n +2 <<<"$commands")"
for result in blinker.ncd blinker.par blinker.twr blinker.csv; do test -s "$result"; done
