#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# symbols.sh LIBRARY HEADER: the library exports exactly what the header declares, with the version VORNA_0.
set -euo pipefail
diff <(nm -D --defined-only "$1" | awk '$2 != "A" { print $3 }' | sort) \
    <(grep -oE '^(extern const char\* const |[a-z].*[ *])vorna_[a-z_]+[(;]' "$2" | grep -v typedef |
        grep -oE 'vorna_[a-z_]+[(;]$' | sed 's/.$/@@VORNA_0/' | sort)
