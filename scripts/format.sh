#!/usr/bin/env bash
# Formats our sources; `scripts/format.sh --check` changes nothing and fails where it would.
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t sources < <(git ls-files --cached --others --exclude-standard '*.h' '*.c' '*.cpp')
if [ "${1:-}" = --check ]; then
  clang-format --dry-run -Werror "${sources[@]}"
else
  clang-format -i "${sources[@]}"
fi
