#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The main job, end to end on this machine: starts the local service, runs the console host (with the service and
# again without it), then the application with screens: on the user's display if there is one, else on a virtual one
# with a scripted tour that saves numbered pictures under out/screens. Ends with the events that the service received.
# DEMO_BUILD: the build folder.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

bin=${DEMO_BUILD:-build/release}
mkdir -p out
# A run that starts while another is in progress uses its own folders: out/demo.2, out/screens.2, and so on.
for run in '' .{2..99}; do
    exec {lock}>"out/.demo$run.lock"
    ! flock --nonblock "$lock" || break
    exec {lock}>&-
done
out=out/demo$run
pictures=out/screens$run
rm -rf "$out" "$pictures"
mkdir -p "$out" "$pictures"
cat >"$out/config.json" <<'JSON'
{ "welcome_text": "Hoş geldin! 👋", "paywall_name": "yearly_discount" }
JSON

url=
server=
stop_service() {
    [ -z "$server" ] || { kill "$server" 2>/dev/null; wait "$server" || true; }
    server=
}
trap stop_service EXIT
start_service() {
    # Created before it is read: the service opens it only once its process is scheduled.
    : >"$out/devserver.log"
    "$bin/tools/devserver/vorna-devserver" --state "$out/service" --config "$out/config.json" \
        --media examples/media --port 0 --quiet >>"$out/devserver.log" 2>&1 &
    server=$!
    url=
    for _ in $(seq 300); do
        url=$(sed -n 's/^vorna-devserver listening on //p' "$out/devserver.log")
        [ -n "$url" ] && return
        kill -0 "$server" 2>/dev/null || break
        sleep 0.1
    done
    cat "$out/devserver.log"
    exit 1
}

start_service
events=examples/console/events.txt
console=("$bin/examples/console/vorna-console" --ca "$out/service/ca.pem" --data "$out/console")
echo "== The service listens on $url"
echo "== The host without a toolkit: $(grep -cv -e '^#' -e '^$' "$events") lines of $events"
"${console[@]}" --service "$url" "$events"
gone=$url
stop_service
echo
echo "== Again, with the service stopped: the configuration of the last run is used"
printf 'Event offline_event lost\n' | "${console[@]}" --service "$gone"

start_service
app=("$bin/examples/app/vorna-app" --service "$url" --ca "$out/service/ca.pem" --data "$out/app")
echo
if [ -z "${DEMO_TOUR:-}" ] && { [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; }; then
    echo "== The application with screens: close its window to continue (DEMO_TOUR=1 for an automatic tour)"
    "${app[@]}"
else
    echo "== The application with screens, on an automatic tour"
    QT_QUICK_BACKEND=rhi scripts/on-display.sh "${app[@]}" --tour "$pictures" 2>"$out/app.log" ||
        { cat "$out/app.log"; exit 1; }
    ls "$pictures"/*.png
fi

echo
echo "== What the service received"
scripts/summary.py "$out/service/events.ndjson"
