#!/usr/bin/env bash
# Runs the page's tests: run.sh MAKE_RESULT SCREENSHOT_FOLDER. Installs the driver when the lock file is newer.
set -euo pipefail
cd "$(dirname "$0")"

if [ ! node_modules/.package-lock.json -nt package-lock.json ]; then
  npm ci --no-audit --no-fund --silent
  touch node_modules/.package-lock.json
fi
mkdir -p "$2"
MAKE_RESULT=$1 SCREENSHOTS=$2 node --test page.test.mjs
