#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Generates files from the library's field tables: the JSON Schemas in docs/schemas and the tables in docs/documents.md.
#     schemas.sh write|check [VORNA-SCHEMA]
# "write" updates them, "check" reports those that are out of date.
set -euo pipefail
what=${1:-}
program=$(readlink -f "${2:-"$(dirname "$0")/../build/dev/tools/schemas/vorna-schema"}")
cd "$(dirname "$(readlink -f "$0")")/.."
[ "$what" = write ] || [ "$what" = check ] || { echo "usage: $0 write|check [VORNA-SCHEMA]" >&2; exit 2; }

fresh=$(mktemp)
trap 'rm -f "$fresh"' EXIT
stale=0
schema() {  # KIND: prints the schema, indented
    "$program" "$1" | python3 -m json.tool --indent 2 --no-ensure-ascii
}
update() {  # FILE COMMAND...: the file should contain the output of the command
    local file=$1
    shift
    "$@" >"$fresh"
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
update docs/schemas/paywall.schema.json schema paywall
update docs/schemas/onboarding.schema.json schema onboarding
update docs/documents.md "$program" tables docs/documents.md
exit "$stale"
