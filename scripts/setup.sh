#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# setup.sh [SECTION...]: installs the missing Debian packages of packages.debian, of these sections or of all.
# Does nothing if all are installed.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")

mapfile -t wanted < <(awk -v sections="$*" '
    BEGIN { count = split(sections, names, " "); for (i in names) chosen[names[i]] = 1 }
    { sub(/#.*/, ""); gsub(/[ \t]/, "") }
    /^\[.*\]$/ { section = substr($0, 2, length($0) - 2); next }
    $0 != "" && (count == 0 || section in chosen)' "$here/packages.debian")
for section in "$@"; do
    grep -qxF "[$section]" "$here/packages.debian" || { echo "setup: no section $section in packages.debian" >&2; exit 2; }
done
find_missing() {
    local package status
    missing=()
    for package in "${wanted[@]}"; do
        status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
        [ "$status" = installed ] || missing+=("$package")
    done
}
find_missing
[ ${#missing[@]} -gt 0 ] || exit 0
# One at a time on a machine; one that has waited checks again.
exec {lock}</usr/bin/apt-get
flock "$lock"
find_missing
[ ${#missing[@]} -gt 0 ] || exit 0

sudo=
if [ "$(id -u)" -ne 0 ]; then
    sudo=sudo
fi
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update --quiet
# Servers in these packages must not start on the developer's machine: only tests run nginx.
policy=/usr/sbin/policy-rc.d
if [ ! -e "$policy" ]; then
    printf '#!/bin/sh\nexit 101\n' | $sudo tee "$policy" >/dev/null
    $sudo chmod 755 "$policy"
    trap '$sudo rm -f "$policy"' EXIT
fi
$sudo apt-get install --yes --no-install-recommends "${missing[@]}"
