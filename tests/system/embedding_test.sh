#!/usr/bin/env bash
# embedding_test.sh SOURCE_DIR MINIMAL_HOST: docs/embedding.md shows the example's file, which does what
# the page says.
set -euo pipefail
source_dir=$1
host=$2

diff "$source_dir/examples/minimal_host.cpp" <(awk '/^```cpp$/ { on = 1; next } /^```$/ { on = 0 } on' "$source_dir/docs/embedding.md")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
mkdir bin
printf '#!/bin/sh\nexit 0\n' >bin/par
cp bin/par bin/sorv
chmod +x bin/*
touch top_map.ncd top.prf
echo '-l 5 -i 15 -n 3 -t 1 -s 1 -c 1' >top.p2t
PATH=$scratch/bin:$PATH "$host" top >output

# The commands of the page's plan, each of which ends in two blanks.
diff <(grep -E '^(par|sorv) ' output) <(grep -E '^(par -f|sorv -o) ' "$source_dir/docs/embedding.md")
grep -q ' is the best\.$' top.csv
