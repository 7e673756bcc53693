#!/usr/bin/env bash
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
    LD_LIBRARY_PATH=$prefix/lib/x86_64-linux-gnu:$prefix/lib "$work/$name" "$work/$name-data"
}

mkdir -p "$work"
export PKG_CONFIG_PATH=$(echo "$prefix"/lib*/pkgconfig "$prefix"/lib/*/pkgconfig | tr ' ' ':')
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
    ldd "$work/shared/consumer" | grep -q libvorna_core.so
    unload shared
    ;;
cmake-default)
    consume default -DCMAKE_PREFIX_PATH="$prefix"
    ;;
pkg-config-static)
    compile pkg-config-static $(pkg-config --cflags vorna-core) -Wl,-Bstatic -L"$prefix/lib" \
        $(pkg-config --libs-only-L vorna-core) -lvorna_core -Wl,-Bdynamic \
        $(pkg-config --static --libs vorna-core | sed "s/-lvorna_core//")
    ;;
pkg-config-shared)
    compile pkg-config-shared $(pkg-config --cflags --libs vorna-core)
    ;;
add-subdirectory)
    consume subdirectory -DVORNA_SOURCE="$source"
    ;;
symbols)
    # What the shared library shows is ours: the namespace, and what the compiler derives from its types.
    library=$(find "$prefix" -name 'libvorna_core.so' | head -n 1)
    nm -D --defined-only --demangle "$library" | sed -E 's/^[0-9a-f]* +[A-Za-z] //' |
        grep -vE '^(typeinfo (name )?for |vtable for )?vorna::' >"$work/foreign" || true
    if [ -s "$work/foreign" ]; then
        echo "The shared library shows what is not its own:"
        head -n 20 "$work/foreign"
        exit 1
    fi
    echo "$(nm -D --defined-only "$library" | wc -l) symbols, all ours"
    ;;
*)
    echo "no step $step" >&2
    exit 2
    ;;
esac
