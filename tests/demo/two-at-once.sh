#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# two-at-once.sh BUILD-FOLDER: runs the demo twice at the same time in one checkout, each walking through by
# itself, and checks that each ends well, with pictures of its own and with what its own hosts sent.
set -euo pipefail
build=$(readlink -f "$1")
cd "$(dirname "$(readlink -f "$0")")/../.."
logs=$(mktemp -d)
trap 'rm -rf "$logs"' EXIT
unset DISPLAY WAYLAND_DISPLAY

for copy in 1 2; do
    DEMO_BUILD=$build scripts/demo.sh >"$logs/$copy" 2>&1 &
    eval "demo$copy=$!"
done
ended1=0
ended2=0
wait "$demo1" || ended1=$?
wait "$demo2" || ended2=$?
head -n 1000 "$logs/1" "$logs/2"
echo
echo "The first ended with $ended1, the second with $ended2."
[ "$ended1 $ended2" = "0 0" ]

for copy in 1 2; do
    sed -n '/^== What the service received/,$p' "$logs/$copy" >"$logs/received$copy"
    # Two hosts, one of them run a second time without the service.
    grep -qxE 'sdk_initialized +2 *' "$logs/received$copy" || { echo "copy $copy: not its own two hosts"; exit 1; }
    grep -E '^out/screens.*/[0-9].*\.png$' "$logs/$copy" >"$logs/pictures$copy" || { echo "copy $copy: no pictures"; exit 1; }
    xargs ls >/dev/null <"$logs/pictures$copy"
done
# As often each event; users are each copy's own, sessions come as its display gives and takes the focus.
for copy in 1 2; do
    grep -vE '^(==|application|all|vorna_session) ' "$logs/received$copy" | awk '{ print $1, $2 }' >"$logs/events$copy"
done
diff "$logs/events1" "$logs/events2" || { echo "not the same events"; exit 1; }
[ "$(wc -l <"$logs/pictures1")" -eq "$(wc -l <"$logs/pictures2")" ] || { echo "not the same pictures"; exit 1; }
if sort "$logs/pictures1" "$logs/pictures2" | uniq -d | grep .; then
    echo "pictures of one in the folder of the other"
    exit 1
fi
