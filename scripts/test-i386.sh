#!/usr/bin/env bash
# Builds and tests the project as the terminal runs it: a 32-bit x86 process. An i386
# Debian 12 root made with debootstrap holds the same Debian packages as a 64-bit machine,
# installed by the project's own scripts/setup.sh. The checkout is bind-mounted into it at
# /src, and the release build (build/i386 in the checkout) and the whole ctest suite run
# there, so the 32-bit record layouts are checked by the real i386 compiler and every test,
# the module and the emulator run as 32-bit programs.
#
# The root lives outside the checkout and is reused by later runs (and by other checkouts).
# Every mount is made in a private mount namespace and goes away with it, even when the run
# is interrupted. Needs root, or sudo. Ends with ctest's "N tests failed out of M" line.
#
#   PF_I386_ROOT       where the root is kept (default /var/cache/pfchart-i386/root)
#   PF_I386_MIRROR     Debian mirror for debootstrap (default http://deb.debian.org/debian)
#   PF_I386_REBUILD=1  make the root anew
#   PF_I386_REQUIRED=1 fail instead of skipping where chroots are not allowed
set -euo pipefail
cd "$(dirname "$0")/.."
src=$(pwd -P)

if [ "$(id -u)" -ne 0 ]; then
    exec sudo --preserve-env=PF_I386_ROOT,PF_I386_MIRROR,PF_I386_REBUILD,PF_I386_REQUIRED bash "$src/scripts/test-i386.sh" "$@"
fi

root=${PF_I386_ROOT:-/var/cache/pfchart-i386/root}
mirror=${PF_I386_MIRROR:-http://deb.debian.org/debian}
ready="$root/etc/pfchart-i386-ready"

PF_I386=1 bash scripts/setup.sh  # debootstrap

in_namespace() {  # command...: runs a command in a private mount namespace
    unshare --mount --propagation private -- "$@"
}

in_root() {  # script: runs a bash script in the root as a 32-bit machine, checkout at /src
    in_namespace bash -c '
        set -e
        root=$1 src=$2 script=$3
        mount --rbind /dev "$root/dev"
        mount -t proc proc "$root/proc"
        mount --rbind /sys "$root/sys"
        # The shared /tmp lets xvfb-run see the X displays taken outside the root.
        mount --bind /tmp "$root/tmp"
        mkdir -p "$root/src"
        mount --bind "$src" "$root/src"
        exec chroot "$root" setarch i686 env -i HOME=/root LANG=C.UTF-8 TERM=dumb \
            PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
            DEBIAN_FRONTEND=noninteractive bash -euo pipefail -c "cd /src; $script"
    ' _ "$root" "$src" "$1"
}

# A container without the rights to make mount namespaces or chroots cannot hold the root.
# That is reported and the run ends here, unless PF_I386_REQUIRED=1 makes it a failure.
if ! unshare --mount --propagation private -- chroot / true 2>/dev/null; then
    echo "i386: skipped: this machine does not allow mount namespaces and chroot"
    [ "${PF_I386_REQUIRED:-0}" = "1" ] && exit 1
    exit 0
fi

# A kernel without 32-bit x86 emulation (some virtual machines run 64-bit user code only)
# refuses to start i386 programs with "Exec format error": the root's own tools could not
# run. That is reported and the run ends here, unless PF_I386_REQUIRED=1 makes it a failure;
# the 32-bit record layouts are still compiled with g++ -m32 by the 64-bit suite.
probe=$(mktemp -d)
trap 'rm -rf "$probe"' EXIT
if ! { printf 'int main(void) { return 0; }\n' | gcc -m32 -x c - -o "$probe/probe" 2>/dev/null &&
       "$probe/probe" 2>/dev/null; }; then
    echo "i386: skipped: this kernel does not run 32-bit x86 programs"
    [ "${PF_I386_REQUIRED:-0}" = "1" ] && exit 1
    exit 0
fi

mkdir -p "$(dirname "$root")"
exec 9>"$root.lock"
flock -x 9  # one run at a time makes or updates the root; builds share it afterwards

if [ "${PF_I386_REBUILD:-0}" = "1" ] || [ ! -f "$ready" ]; then
    echo "i386: making the Debian 12 root in $root"
    rm -rf "$root.new" "$root"
    # debootstrap mounts /proc and /sys in the new root: inside the namespace they cannot
    # outlive an interrupted run.
    in_namespace debootstrap --arch=i386 --variant=minbase bookworm "$root.new" "$mirror" >"$root.log" 2>&1 || {
        tail -n 30 "$root.log"
        echo "i386: debootstrap failed (log: $root.log)"
        exit 1
    }
    # The release and its point updates: the packages the build and the tests use. The
    # security suite is left out: nothing in the root faces the outside world.
    printf 'deb %s bookworm main\ndeb %s bookworm-updates main\n' "$mirror" "$mirror" \
        >"$root.new/etc/apt/sources.list"
    mv "$root.new" "$root"
    touch "$ready"
fi

echo "i386: installing the project's packages in the root"
cp /etc/resolv.conf "$root/etc/resolv.conf"
# ccache keeps compiled objects in the root, so that a fresh checkout builds quickly; the
# checkout's fixed place (/src) makes the cache hit across checkouts.
in_root 'bash scripts/setup.sh
         dpkg-query -W -f="\${Status}" ccache 2>/dev/null | grep -q "install ok installed" ||
             apt-get install -y -qq --no-install-recommends ccache >/dev/null'

flock -s 9  # other runs may build in the root now, but not remake it

echo "i386: release build in build/i386"
mkdir -p build/i386
rc=0
in_root 'cmake -S . -B build/i386 -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
         cmake --build build/i386 -j"$(nproc)"' >build/i386/build.log 2>&1 || rc=$?
if [ "$rc" -ne 0 ]; then
    tail -n 60 build/i386/build.log
    echo "i386: build failed"
    exit 1
fi
grep -E 'warning:' build/i386/build.log | sort -u | head -n 20 || true

echo "i386: ctest"
in_root 'echo "machine $(uname -m), $(getconf LONG_BIT)-bit longs, module $(readelf -h build/i386/libPFChartModule.so.1 | awk "/Class:/ {print \$2}")"
         cd build/i386 && ctest --output-on-failure -j"$(nproc)"'
