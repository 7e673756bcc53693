#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# One step of the test of the installed package:  run.sh STEP BUILD-FOLDER
# BUILD-FOLDER is the finished static build whose neighbour folder "install" is worked in.
set -euo pipefail
step=$1
static_build=$(readlink -f "$2")
source=$(readlink -f "$(dirname "$(readlink -f "$0")")/../..")
here=$source/tests/install
work=$static_build/install-test
prefix=$work/prefix

consume() {  # NAME CMAKE-ARGUMENTS...: builds the consumer and runs it
    local name=$1
    shift
    rm -rf "${work:?}/$name"
    cmake -S "$here" -B "$work/$name" -G Ninja -DCMAKE_BUILD_TYPE=Release "$@" >"$work/$name.log" 2>&1 ||
        { cat "$work/$name.log"; return 1; }
    cmake --build "$work/$name" >>"$work/$name.log" 2>&1 || { tail -n 40 "$work/$name.log"; return 1; }
    "$work/$name/consumer" "$work/$name/data"
    "$work/$name/c_consumer" "$work/$name/c-data"
    on_display "$work/$name/ui_consumer" "$work/$name/ui-data"
}

on_display() {
    "$source/scripts/on-display.sh" "$@"
}

with_service() {
    "$source/tests/bindings/with-service.sh" "$static_build/tools/devserver/vorna-devserver" "$@"
}

unload() {  # NAME: loads and unloads the plugin of that consumer again and again
    for run in $(seq 20); do
        "$work/$1/loader" "$work/$1/plugin.so" "$work/$1/plugin-data" "$((run * 7))" >/dev/null
    done
    echo "unloaded 20 times under load"
}

compile() {  # NAME FLAGS...: builds the consumer with the compiler alone
    local name=$1
    shift
    g++ -std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror "$here/consumer.cpp" -o "$work/$name" "$@"
    LD_LIBRARY_PATH=$libraries "$work/$name" "$work/$name-data"
}

compile_c() {  # NAME FLAGS...: the same for the consumer in C
    local name=$1
    shift
    gcc -std=c11 -Wall -Wextra -pedantic -Werror "$here/consumer.c" -o "$work/$name" "$@"
    LD_LIBRARY_PATH=$libraries "$work/$name" "$work/$name-data"
}

compile_ui() {  # NAME FLAGS...: the same for the consumer with screens, on Vorna's module of the import path
    local name=$1
    shift
    g++ -std=c++20 -fPIC -DVORNA_IMPORT_PATH=\""$modules"\" "$here/ui_consumer.cpp" -o "$work/$name" "$@"
    LD_LIBRARY_PATH=$libraries on_display "$work/$name" "$work/$name-data"
}

