#!/usr/bin/env bash
# check_exports.sh LIBRARY LIST: compares the names that the built library exports, as C++ spells them, with the
# checked-in list. With VOSTRAND_ACCEPT_GOLDEN set it writes the list instead.
set -euo pipefail

exported() { nm -D --defined-only "$1" | awk '{ print $3 }' | c++filt | sed 's/@@VOSTRAND_1$//' | LC_ALL=C sort -u; }

soname=$(objdump -p "$1" | awk '$1 == "SONAME" { print $2 }')
[ "$soname" = libvostrandlib.so.1 ] || { echo "soname is $soname"; exit 1; }

if [ -n "${VOSTRAND_ACCEPT_GOLDEN:-}" ]; then
  exported "$1" >"$2"
else
  diff "$2" <(exported "$1")
fi
