#!/usr/bin/env bash
# package_test.sh BUILD_DIR: the Debian package is whole, works where it is unpacked, and leaves nothing when it goes.
set -euo pipefail
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

cpack --config "$1/CPackConfig.cmake" -B "$scratch/pack" >log 2>&1 || { cat log; exit 1; }
package=$(echo pack/vostrand_*.deb)
files=$(dpkg-deb -c "$package")
for file in bin/{vostrand,vostrand-view,vostrand-step,vostrand-synth} libexec/vostrand/{par,sorv,engine/synth.ys} \
    lib/.*libvostrandlib.so.1 include/vostrand/host/entry_points.h lib/.*vostrandConfig.cmake lib/.*vostrand.pc \
    share/man/man1/vostrand{,-view,-step,-synth}.1.gz share/bash-completion/completions/vostrand \
    share/zsh/vendor-completions/_vostrand share/doc/vostrand/copyright; do
  grep -q " \./usr/$file\$" <<<"$files" || { echo "the package has no $file"; exit 1; }
done
dpkg-deb -f "$package" Depends | grep -q 'libqt6core6.*libstdc++6' || { dpkg-deb -f "$package"; exit 1; }

dpkg -x "$package" root
root/usr/bin/vostrand --version | grep -q '^vostrand [0-9]'

# Into a root of its own, and out again. It holds no other package, so the scripts run here, with another ldconfig.
mkdir -p bin clean/var/lib/dpkg/{updates,info}
touch clean/var/lib/dpkg/status
ln -s "$(command -v true)" bin/ldconfig
manage() {
  PATH=$scratch/bin:$PATH dpkg --root="$scratch/clean" --log=/dev/null --force-depends --force-not-root \
    --force-script-chrootless "$@" >log 2>&1 || { cat log; exit 1; }
}
listed() { find clean -path clean/var -prune -o -print | sort; }
listed >before
manage -i "$package"
clean/usr/bin/vostrand --version >/dev/null
manage -P vostrand
listed | diff before -

! command -v lintian >/dev/null || lintian --allow-root --fail-on error "$package"
