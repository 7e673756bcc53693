#!/usr/bin/env bash
# The main job, end to end on this machine: starts the local service, runs the console host twice (the second
# time with the service gone), and prints what the service received.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

bin=build/release
out=out/demo
rm -rf "$out"
mkdir -p "$out"
cat >"$out/config.json" <<'JSON'
{ "welcome_text": "Hoş geldin! 👋", "paywall_name": "yearly_discount" }
JSON

"$bin/tools/devserver/vorna-devserver" --state "$out/service" --config "$out/config.json" --port 0 --quiet \
    >"$out/devserver.log" 2>&1 &
server=$!
trap 'kill "$server" 2>/dev/null || true' EXIT
url=
for _ in $(seq 100); do
    url=$(sed -n 's/^vorna-devserver listening on //p' "$out/devserver.log")
    [ -n "$url" ] && break
    kill -0 "$server" 2>/dev/null || { cat "$out/devserver.log"; exit 1; }
    sleep 0.1
done

host=("$bin/examples/console/vorna-console" --service "$url" --ca "$out/service/ca.pem" --data "$out/app")
events=examples/console/events.txt

echo "== The service listens on $url"
echo "== First run: $(grep -cv -e '^#' -e '^$' "$events") lines of $events"
"${host[@]}" "$events"

kill "$server"
wait "$server" || true
echo
echo "== Second run, with the service stopped: answers come from the last run's configuration"
printf 'Event offline_event lost\n' | "${host[@]}"

echo
echo "== What the service received"
scripts/summary.py "$out/service/events.ndjson"
