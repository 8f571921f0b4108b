#!/usr/bin/env bash
# Runs clang-tidy, every finding an error, over our sources.
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset clang >/dev/null  # Its compile commands are clang's own.
mapfile -t sources < <(git ls-files --cached --others --exclude-standard 'lib/*.cpp' 'app/*.cpp' 'toolchain/*.cpp')
printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p build/clang --quiet
