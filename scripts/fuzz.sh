#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs each fuzz target for the given time:  fuzz.sh SECONDS
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
seconds=$1

sed -n 's/^vorna_add_fuzz_target(\(.*\) \(.*\))$/\1 \2/p' tests/fuzz/CMakeLists.txt | while read -r target seeds; do
    echo "== $target, $seconds s"
    corpus=build/fuzz/corpus/$seeds
    mkdir -p "$corpus" "tests/fuzz/failures/$seeds"
    build/fuzz/tests/fuzz/"${target}_fuzz" -max_total_time="$seconds" -print_final_stats=1 -verbosity=0 \
        -artifact_prefix="tests/fuzz/failures/$seeds/" "$corpus" "tests/fuzz/seeds/$seeds" 2>&1 |
        grep -E 'number_of_executed_units|new_units_added|ERROR|SUMMARY|Test unit' || true
    rmdir --ignore-fail-on-non-empty "tests/fuzz/failures/$seeds"
    if [ -d "tests/fuzz/failures/$seeds" ]; then
        echo "$target: failures under tests/fuzz/failures/$seeds" >&2
        exit 1
    fi
done
