#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The rules of the house, as far as a program can judge them. Needs a configured build in build/dev.
set -uo pipefail
shopt -s lastpipe  # a rule at the end of a pipe counts
# Behind a pipe stands no grep -q: it ends at its first find, and whoever still writes then fails.
cd "$(dirname "$(readlink -f "$0")")/.."

failed=0
report() {
    echo "check: $1" >&2
    failed=1
}
# rule NAME: fails, showing them, when there are lines on standard input.
rule() {
    local found
    found=$(cat)
    if [ -n "$found" ]; then
        report "$1"
        printf '%s\n' "$found" | sed 's/^/    /' >&2
    fi
}

mapfile -t sources < <(scripts/sources.sh)

echo "check: format"
clang-format --dry-run --Werror "${sources[@]}" 2>&1 | grep 'error:' | rule 'not formatted; run make format'

echo "check: floors"
# Each folder of vorna/ and what it may include besides itself; see docs/architecture.md.
declare -A below=(
    [base]=''
    [text]='base'
    [json]='base text'
    [platform]='base json text'
    [device]='base platform json text'
    [config]='base device platform json text'
    [events]='base config device platform json text'
    [core]='base events config device platform json text'
    [documents]='base platform json text'
    [ui]='base documents core events config device platform json text'
)
for floor in "${!below[@]}"; do
    allowed=$(echo "$floor ${below[$floor]}" | tr ' ' '|' | sed 's/|*$//')
    grep -rnE '^#include <vorna/' "vorna/$floor" 2>/dev/null | grep -vE "#include <vorna/($allowed)/" |
        rule "vorna/$floor looks upwards"
done
for floor in "${!below[@]}"; do
    [ "$floor" = ui ] || grep -rnE '^#include <(Q[A-Z]|Qt)' "vorna/$floor" | rule "vorna/$floor includes Qt"
done
grep -rnE '^#include <vorna/platform/(curl|file|glib|linux)/' vorna --include='*' |
    grep -vE '^vorna/platform/(curl|file|glib|linux)/|^vorna/platform/Platform\.cpp:' |
    rule 'an adapter is named outside vorna/platform/Platform.cpp'
