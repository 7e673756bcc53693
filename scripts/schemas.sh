#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What is generated from the library's tables of fields: the JSON Schemas in docs/schemas and the tables in
# docs/documents.md.   schemas.sh write|check [VORNA-SCHEMA]
# "write" brings them up to date, "check" shows what is not.
set -euo pipefail
what=${1:-}
program=$(readlink -f "${2:-"$(dirname "$0")/../build/dev/tools/schemas/vorna-schema"}")
cd "$(dirname "$(readlink -f "$0")")/.."
[ "$what" = write ] || [ "$what" = check ] || { echo "usage: $0 write|check [VORNA-SCHEMA]" >&2; exit 2; }

fresh=$(mktemp)
trap 'rm -f "$fresh"' EXIT
stale=0
bring() {  # FILE ARGUMENT...: the file should hold what the program prints with these arguments
    local file=$1
    shift
    "$program" "$@" >"$fresh"
    cmp --silent "$fresh" "$file" && return
    if [ "$what" = write ]; then
        cp "$fresh" "$file"
        echo "$file"
    else
        echo "$file is out of date; run make schemas" >&2
        diff -u --label "$file" --label fresh "$file" "$fresh" | head -n 40 >&2 || true
        stale=1
    fi
}
bring docs/schemas/paywall.schema.json paywall
bring docs/schemas/onboarding.schema.json onboarding
bring docs/documents.md tables docs/documents.md
exit "$stale"
