#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks that each program's manual page is well-formed and documents exactly the options in the program's help. Needs a
# build in build/dev. Prints nothing if all is well.
set -uo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

options() {
    grep -oE '(^|[^A-Za-z-])--[a-z][a-z-]*' | grep -oE '\-\-[a-z-]+' | sort -u
}
for page in tools/*/*.1; do
    program=$(basename "$page" .1)
    LC_ALL=C groff -man -ww -z -Tutf8 -k "$page" 2>&1 | sed "s/^/$program: /"
    diff <("build/dev/${page%.1}" --help | sed -E 's/(Excludes|Needs):.*//' | options) \
        <(sed 's/\\-/-/g; s/\\f[BIR]//g' "$page" | options) | grep '^[<>]' | sed "s/^/$program: /"
done
