#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the packages that `make deb` has built in out/deb into a minimal Debian, uses them there and removes them
# again. Needs root for chroot; without it, prints so and stops.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/../.."

if [ "${1:-}" != apart ]; then
    echo "packages: lintian"
    lintian --allow-root --fail-on error,warning --tag-display-limit 0 out/deb/*.deb
    if [ "$(id -u)" -ne 0 ] || ! unshare --mount true 2>/dev/null; then
        echo "packages: NOT TRIED, a clean root needs root and a mount namespace;" \
            "the same files are tried from the install tree by make test (InstalledPackage.*)"
        exit 0
    fi
    # In private namespaces, so that mounts and processes end with this script.
    exec unshare --mount --propagation private --pid --fork --kill-child "$0" apart
fi

work=$PWD/build/deb
root=$work/root
if grep -F " $root/" /proc/self/mountinfo; then
    echo "packages: the above is mounted where the clean root belongs" >&2
    exit 1
fi
mirror=$(apt-get indextargets --format '$(REPO_URI)' 2>/dev/null | grep -m 1 '/debian/*$' || true)
if [ ! -e "$work/base.tar" ]; then
    echo "packages: a clean Debian"
    rm -rf "$root"
    debootstrap --variant=minbase bookworm "$root" "${mirror:-http://deb.debian.org/debian}" >"$work/debootstrap.log" ||
        { tail -n 20 "$work/debootstrap.log"; exit 1; }
    tar --create --directory="$root" --file="$work/base.tar.new" .
    mv "$work/base.tar.new" "$work/base.tar"
fi
rm -rf "$root"
mkdir -p "$root" "$work/apt-archives"
tar --extract --directory="$root" --file="$work/base.tar"

mkdir -p "$root/packages" "$root/source"
cp out/deb/*.deb "$root/packages/"
(cd "$root/packages" && dpkg-scanpackages --multiversion . >Packages 2>/dev/null)
echo 'deb [trusted=yes] file:/packages ./' >"$root/etc/apt/sources.list.d/vorna.list"
cp -a README.md docs examples tests "$root/source/"
cp /etc/resolv.conf "$root/etc/resolv.conf"
printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
chmod 755 "$root/usr/sbin/policy-rc.d"
mount -t proc proc "$root/proc"
mount --rbind /dev "$root/dev"
mount --bind "$work/apt-archives" "$root/var/cache/apt/archives"
rm -f "$root/etc/apt/apt.conf.d/docker-clean"

env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
    ${http_proxy:+http_proxy="$http_proxy"} ${https_proxy:+https_proxy="$https_proxy"} \
    chroot "$root" bash /source/tests/packages/inside.sh
