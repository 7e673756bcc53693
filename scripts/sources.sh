#!/usr/bin/env bash
# Lists the C++ files of the project, one a line.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
git ls-files --cached --others --exclude-standard -- '*.cpp' '*.h' | while IFS= read -r file; do
    [ -e "$file" ] && echo "$file"
done
