#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks those of the project's rules that a program can check. Needs a finished build in build/dev.
set -uo pipefail
shopt -s lastpipe  # a rule at the end of a pipe counts
# No grep -q at the end of a pipe: it exits at its first match, and the writer then fails.
cd "$(dirname "$(readlink -f "$0")")/.."

failed=0
report() {
    echo "check: $1" >&2
    failed=1
}
# rule NAME: fails and prints standard input if that is not empty.
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
# Each folder of vorna/ and the other folders that it may include; see docs/architecture.md.
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
        rule "vorna/$floor includes a floor above it"
done
# The same for the folders of vorna/ui; the last onboarding step is a paywall.
declare -A below_in_ui=([common]='' [eventlist]='common' [paywall]='common' [onboarding]='common paywall')
for floor in "${!below_in_ui[@]}"; do
    allowed=$(echo "$floor ${below_in_ui[$floor]}" | tr ' ' '|' | sed 's/|*$//')
    grep -rnE '^#include <vorna/ui/' "vorna/ui/$floor" | grep -vE "#include <vorna/ui/($allowed)/" |
        rule "vorna/ui/$floor includes a floor above it"
done
for floor in "${!below[@]}"; do
    [ "$floor" = ui ] || grep -rnE '^#include <(Q[A-Z]|Qt)' "vorna/$floor" | rule "vorna/$floor includes Qt"
done
grep -rnE '^#include <vorna/platform/(curl|file|glib|linux)/' vorna --include='*' |
    grep -vE '^vorna/platform/(curl|file|glib|linux)/|^vorna/platform/Platform\.cpp:' |
    rule 'an adapter is included outside vorna/platform/Platform.cpp'
for adapter in curl file glib linux; do
    grep -rnE '^#include <vorna/platform/(curl|file|glib|linux)/' "vorna/platform/$adapter" |
        grep -v "#include <vorna/platform/$adapter/" | rule "vorna/platform/$adapter includes another adapter's folder"
done
# A header and its source are one module. tsort names the members of a circle.
grep -rE '^#include <vorna/' vorna --include='*.h' --include='*.cpp' |
    sed -E 's#^([^:]+)\.[a-z]+:.include <(.*)\.h>#\1 \2#' | awk '$1 != $2' | sort -u | tsort 2>&1 >/dev/null |
    rule 'modules include each other in a circle'
grep -rnE '^\s*(inline |constinit |thread_local )*static\b' vorna/ui --include='*.h' --include='*.cpp' |
    grep -vE '\(|static_cast|static_assert|constexpr|const char|vorna/ui/common/ScreensRuntime\.h' |
    rule 'process-wide state of the screens outside ScreensRuntime'
# Public headers are those in the libraries' header sets.
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
    rule 'vorna.h contains C++'

echo "check: public headers"
public=$(sed -n '/FILE_SET HEADERS/,/)/p' vorna/CMakeLists.txt | grep -oE '[a-z]+/[A-Za-z/]+\.h' | sed 's#^#vorna/#')
grep -nE '#include <(curl|boost|glib|gio|libsecret|utf8proc|openssl)' $public | rule 'a public header includes a third party'
grep -nE '^ *# *define' $(git ls-files --cached --others --exclude-standard -- '*.h' ':!vorna/base/Export.h') |
    rule 'a header defines a macro'
for header in $(git ls-files --cached --others --exclude-standard -- '*.h'); do
    grep -q '^#pragma once' "$header" || echo "$header"
done | rule 'a header without #pragma once'

echo "check: licence"
git grep --untracked -L 'SPDX-License-Identifier: Apache-2.0' -- '*.cpp' '*.h' '*.c' '*.qml' '*.sh' '*.py' '*.cmake' \
    '*CMakeLists.txt' Makefile .ci/run | rule 'a source file without its SPDX line'

echo "check: public headers alone, with clang"
# `make test` does the same with g++. These are the compile commands of the sets, and of vorna.h also as C, run alone, so
# that the libraries need not be compiled.
cmake --preset clang >/dev/null 2>&1 || report 'cannot configure the build for clang; try cmake --preset clang'
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

# Precompiled headers bring these to every test.
git grep --untracked -lE '^(TEST|TEST_F|TEST_P)\(' -- 'tests/*.cpp' | xargs -r grep -LE '#include <(gtest/gtest|gmock/gmock)\.h>' |
    rule 'a test includes neither gtest nor gmock'
git grep --untracked -lE '\bQTest::' -- 'tests/*.cpp' 'tests/*.h' | xargs -r grep -L '#include <QtTest/' |
    rule 'a test uses QTest without its header'

