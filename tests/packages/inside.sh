#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs in a clean root, with the source tree's documents, examples and tests in /source and the packages in a local
# repository: installs the packages one by one and uses each as a newcomer would.
set -euo pipefail

step() { printf 'packages: %s\n' "$*"; }
install() {
    apt-get install --yes --no-install-recommends "$@" >/tmp/apt.log 2>&1 || { tail -n 30 /tmp/apt.log; exit 1; }
}
fail() {
    echo "packages: $*" >&2
    exit 1
}
installed() { dpkg-query --show --showformat='${db:Status-Abbrev} ${Package}\n' | sed -n 's/^ii *//p'; }

apt-get update >/tmp/apt.log 2>&1 || { cat /tmp/apt.log; exit 1; }
find / -xdev \( -path /proc -o -path /source -o -path /packages -o -path /var/lib/apt -o -path /tmp \) -prune \
    -o -iname '*vorna*' -print >/tmp/before
cd /tmp
mkdir -m 700 /tmp/runtime
export XDG_RUNTIME_DIR=/tmp/runtime

step 'libvorna alone brings no toolkit'
install libvorna
if installed | grep -iE '^(lib)?(qt|qml|x11|wayland)'; then
    fail 'libvorna brings the above'
fi

step 'vorna-tools'
install vorna-tools
vorna-lint --version
vorna-lint /source/examples/documents/paywall/three-products.json
for manual in vorna-devserver vorna-lint vorna-preview; do
    [ -s "/usr/share/man/man1/$manual.1.gz" ] || fail "no manual page of $manual"
done
ls /usr/share/vorna/schemas/*.schema.json >/dev/null

step 'a picture of a paywall, with nothing but what vorna-tools asks for'
vorna-preview --png /tmp/paywall.png /source/examples/documents/paywall/three-products.json
[ "$(head -c 4 /tmp/paywall.png | tail -c 3)" = PNG ] || fail 'vorna-preview has made no picture'

step 'the first program of docs/getting-started.md, with CMake'
install libvorna-dev g++ cmake make
if installed | grep -E '^qt6-.*-dev'; then
    fail 'libvorna-dev, without what it recommends, brings the above'
fi
mkdir -p /tmp/first /tmp/service
guide=/usr/share/doc/libvorna-dev/getting-started.md
[ -e "$guide" ] || gunzip --keep "$guide.gz"
# block LANGUAGE: the first code block in that language.
block() { awk -v fence='```'"$1" '$0 == fence { on = 1; next } on && /^```/ { exit } on' "$guide"; }
block cmake >/tmp/first/CMakeLists.txt
block cpp >/tmp/first/main.cpp
echo '{ "welcome_text": "Hello!" }' >/tmp/service/config.json
: >/tmp/devserver.log
vorna-devserver --state /tmp/service --config /tmp/service/config.json --port 0 >>/tmp/devserver.log 2>&1 &
server=$!
trap 'kill "$server" 2>/dev/null || true' EXIT
for _ in $(seq 300); do
    url=$(sed -n 's/^vorna-devserver listening on //p' /tmp/devserver.log)
    [ -z "$url" ] || break
    sleep 0.1
done
[ -n "$url" ] || { cat /tmp/devserver.log; fail 'vorna-devserver does not start'; }
sed -i "s#https://127.0.0.1:8443#$url#; s#vorna-devserver-state/#/tmp/service/#" /tmp/first/main.cpp
cmake -S /tmp/first -B /tmp/first/build -DBUILD_SHARED_LIBS=ON >/tmp/first.log
cmake --build /tmp/first/build >>/tmp/first.log || { cat /tmp/first.log; exit 1; }
/tmp/first/build/first >/tmp/first.out
[ "$(tail -n 1 /tmp/first.out)" = 'Hello!' ] || { cat /tmp/first.out; fail 'the configured text has not come'; }
for event in sdk_initialized level_up; do
    grep -q "\"name\":\"$event\"" /tmp/service/events.ndjson || fail "$event has not arrived"
done
ldd /tmp/first/build/first | grep libvorna_core.so || fail 'not linked with the shared library'

step 'the same, static'
cmake -S /tmp/first -B /tmp/first/static -DBUILD_SHARED_LIBS=OFF >/tmp/first.log
cmake --build /tmp/first/static >>/tmp/first.log || { cat /tmp/first.log; exit 1; }
! ldd /tmp/first/static/first | grep libvorna
[ "$(/tmp/first/static/first | tail -n 1)" = 'Hello!' ] || fail 'the configured text has not come'

step 'the example in C, with pkg-config'
install pkg-config
gcc -std=gnu11 -Wall -Wextra -pedantic -Werror /usr/share/doc/libvorna-dev/examples/c/main.c -o /tmp/c-host \
    $(pkg-config --cflags --libs vorna-c)

step 'hosts in C and Python, against the service'
kill "$server"
install python3
/source/tests/bindings/with-service.sh vorna-devserver 'welcome_text = Hoş geldin! 👋' \
    'sdk_initialized,paywall_shown=ana ekran,level_up=7 🎉,lesson' \
    python3 /usr/share/doc/libvorna-dev/examples/python/vorna_events.py --library libvorna_c.so.0
/source/tests/bindings/with-service.sh vorna-devserver 'Hoş geldin! 👋' \
    'sdk_initialized,paywall_shown=ana ekran,plain,level_up=7,lesson' /tmp/c-host

step 'hosts with screens, in C++ and in QML'
install libvorna-dev libvorna-ui qml6-module-vorna qt6-declarative-dev qt6-multimedia-dev
export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software
cmake -S /source/tests/install -B /tmp/consumers -DVORNA_KIND=shared >/tmp/consumers.log
cmake --build /tmp/consumers --target ui_consumer >>/tmp/consumers.log || { tail -n 30 /tmp/consumers.log; exit 1; }
/tmp/consumers/ui_consumer /tmp/ui-consumer-data
install qml-qt6 qml6-module-qttest
/source/tests/bindings/with-service.sh vorna-devserver 'Hoş geldin! 👋' \
    'sdk_initialized,qml_started=ana ekran 🎉,onboarding_start,onboarding_finish' \
    /usr/lib/qt6/bin/qml /source/tests/bindings/qml_app_test.qml --

step 'taken away, nothing is left'
apt-get purge --yes libvorna libvorna-ui qml6-module-vorna libvorna-dev vorna-tools >/tmp/apt.log 2>&1 ||
    { tail -n 30 /tmp/apt.log; exit 1; }
find / -xdev \( -path /proc -o -path /source -o -path /packages -o -path /var/lib/apt -o -path /tmp -o -path /root \) -prune \
    -o -iname '*vorna*' -print >/tmp/after
diff /tmp/before /tmp/after || fail 'the above is left'
step 'all well'
