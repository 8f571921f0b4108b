#!/usr/bin/env bash
# install_test.sh SOURCE_DIR BUILD_DIR LIBDIR CC CXX: an installed tree serves users and other projects' builds, also
# from another place than it was installed to.
set -euo pipefail
source_dir=$1 build_dir=$2
export CC=$4 CXX=$5
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
cmake --install "$build_dir" --prefix "$scratch/first" >log
mv first 'moved here'
prefix="$scratch/moved here" libdir="$scratch/moved here/$3"
if grep -rF -e "$scratch/first" -e "$build_dir" -e "$source_dir" "$libdir"/{cmake,pkgconfig}; then exit 1; fi
# Every header that declares an export is there.
diff <(cd "$source_dir/lib" && grep -rlw VOSTRAND_API --include='*.h' | sort) \
     <(cd "$prefix/include/vostrand" && grep -rlw VOSTRAND_API | sort)

mkdir bin designs
printf '#!/bin/sh\nexit 0\n' | tee bin/par >bin/sorv
chmod +x bin/*
export PATH=$scratch/bin:$PATH
cd designs
touch top_map.ncd top.prf
echo '-l 5 -i 15 -n 2 -t 1 -s 1 -c 1' >top.p2t
plans() { "$@" top | tee log | grep -F 'par -f top.p2t.tmp1 top_map.ncd top.dir/5_2.dir top.prf' >found || { cat log; exit 1; }; }

plans "$prefix/bin/vostrand" --dry-run
cp "$source_dir/examples/two_clock/two_clock.v" .  # The tool chain finds its own files.
! command -v yosys >/dev/null || "$prefix/bin/vostrand-synth" two_clock.v two_clock two_clock_map.ncd

export CXXFLAGS='-std=c++20 -Wall -Wextra -Werror' CFLAGS='-Wall -Wextra -Werror'
cmake -S "$source_dir/tests/install/consumer" -B ../built -G Ninja -DSOURCES="$source_dir" \
  -DCMAKE_PREFIX_PATH="$prefix" -DINCLUDE="$prefix/include/vostrand" >../log || { cat ../log; exit 1; }
cmake --build ../built
plans ../built/host
../built/profile
../built/all_headers

export PKG_CONFIG_PATH=$libdir/pkgconfig LD_LIBRARY_PATH=$libdir
flags=$(pkg-config --cflags --libs 'vostrand >= 0.1')
eval "$CXX $CXXFLAGS '$source_dir/examples/minimal_host.cpp' $flags -o ../host"
eval "$CC $CFLAGS '$source_dir/tests/profile/profile_file_test.c' $flags -o ../profile"
plans ../host
../profile
