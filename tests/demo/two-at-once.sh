#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# two-at-once.sh BUILD-FOLDER: runs two demos concurrently in one checkout and checks that both succeed, each with its
# own pictures and the events of its own hosts.
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
status1=0
status2=0
wait "$demo1" || status1=$?
wait "$demo2" || status2=$?
head -n 1000 "$logs/1" "$logs/2"
echo
echo "The first exited with $status1, the second with $status2."
[ "$status1 $status2" = "0 0" ]

for copy in 1 2; do
    sed -n '/^== What the service received/,$p' "$logs/$copy" >"$logs/received$copy"
    # Two hosts; one runs again, without the service.
    grep -qxE 'sdk_initialized +2 *' "$logs/received$copy" || { echo "copy $copy: expected the events of its two hosts"; exit 1; }
    grep -E '^out/screens.*/[0-9].*\.png$' "$logs/$copy" >"$logs/pictures$copy" || { echo "copy $copy: no pictures"; exit 1; }
    xargs ls >/dev/null <"$logs/pictures$copy"
done
# The same number of each event. Users differ, and sessions depend on when windows gain and lose focus.
for copy in 1 2; do
    grep -vE '^(==|application|all|vorna_session) ' "$logs/received$copy" | awk '{ print $1, $2 }' >"$logs/events$copy"
done
diff "$logs/events1" "$logs/events2" || { echo "the events differ"; exit 1; }
[ "$(wc -l <"$logs/pictures1")" -eq "$(wc -l <"$logs/pictures2")" ] || { echo "the pictures differ"; exit 1; }
if sort "$logs/pictures1" "$logs/pictures2" | uniq -d | grep .; then
    echo "a copy saved pictures in the other's folder"
    exit 1
fi
