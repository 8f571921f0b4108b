#!/usr/bin/env bash
# Writes what the tests get now into tests/golden/, as the expected text from now on. Read `git diff tests/golden`
# before you commit it.
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset dev >/dev/null
cmake --build --preset dev
VOSTRAND_ACCEPT_GOLDEN=1 ctest --preset dev
git status --short tests/golden
