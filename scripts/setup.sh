#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the Debian packages that are missing; does nothing when all are there.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")

mapfile -t wanted < <(sed 's/#.*//' "$here/packages.debian" | tr -d ' \t' | grep -v '^$')
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
# One at a time on a machine; whoever has waited looks again.
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
# A server that a package brings must not start on the developer's machine: nginx is only run by tests.
policy=/usr/sbin/policy-rc.d
if [ ! -e "$policy" ]; then
    printf '#!/bin/sh\nexit 101\n' | $sudo tee "$policy" >/dev/null
    $sudo chmod 755 "$policy"
    trap '$sudo rm -f "$policy"' EXIT
fi
$sudo apt-get install --yes --no-install-recommends "${missing[@]}"
