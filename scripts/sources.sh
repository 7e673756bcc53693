#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Lists the C++ files of the project, one per line.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
git ls-files --cached --others --exclude-standard -- '*.cpp' '*.h' | while IFS= read -r file; do
    [ -e "$file" ] && echo "$file"
done
