#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the Debian packages of the working tree in out/deb, and their debug symbols in out/deb/debug. Works in a copy
# whose build folder is kept for the next run.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

work=build/deb
tree=$work/vorna
mkdir -p "$tree"
find "$tree" -mindepth 1 -maxdepth 1 ! -name obj -exec rm -rf {} +
git ls-files -z --cached --others --exclude-standard --deduplicate |
    while IFS= read -rd '' file; do [ ! -e "$file" ] || printf '%s\0' "$file"; done |
    tar --create --null --files-from=- | tar --extract --directory="$tree"

rm -f "$work"/*.deb
export DEB_BUILD_OPTIONS="${DEB_BUILD_OPTIONS:+$DEB_BUILD_OPTIONS }terse parallel=$(nproc)"
(cd "$tree" && dpkg-buildpackage --build=binary --no-sign --no-pre-clean)

rm -rf out/deb
mkdir -p out/deb/debug
mv "$work"/*-dbgsym_*.deb out/deb/debug/
mv "$work"/*.deb out/deb/
echo
ls -l out/deb
