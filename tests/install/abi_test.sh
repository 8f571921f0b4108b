#!/usr/bin/env bash
# abi_test.sh LIBRARY HEADERS DUMP: no host that is already built breaks. Holds the library's interface, as its debug
# information has it, against the recorded one; what is only added is fine. VOSTRAND_ACCEPT_ABI=1 records it anew.
set -euo pipefail
[ -z "${VOSTRAND_ACCEPT_ABI:-}" ] ||  # Without what differs with folder and machine.
  abidw --headers-dir "$2" --drop-private-types --drop-undefined-syms --exported-interfaces-only --no-show-locs \
    --no-comp-dir-path --no-corpus-path --no-parameter-names --no-write-default-sizes --out-file "$3" "$1"
abidiff --no-added-syms "$3" "$1"
