#!/usr/bin/env bash
# `make test-cross [CROSS=arm64|armhf]`: installs what a cross build for the
# target needs (Debian multi-arch: the foreign architecture, the cross
# compiler, qtbase5-dev:<arch>, qemu-user), cross-builds the library, the tool
# and the tests in build-cross-<arch>/, runs the suite under qemu-user (the
# browser test excepted: the browser is the build machine's; so are the
# memory-bound tests, labelled native-only) and compares
# `lcdcfg dump --json` of the shipped tree with the native build's.
set -euo pipefail
cd "$(dirname "$0")/../.."
arch=${1:-arm64}
case $arch in
    arm64) triplet=aarch64-linux-gnu qemu=qemu-aarch64 ;;
    armhf) triplet=arm-linux-gnueabihf qemu=qemu-arm ;;
    *) echo "test-cross: unknown target '$arch' (arm64 or armhf)" >&2; exit 2 ;;
esac
sudo=$([ "$(id -u)" = 0 ] || echo sudo)
jobs=${JOBS:-$(nproc)}
launcher=$(command -v ccache >/dev/null && echo -DCMAKE_CXX_COMPILER_LAUNCHER=ccache || true)
packages="g++-$triplet qtbase5-dev:$arch qemu-user"

installed() { dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'ok installed'; }
missing=""
for p in $packages cmake make g++ qtbase5-dev; do installed "$p" || missing="$missing $p"; done
if [ -n "$missing" ]; then
    added=""
    if ! dpkg --print-foreign-architectures | grep -qx "$arch"; then
        echo "test-cross: adding the architecture $arch"
        $sudo dpkg --add-architecture "$arch"
        added=yes
    fi
    log=$(mktemp)
    $sudo apt-get update >"$log" 2>&1 || true
    # A foreign index that did not download leaves packages uninstallable or
    # at versions that differ from the build machine's (multi-arch libraries
    # must match to the version): apt's dry run says whether what is needed
    # installs all the same; when it does not, the index that failed is named.
    failed=$(grep -E '^(E|W): Failed to fetch' "$log" | grep -oE '[^ ]*binary-'"$arch"'/Packages[^ ]*' || true)
    if ! apt-get install -s -y --no-install-recommends $missing >"$log" 2>&1; then
        if [ -n "$failed" ]; then
            echo "test-cross: the $arch package index is missing or incomplete; apt-get update could not fetch:" >&2
            echo "$failed" | sed 's/^/  /' >&2
            echo "  so these do not install:" >&2
            grep -E '^ [^ ].* : Depends' "$log" | head -8 | sed 's/^ */    /' >&2
            echo "  (a mirror that is being synchronised answers so for a while: run \`make test-cross CROSS=$arch\` again later)" >&2
        else
            echo "test-cross: could not install$missing for $arch:" >&2
            grep -E '^(E:| [^ ].* : Depends)' "$log" | head -8 >&2
        fi
        # Leave apt as it was: an architecture without its index fails every apt-get update.
        if [ -n "$added" ]; then $sudo dpkg --remove-architecture "$arch" && $sudo apt-get update >/dev/null 2>&1; fi
        rm -f "$log"; exit 1
    fi
    [ -z "$failed" ] || echo "test-cross: warning: could not fetch $failed; what the build needs installs from the other indexes" >&2
    rm -f "$log"
    echo "test-cross: installing$missing"
    if ! DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends $missing; then
        echo "test-cross: could not install$missing for $arch (see apt-get's message above)" >&2
        exit 1
    fi
fi

# The native tool, for the reference dump.
native=build-release
out=$(cmake -S . -B $native -DCMAKE_BUILD_TYPE=Release -DLCD_WERROR=ON $launcher 2>&1) || { echo "$out"; exit 1; }
cmake --build $native -j "$jobs" --target lcdcfg

tree=build-cross-$arch
out=$(cmake -S . -B "$tree" -DCMAKE_BUILD_TYPE=Release -DLCD_WERROR=ON $launcher \
          -DCMAKE_TOOLCHAIN_FILE="$PWD"/cmake/toolchains/$triplet.cmake 2>&1) || { echo "$out"; exit 1; }
cmake --build "$tree" -j "$jobs"
machine=$(case $arch in arm64) echo AArch64 ;; armhf) echo ARM ;; esac)
readelf -h "$tree/tools/lcdcfg" | grep -qE "Machine: +$machine\$" \
    || { echo "test-cross: $tree/tools/lcdcfg is not a $arch program" >&2; exit 1; }

# Under emulation: every test but the browser's and those labelled native-only
# (tests/CMakeLists.txt says why); timeouts are scaled in the tree.
(cd "$tree" && ctest --output-on-failure -j "$jobs" -LE 'browser|native-only')

"$native/tools/lcdcfg" dump --json --root share/config >"$tree/dump-native.json"
$qemu -L / "$tree/tools/lcdcfg" dump --json --root share/config >"$tree/dump-$arch.json"
if ! cmp -s "$tree/dump-native.json" "$tree/dump-$arch.json"; then
    echo "test-cross: lcdcfg dump --json of share/config differs on $arch:" >&2
    diff -u "$tree/dump-native.json" "$tree/dump-$arch.json" | head -40 >&2
    exit 1
fi
echo "test-cross: $arch dump of share/config equals the native one ($(wc -c <"$tree/dump-native.json") bytes)"