mkdir -p "$work"
export PKG_CONFIG_PATH=$(echo "$prefix"/lib*/pkgconfig "$prefix"/lib/*/pkgconfig | tr ' ' ':')
libraries=$(dirname "$(find "$prefix" -name 'libvorna_core.so' 2>/dev/null | head -n 1)")
modules=$libraries/qt6/qml
case $step in
install)
    rm -rf "$prefix"
    cmake --install "$static_build" --prefix "$prefix" >/dev/null
    cmake -S "$source" -B "$work/library" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1" -DBUILD_SHARED_LIBS=ON -DVORNA_BUILD_TOOLS=OFF \
        -DVORNA_BUILD_EXAMPLES=OFF -DCMAKE_INSTALL_PREFIX="$prefix" >"$work/library.log"
    cmake --build "$work/library" >>"$work/library.log" || { tail -n 40 "$work/library.log"; exit 1; }
    cmake --install "$work/library" --prefix "$prefix" >/dev/null
    ;;
cmake-static)
    consume static -DCMAKE_PREFIX_PATH="$prefix" -DVORNA_KIND=static
    ! ldd "$work/static/consumer" | grep libvorna
    ;;
cmake-shared)
    consume shared -DCMAKE_PREFIX_PATH="$prefix" -DVORNA_KIND=shared
    # Not grep -q, which ends at its first find and makes ldd fail.
    ldd "$work/shared/consumer" | grep libvorna_core.so
    ldd "$work/shared/c_consumer" | grep libvorna_c.so.0
    ldd "$work/shared/ui_consumer" | grep libvorna_ui.so
    unload shared
    ;;
cmake-default)
    consume default -DCMAKE_PREFIX_PATH="$prefix"
    ;;
pkg-config-static)
    compile pkg-config-static $(pkg-config --cflags vorna-core) -Wl,-Bstatic -L"$prefix/lib" \
        $(pkg-config --libs-only-L vorna-core) -lvorna_core -Wl,-Bdynamic \
        $(pkg-config --static --libs vorna-core | sed "s/-lvorna_core//")
    compile_c pkg-config-c-static $(pkg-config --cflags vorna-c) -Wl,-Bstatic $(pkg-config --libs-only-L vorna-c) \
        -lvorna_c -lvorna_core -Wl,-Bdynamic \
        $(pkg-config --static --libs vorna-c | sed "s/-lvorna_[a-z]*//g")
    ;;
pkg-config-shared)
    compile pkg-config-shared $(pkg-config --cflags --libs vorna-core)
    compile_c pkg-config-c-shared $(pkg-config --cflags --libs vorna-c)
    compile_ui pkg-config-ui-shared $(pkg-config --cflags --libs vorna-ui)
    ;;
add-subdirectory)
    # The whole library once more; not optimised, to be quick.
    consume subdirectory -DVORNA_SOURCE="$source" -DCMAKE_BUILD_TYPE=None
    ;;
python)
    with_service "welcome_text = Hoş geldin! 👋" \
        "sdk_initialized,paywall_shown=ana ekran,level_up=7 🎉,lesson" \
        python3 "$source/examples/python/vorna_events.py" --library "$libraries/libvorna_c.so.0"
    ;;
qml)
    with_service "Hoş geldin! 👋" \
        "sdk_initialized,qml_started=ana ekran 🎉,onboarding_start,onboarding_finish" \
        "$source/scripts/on-display.sh" "$(qtpaths6 --query QT_INSTALL_BINS)/qml" \
        -I "$modules" "$source/tests/bindings/qml_app_test.qml" --
    ;;
core-only)
    # Without screens nothing asks for Qt. Not optimised, to be quick.
    cmake -S "$source" -B "$work/core-only" -G Ninja -DCMAKE_BUILD_TYPE=None -DVORNA_BUILD_UI=OFF -DVORNA_BUILD_TOOLS=OFF \
        -DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON >"$work/core-only.log" 2>&1 || { cat "$work/core-only.log"; exit 1; }
    cmake --build "$work/core-only" --target vorna-c >>"$work/core-only.log" ||
        { tail -n 40 "$work/core-only.log"; exit 1; }
    ! ldd "$work/core-only/examples/c/vorna-c" | grep -i qt
    ;;
symbols)
    "$source/tests/bindings/symbols.sh" "$libraries/libvorna_c.so" "$source/bindings/c/vorna/vorna.h"
    # What the shared libraries show is ours: the namespace, and what the compiler derives from its types.
    for name in core ui qml; do
        library=$libraries/libvorna_$name.so
        nm -D --defined-only --demangle "$library" | sed -E 's/^[0-9a-f]* +[A-Za-z] //' |
            grep -vE '^(typeinfo (name )?for |vtable for )?vorna::' >"$work/foreign" || true
        if [ -s "$work/foreign" ]; then
            echo "$library shows what is not its own:"
            head -n 20 "$work/foreign"
            exit 1
        fi
        echo "$name: $(nm -D --defined-only "$library" | wc -l) symbols, all ours"
    done
    ;;
*)
    echo "no step $step" >&2
    exit 2
    ;;
esac
