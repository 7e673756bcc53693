#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks the documents under examples/documents: vorna-lint must report nothing, but for each bad-NAME.json exactly the
# codes listed in bad-NAME.expected.   documents.sh [VORNA-LINT]
set -euo pipefail
program=$(readlink -f "${1:-"$(dirname "$0")/../build/dev/tools/lint/vorna-lint"}")
cd "$(dirname "$(readlink -f "$0")")/../examples/documents"

failed=0
good=0
bad=0
for document in paywall/*.json onboarding/*.json; do
    kind=$(dirname "$document")
    status=0
    found=$("$program" --kind "$kind" "$document") || status=$?
    case $(basename "$document") in
    bad-*)
        bad=$((bad + 1))
        codes=$(sed -nE 's/^.*: (error|warning): .* \[([a-z-]+)\]$/\2/p' <<<"$found")
        if [ "$status" -ne 1 ] || [ "$codes" != "$(cat "${document%.json}.expected")" ]; then
            echo "$document: unexpected findings (status $status):" >&2
            diff --label "${document%.json}.expected" --label found -u "${document%.json}.expected" - <<<"$codes" >&2 || true
            failed=1
        fi
        ;;
    *)
        good=$((good + 1))
        if [ "$status" -ne 0 ]; then
            echo "$found" >&2
            failed=1
        fi
        ;;
    esac
done
for expected in */*.expected; do
    [ -e "${expected%.expected}.json" ] || { echo "$expected has no document" >&2; failed=1; }
done
# The example at the beginning of the documentation.
if ! found=$(sed -n '/^```json$/,/^```$/p' ../../docs/documents.md | grep -v '^```' | "$program" -); then
    echo "docs/documents.md: $found" >&2
    failed=1
fi
echo "$good good and $bad bad documents"
if [ "$good" -eq 0 ] || [ "$bad" -eq 0 ]; then
    echo "examples/documents lacks good or bad documents" >&2
    failed=1
fi
exit "$failed"
