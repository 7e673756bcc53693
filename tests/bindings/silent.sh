#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# silent.sh COMMAND...: runs it; fails if it fails or prints anything.
output=$("$@" 2>&1) && [ -z "$output" ] && exit 0
printf '%s\n' "$output"
exit 1
