#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# with-service.sh DEVSERVER TEXT EVENTS COMMAND...: starts the local service, runs the command with its address
# appended (--service, --ca, --data), and checks that it succeeds and prints the text, and that the service has
# received exactly those events (comma-separated names, with their custom values as NAME=VALUE).
set -euo pipefail
devserver=$1 text=$2 expected=$3
shift 3

folder=$(mktemp -d)
echo '{ "welcome_text": "Hoş geldin! 👋", "paywall_name": "yearly_discount" }' >"$folder/config.json"
: >"$folder/log"
"$devserver" --state "$folder/service" --config "$folder/config.json" --port 0 --quiet >>"$folder/log" 2>&1 &
server=$!
trap 'kill "$server" 2>/dev/null || true; wait "$server" 2>/dev/null || true; rm -rf "$folder"' EXIT
url=
for _ in $(seq 300); do
    url=$(sed -n 's/^vorna-devserver listening on //p' "$folder/log")
    [ -n "$url" ] && break
    sleep 0.1
done
[ -n "$url" ] || { cat "$folder/log"; exit 1; }

status=0
"$@" --service "$url" --ca "$folder/service/ca.pem" --data "$folder/app" >"$folder/output" 2>&1 || status=$?
cat "$folder/output"
[ "$status" -eq 0 ] || { echo "the program exited with $status"; exit 1; }
grep -qF "$text" "$folder/output" || { echo "the program did not print: $text"; exit 1; }
python3 - "$folder/service/events.ndjson" "$expected" <<'PYTHON'
import collections, json, sys

with open(sys.argv[1], encoding="utf-8") as lines:
    # Sessions depend on when the display gives the program focus.
    events = [e for e in map(json.loads, lines) if e["name"] != "vorna_session"]
named = [e["name"] + ("=" + e["customValue"] if e["customValue"] else "") for e in events]
received, expected = collections.Counter(named), collections.Counter(sys.argv[2].split(","))
print("received:", ", ".join(sorted(named)))
if received != expected:
    sys.exit(f"missing: {expected - received}, unexpected: {received - expected}")
if any(len(e["deviceData"]["userId"]) != 26 for e in events):
    sys.exit("an event without a user")
PYTHON
