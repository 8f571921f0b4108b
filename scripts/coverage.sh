#!/usr/bin/env bash
# Lines and branches of lib/ and app/ that the tests take, by file: build/coverage/report.txt, and line by line in
# build/coverage/html. Runs every test but those in a browser; what is given is for ctest.
# What a process that a signal ends, or that leaves by _exit, went through does not count.
set -euo pipefail
cd "$(dirname "$0")/.."
source=$PWD build=$PWD/build/coverage

# The profile's name is built in: tests start programs in environments and folders of their own.
flags="-fprofile-instr-generate=$build/profiles/%4m.profraw -fcoverage-mapping"
cmake --preset dev -B "$build" -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags"
cmake --build "$build"
rm -rf "$build/profiles"
failed=0
# Without optimisation clang exports templates of the standard library that are named after our types.
ctest --test-dir "$build" --parallel "$(nproc)" --output-on-failure -LE browser -E '^exports$' "$@" || failed=1

llvm-profdata merge --failure-mode=all --sparse "$build"/profiles/*.profraw -o "$build/tests.profdata"
cd "$build"
objects=(lib/libvostrandlib.so)
for program in app/vostrand{,-view,-step} tests/{library,app}_tests \
    tests/{threads,client,load,job}_test tests/simulation; do
  objects+=(-object $program)
done
look() { llvm-cov "$1" "${objects[@]}" -instr-profile tests.profdata "${@:2}" "$source"/{lib,app}; }
look report -show-region-summary=0 >report.txt
look show -show-branches=count -format=html -output-dir html
sed -n '$p' report.txt
exit $failed
