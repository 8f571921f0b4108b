#!/usr/bin/env bash
# Runs clang-tidy, every finding an error, over the sources of a configured build (`scripts/tidy.sh PRESET`, dev by
# default).
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/${1:-dev}
mapfile -t sources < <(git ls-files --cached --others --exclude-standard 'lib/*.cpp' 'tests/*.cpp')
printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p "$build" --quiet
