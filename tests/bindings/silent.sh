#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# silent.sh COMMAND...: runs it; fails when it fails or says anything.
output=$("$@" 2>&1) && [ -z "$output" ] && exit 0
printf '%s\n' "$output"
exit 1
