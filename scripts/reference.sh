#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the reference of the public headers in build/docs/html; fails on any Doxygen warning.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
headers=
for list in vorna vorna/ui bindings/c bindings/qml; do
    for header in $(sed -n '/FILE_SET HEADERS/,/)/p' "$list/CMakeLists.txt" | grep -oE '[A-Za-z/]+\.h'); do
        headers+=" $list/$header"
    done
done
mkdir -p build/docs
sed "s#@HEADERS@#$headers#" docs/Doxyfile.in >build/docs/Doxyfile
doxygen build/docs/Doxyfile
echo "reference: build/docs/html/index.html"
