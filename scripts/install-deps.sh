#!/usr/bin/env bash
# Installs the Debian packages that building and testing need; with --tools only those that running a design needs.
# Run as often as you like: what is there is left alone.
set -euo pipefail

packages=(
  g++ cmake ninja-build                # build
  qt6-base-dev                         # Qt 6 Core
  libcli11-dev                         # the program's options
  nextpnr-generic opensta yosys        # the engines behind par and sorv
)
[ "${1:-}" = --tools ] || packages+=(
  clang                                # the other compiler
  libgtest-dev                         # tests
  locales                              # tests in other locales
  procps                               # tests that end processes
  clang-format clang-tidy              # style and checks
)

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "Installing: ${missing[*]}"
sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
