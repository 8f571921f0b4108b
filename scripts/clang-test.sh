#!/usr/bin/env bash
# Builds with the other compiler, optimised, and runs all tests.
set -euo pipefail
cd "$(dirname "$0")/.."

CC=clang CXX=clang++ cmake --preset release -B build/clang
cmake --build build/clang
ctest --test-dir build/clang --output-on-failure --parallel "$(nproc)"
