#!/usr/bin/env bash
# Installs what is missing, configures, builds and runs all tests. `scripts/test.sh PRESET` takes another preset than
# dev: release, clang, asan or tsan; what follows is for ctest.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-dev}
scripts/install-deps.sh
cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset" --parallel "$(nproc)" "${@:2}"