# What is public: the sets of headers of the libraries.
is_public() {
    sed -n '/FILE_SET HEADERS/,/)/p' vorna/CMakeLists.txt vorna/ui/CMakeLists.txt bindings/*/CMakeLists.txt |
        tr ' ' '\n' | tr -d ')' | grep -xE "$1|${1#vorna/}|${1#vorna/ui/}" >/dev/null
}
grep -rnE '^#include <(vorna|tools)/' tools examples bindings --include='*.cpp' --include='*.h' --include='*.c' |
    grep -vE '#include <tools/' |
    while IFS= read -r line; do
        is_public "$(sed -E 's/.*#include <(.*)>.*/\1/' <<<"$line")" || echo "$line"
    done | rule 'a host, tool or binding includes a header that is not public'
sed -E 's#//.*##; /^#ifdef __cplusplus/,/^#endif/d' bindings/c/vorna/vorna.h |
    grep -nE '\b(class|namespace|template|std|auto|nullptr|noexcept|constexpr|using)\b|&|::' |
    rule 'vorna.h is not C alone'

echo "check: public headers"
public=$(sed -n '/FILE_SET HEADERS/,/)/p' vorna/CMakeLists.txt | grep -oE '[a-z]+/[A-Za-z/]+\.h' | sed 's#^#vorna/#')
grep -nE '#include <(curl|boost|glib|gio|libsecret|utf8proc|openssl)' $public | rule 'a public header shows a third party'
grep -nE '^ *# *define' $(git ls-files --cached --others --exclude-standard -- '*.h' ':!vorna/base/Export.h') |
    rule 'a header defines a macro'
for header in $(git ls-files --cached --others --exclude-standard -- '*.h'); do
    grep -q '^#pragma once' "$header" || echo "$header"
done | rule 'a header without #pragma once'

echo "check: licence"
git grep --untracked -L 'SPDX-License-Identifier: Apache-2.0' -- '*.cpp' '*.h' '*.c' '*.qml' '*.sh' '*.py' '*.cmake' \
    '*CMakeLists.txt' Makefile .ci/run | rule 'a source file without its SPDX line'

echo "check: public headers alone, with clang"
# `make test` proves the same with g++. Here the sets' own compile commands, and vorna.h once more as C, run without
# the libraries that they belong to, so that nothing else has to be compiled.
cmake --preset clang >/dev/null 2>&1 || report 'the build for clang does not configure; try cmake --preset clang'
mapfile -t commands < <(python3 - <<'END'
import json
for entry in json.load(open("build/clang/compile_commands.json")):
    command = entry["command"] + " -fsyntax-only"
    if "_verify_interface_header_sets/" in entry["file"]:
        print(command)
    if entry["file"].endswith("vorna_c_verify_interface_header_sets/vorna/vorna.h.cxx"):
        print(command.replace("clang++", "clang").replace("-x c++", "-x c").replace("-std=c++20", "-std=c11"),
              "-Wstrict-prototypes")
END
)
for kind in vorna_{core,ui,c,qml}_verify_interface_header_sets/ ' -std=c11 '; do
    printf '%s\n' "${commands[@]}" | grep -F -e "$kind" | grep -F -e -Werror >/dev/null || report "no header is compiled as $kind"
done
printf '%s\n' "${commands[@]}" | xargs -d '\n' -P "$(nproc)" -n 1 bash -c '(eval "$1") 2>&1 || echo "failed: $1"' header |
    rule 'a public header does not compile alone'

echo "check: tests are registered"
for test in $(git ls-files --cached --others --exclude-standard -- 'tests/*_test.cpp'); do
    # By the lists of its own folder or of one above it.
    folder=$test
    known=
    while [ "$folder" != tests ] && [ -z "$known" ]; do
        folder=$(dirname "$folder")
        [ ! -e "$folder/CMakeLists.txt" ] || ! grep -qF "${test#"$folder"/}" "$folder/CMakeLists.txt" || known=yes
    done
    [ -n "$known" ] || echo "$test"
done | rule 'a test that no build knows'
ctest --test-dir build/dev --show-only 2>/dev/null | grep -E 'NOT_BUILT|Disabled' | rule 'tests that are not built or disabled'
grep -rnE 'DISABLED_' tests --include='*_test.cpp' | rule 'a disabled test'

echo "check: example documents"
scripts/documents.sh 2>&1 >/dev/null | rule 'an example document is not what vorna-lint should find in it'
scripts/schemas.sh check 2>&1 | rule 'generated files are out of date'

echo "check: manual pages"
scripts/manuals.sh | rule 'a manual page is not that of its program'

echo "check: version"
version=$(sed -nE 's/^project\(Vorna VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt)
grep -LF "\"Vorna $version\"" tools/*/*.1 | rule "a manual page is not of version $version"
head -n 1 debian/changelog | grep -vF "vorna ($version)" | rule "debian/changelog does not begin with version $version"
grep -qF "## $version" CHANGELOG.md || report "CHANGELOG.md does not know version $version"

echo "check: reference"
scripts/reference.sh 2>&1 | grep -v '^reference:' | rule 'Doxygen has something to say'

echo "check: words"
words='\b[Pp]arts? [0-9]+\.[0-9]|\bspec\.md\b|\bthe (spec|specification)\b|\b(per|in|by|see) (the )?spec\b|\bissue #?[0-9]+\b|\bshared/(spec|design|style)'
git grep -nIE --untracked "$words" -- . ':!scripts/check.sh' | rule 'words that do not belong in the project'
git log --format='%h %s%n%b' | grep -nE "$words" | rule 'words that do not belong in a commit message'
git grep -nIE --untracked '\b(new|delete) [A-Za-z_:<>]+[({;]|\bdelete\[\]' -- '*.cpp' '*.h' | grep -vE '//.*\b(new|delete)\b|"[^"]*\b(new|delete)\b' |
    rule 'a raw new or delete'

echo "check: folders have a README"
for folder in $(find vorna -type d) bindings bindings/c bindings/qml tools examples examples/{c,python,qml-app} \
    tests tests/bindings bench docs; do
    [ -e "$folder/README.md" ] || echo "$folder"
done | rule 'a folder without README.md'

echo "check: QML"
cmake --build build/dev --target vorna_ui_qmllint 2>&1 | grep -E '^(Warning|Error)|FAILED' | rule 'qmllint'

if [ "${CHECK_FAST:-}" = "" ]; then
    echo "check: clang-tidy (this takes a while)"
    # Tests and benchmarks are left out: the macros of their frameworks trip too many of its checks.
    printf '%s\n' "${sources[@]}" | grep -E '^(vorna|tools|examples|bindings)/.*\.cpp$' | while IFS= read -r file; do
        grep -qF "\"$PWD/$file\"" build/dev/compile_commands.json && echo "$file"
    done | xargs -P "$(nproc)" -n 4 clang-tidy -p build/dev --quiet \
            --extra-arg=-Wno-unknown-warning-option 2>/dev/null | grep -E 'error:|warning:' | grep -v '^/usr/' | sort -u |
        rule 'clang-tidy'
fi

[ "$failed" -eq 0 ] && echo "check: all well"
exit "$failed"