echo "check: tests are registered"
for test in $(git ls-files --cached --others --exclude-standard -- 'tests/*_test.cpp'); do
    # In the list of its folder or of one above it.
    folder=$test
    known=
    while [ "$folder" != tests ] && [ -z "$known" ]; do
        folder=$(dirname "$folder")
        [ ! -e "$folder/CMakeLists.txt" ] || ! grep -qF "${test#"$folder"/}" "$folder/CMakeLists.txt" || known=yes
    done
    [ -n "$known" ] || echo "$test"
done | rule 'a test that is in no CMakeLists.txt'
ctest --test-dir build/dev --show-only 2>/dev/null | grep -E 'NOT_BUILT|Disabled' | rule 'tests that are not built or disabled'
grep -rnE 'DISABLED_' tests --include='*_test.cpp' | rule 'a disabled test'

echo "check: example documents"
scripts/documents.sh 2>&1 >/dev/null | rule 'vorna-lint does not find what is expected in an example document'
scripts/schemas.sh check 2>&1 | rule 'generated files are out of date'

echo "check: manual pages"
scripts/manuals.sh | rule 'a manual page differs from its program'

echo "check: version"
version=$(sed -nE 's/^project\(Vorna VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt)
grep -LF "\"Vorna $version\"" tools/*/*.1 | rule "a manual page is not of version $version"
head -n 1 debian/changelog | grep -vF "vorna ($version)" | rule "debian/changelog does not begin with version $version"
grep -qF "## $version" CHANGELOG.md || report "CHANGELOG.md has no section for version $version"

echo "check: reference"
scripts/reference.sh 2>&1 | grep -v '^reference:' | rule 'Doxygen warns'

echo "check: words"
words='\b[Pp]arts? [0-9]+\.[0-9]|\bspec\.md\b|\bthe (spec|specification)\b|\b(per|in|by|see) (the )?spec\b|\bissue #?[0-9]+\b|\bshared/(spec|design|style)'
git grep -nIE --untracked "$words" -- . ':!scripts/check.sh' | rule 'words that do not belong in the project'
git log --format='%h %s%n%b' | grep -nE "$words" | rule 'words that do not belong in a commit message'
git grep -nIE --untracked '\b(new|delete) [A-Za-z_:<>]+[({;]|\bdelete\[\]' -- '*.cpp' '*.h' | grep -vE '//.*\b(new|delete)\b|"[^"]*\b(new|delete)\b' |
    rule 'a raw new or delete'

echo "check: spelling"
# British in prose. Other spellings, from standards and other libraries, belong in code, not in comments.
git grep --untracked -nwiE '(initializ|serializ|recogniz|optimiz|normaliz|organiz|synchroniz|analyz)(e|es|ed|ing|ation|er)|behaviors?|honor(s|ed)?|favor(s|ed|ite)?|centered|canceled|labeled|catalog' \
    -- '*.md' '*.1' ':!LICENSE' | grep -v 'Boost.JSON' | rule 'American spelling'
git grep --untracked -nwiE '//.*((initializ|serializ|recogniz|optimiz|normaliz|organiz|synchroniz|analyz)(e|es|ed|ing|ation|er)|behaviors?|honor(s|ed)?|favor(s|ed|ite)?|centered|canceled|labeled|catalog)' \
    -- '*.h' '*.cpp' '*.qml' | grep -v -e 'Boost.JSON' -e 'sdk_initialized' | rule 'American spelling'

echo "check: folders have a README"
for folder in $(find vorna -type d) bindings bindings/c bindings/qml tools examples examples/{c,python,qml-app} \
    tests tests/bindings bench docs; do
    [ -e "$folder/README.md" ] || echo "$folder"
done | rule 'a folder without README.md'

echo "check: QML"
cmake --build build/dev --target vorna_ui_qmllint 2>&1 | grep -E '^(Warning|Error)|FAILED' | rule 'qmllint'

if [ "${CHECK_FAST:-}" = "" ]; then
    echo "check: clang-tidy (minutes the first time, then only what has changed)"
    # Not the tests and benchmarks: the macros of their frameworks trip too many of its checks.
    printf '%s\n' "${sources[@]}" | grep -E '^(vorna|tools|examples|bindings)/.*\.cpp$' | xargs scripts/tidy.py 2>&1 |
        rule 'clang-tidy'
fi

[ "$failed" -eq 0 ] && echo "check: passed"
exit "$failed"
