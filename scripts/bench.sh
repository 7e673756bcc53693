#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the benchmarks and prints a table for each topic. Arguments select topics: event encoding documents memory
# delivery size start ulid config paywall onboarding. BENCH_BUILD: the build folder.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

build=$(readlink -f "${BENCH_BUILD:-build/release}")
bench="$build/bench"
topics=("$@")
[ ${#topics[@]} -gt 0 ] || topics=(event encoding documents memory delivery size start ulid config paywall onboarding)

work=$(mktemp -d)
memory=$work/memory
[ ! -w /dev/shm ] || memory=$(mktemp -d -p /dev/shm)
nginx=
finish() {
    if [ -n "$nginx" ]; then
        kill "$nginx" 2>/dev/null || true
        wait "$nginx" 2>/dev/null || true
    fi
    rm -rf "$work" "$memory"
}
trap finish EXIT

wanted() {
    local topic
    for topic in "${topics[@]}"; do
        [ "$topic" = "$1" ] && return 0
    done
    return 1
}

# Starts nginx in the work folder, once. Sets url_h2, url_h1 (nginx's default: it closes a connection after 1000
# requests), url_h2_long, url_h1_long (connections stay open), url_h2_slow, url_h1_slow (answers take 100 ms),
# status_url and authority.
start_nginx() {
    [ -z "$nginx" ] || return 0
    local prefix="$work/nginx" ports user=
    mkdir -p "$prefix"
    authority="$prefix/certificate.pem"
    openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj '/CN=bench' \
        -addext 'subjectAltName=IP:127.0.0.1' -keyout "$prefix/key.pem" -out "$authority" 2>"$prefix/openssl.log"
    mapfile -t ports < <(python3 -c '
import socket
sockets = [socket.socket() for _ in range(7)]
for one in sockets:
    one.bind(("127.0.0.1", 0))
for one in sockets:
    print(one.getsockname()[1])')
    [ "$(id -u)" -ne 0 ] || user='user root;'
    # First the module that the echo module depends on, if any.
    local modules=/usr/lib/nginx/modules module load=
    for module in ndk_http_module ngx_http_echo_module; do
        [ ! -e "$modules/$module.so" ] || load+="load_module $modules/$module.so; "
    done
    cat >"$prefix/nginx.conf" <<CONF
$user
$load
daemon off;
worker_processes 1;
pid $prefix/nginx.pid;
error_log $prefix/error.log warn;
events {
    worker_connections 1024;
}
http {
    access_log off;
    ssl_certificate $authority;
    ssl_certificate_key $prefix/key.pem;
    ssl_protocols TLSv1.2 TLSv1.3;
    client_body_temp_path $prefix/body;
    proxy_temp_path $prefix/proxy;
    fastcgi_temp_path $prefix/fastcgi;
    uwsgi_temp_path $prefix/uwsgi;
    scgi_temp_path $prefix/scgi;
    server {
        listen 127.0.0.1:${ports[0]};
        location = /status {
            stub_status;
        }
    }
CONF
    # listener PORT HTTP-VERSION REQUESTS-PER-CONNECTION ANSWER
    listener() {
        cat >>"$prefix/nginx.conf" <<CONF
    server {
        listen 127.0.0.1:$1 ssl $2;
        keepalive_requests $3;
        location = /v1/event {
            $4
        }
        location = /v1/config {
            return 200 '{"configs":{}}';
        }
    }
CONF
    }
    # The body is read, as any service would. (Answering earlier, as "return" does, makes nginx reset the HTTP/2
    # stream, and libcurl 7.88 then gives up on the rest of the body and on the answer.)
    local at_once='echo_read_request_body; echo -n "";' slow='echo_read_request_body; echo_sleep 0.1; echo -n "";'
    listener "${ports[1]}" http2 1000 "$at_once"
    listener "${ports[2]}" '' 1000 "$at_once"
    listener "${ports[3]}" http2 100000000 "$at_once"
    listener "${ports[4]}" '' 100000000 "$at_once"
    listener "${ports[5]}" http2 1000 "$slow"
    listener "${ports[6]}" '' 1000 "$slow"
    echo '}' >>"$prefix/nginx.conf"
    status_url="http://127.0.0.1:${ports[0]}/status"
    url_h2="https://127.0.0.1:${ports[1]}"
    url_h1="https://127.0.0.1:${ports[2]}"
    url_h2_long="https://127.0.0.1:${ports[3]}"
    url_h1_long="https://127.0.0.1:${ports[4]}"
    url_h2_slow="https://127.0.0.1:${ports[5]}"
    url_h1_slow="https://127.0.0.1:${ports[6]}"

    nginx -p "$prefix" -e "$prefix/error.log" -c "$prefix/nginx.conf" 2>"$prefix/start.log" &
    nginx=$!
    for _ in $(seq 100); do
        curl --silent --fail --output /dev/null "$status_url" && return 0
        kill -0 "$nginx" 2>/dev/null || break
        sleep 0.1
    done
    echo "bench: nginx failed to start" >&2
    cat "$prefix/start.log" "$prefix/error.log" >&2
    nginx=
    exit 1
}

# Size of a file without symbols, in bytes.
stripped_size() {
    strip -o "$work/stripped" "$1"
    stat --format=%s "$work/stripped"
}

# Size of the code and data in a file, without headers and padding between segments, in bytes.
loaded_size() {
    size "$1" | awk 'NR == 2 { print $1 + $2 }'
}

size_row() {
    local verdict='' target=''
    if [ "$4" -gt 0 ]; then
        target="at most $4"
        verdict=met
        [ "$2" -le "$4" ] || verdict=MISSED
    fi
    printf '%-46s  %14s  %15s  %15s  %s\n' "$1" "$2" "$3" "$target" "$verdict"
}

measure_sizes() {
    local most=500000 sections with without
    printf '\nWhat the core library adds to a static host, in bytes\n'
    printf '%s\n' "$(printf -- '-%.0s' $(seq 104))"
    printf '%-46s  %14s  %15s  %15s\n' 'what' 'stripped file' 'code and data' 'target'
    printf '%s\n' "$(printf -- '-%.0s' $(seq 104))"
    for sections in kept dropped; do
        with="$bench/size_host_with_$sections"
        without="$bench/size_host_without_$sections"
        size_row "host without it (unused sections $sections)" "$(stripped_size "$without")" \
            "$(loaded_size "$without")" 0
        size_row "host with it (unused sections $sections)" "$(stripped_size "$with")" "$(loaded_size "$with")" 0
        size_row "   added" "$(($(stripped_size "$with") - $(stripped_size "$without")))" \
            "$(($(loaded_size "$with") - $(loaded_size "$without")))" "$most"
    done
    size_row 'the shared library' "$(stripped_size "$bench/libsize_shared.so")" \
        "$(loaded_size "$bench/libsize_shared.so")" 0
    echo "  Built as $(sed -n 's/^CMAKE_BUILD_TYPE:[A-Z]*=//p' "$build/CMakeCache.txt"), the library for size but for its hot files." \
        'System libraries (libcurl, Boost.JSON, GLib, libsecret, utf8proc) are shared and not counted.'
}

google() {
    "$bench/$1" --benchmark_min_time=0.05 --benchmark_counters_tabular=true "${@:2}" 2>"$work/google.log" ||
        { cat "$work/google.log" >&2; return 1; }
}

failed=0
echo "$(nproc) processors: $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1); load $(cut -d' ' -f1 /proc/loadavg)"
! wanted event || "$bench/EventCall_bench" "$work/event" || failed=1
! wanted encoding || "$bench/Encoding_bench" "$work/encoding" || failed=1
! wanted documents || "$bench/Documents_bench" || failed=1
! wanted memory || "$bench/Memory_bench" "$work/memory" || failed=1
if wanted delivery; then
    start_nginx
    "$bench/Delivery_bench" 'Events a second over TLS to a local nginx' \
        "$work/delivery" "$authority" "$status_url" 7 \
        'HTTP/2' "$url_h2" 128 5000 0.9x \
        'HTTP/2, connections live on' "$url_h2_long" 128 5000 0.9x \
        'HTTP/1.1' "$url_h1" 6 5000 0.9x \
        'HTTP/1.1, connections live on' "$url_h1_long" 6 5000 0.9x || failed=1
    "$bench/Delivery_bench" 'Events a second to a server that answers after 100 ms' \
        "$work/delivery-slow" "$authority" "$status_url" 3 \
        'HTTP/2' "$url_h2_slow" 128 3000 900 \
        'HTTP/1.1' "$url_h1_slow" 6 180 55 || failed=1
fi
! wanted size || measure_sizes || failed=1
if wanted start; then
    start_nginx
    "$bench/Start_bench" "$work/start" "$memory" "$authority" "$url_h2_slow" || failed=1
fi
if wanted ulid; then
    printf '\nIdentifiers as text\n'
    google ULID_bench || failed=1
fi
if wanted config; then
    printf '\nLookups in the remote configuration\n'
    google RemoteConfigTable_bench || failed=1
fi
# The screens, if they are built, on a virtual display.
screen() {
    [ -x "$bench/$1" ] || { printf '\n%s: built without the screens\n' "$1"; return 0; }
    # Validating a document prints its missing fields: an empty list each time.
    scripts/on-display.sh "$bench/$1" "$work/$1" "examples/documents/$2" 2>"$work/screen.log" |
        sed '/^\[\]$/d' ||
        { cat "$work/screen.log" >&2; return 1; }
}
! wanted paywall || screen PaywallScreen_bench paywall/three-products.json || failed=1
! wanted onboarding || screen OnboardingScreen_bench onboarding/three-steps.json || failed=1
exit "$failed"
