# Runs the tests of a script; to be sourced by its *Test.sh, which calls run_tests at the end.
#
# Each function test_* runs in a shell and an empty folder of its own, with "set -e": the first command that fails fails the
# test. CTest sets ORVA_BUILD_DIR, and in ORVA_NEWER_VERSION the version whose setup program is there.
#
# publish STATUS ARGUMENT...     ./publish has to end with this status; its output is then in the files stdout and stderr.
# expect_equal EXPECTED ACTUAL
# expect_lines FILE LINE...      these, and no others, are its lines.
# replace_program NAME <SCRIPT   ./publish finds this one instead of the system's, which is $real_NAME there.
# fails COMMAND...               "! COMMAND" alone fails no test.
# make_update STATUS ARGUMENT... publish STATUS make, for that version with a text in English, into the folder out; $installer
#                                and $link may be changed.
# shellcheck shell=bash
set -euo pipefail

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
export ORVA_IS_BUILT=1
# Never the one of ./publish itself, which it would end.
export ORVA_WINE_ROOT=${ORVA_WINE_ROOT:-$repository/build/wine}
version=$ORVA_NEWER_VERSION
installer_name=OrvaSetup-$version.exe
installer=$ORVA_BUILD_DIR/newer/$installer_name
link=http://www.orva.example/downloads/outlook/$installer_name

publish() {
    local expected=$1 status=0
    shift
    "$repository/publish" "$@" >stdout 2>stderr </dev/null || status=$?
    [ "$status" -eq "$expected" ] || {
        echo "./publish $* ended with status $status, not $expected:" >&2
        cat stdout stderr >&2
        return 1
    }
}

make_update() {
    [ -e english ] || echo 'Faster at the start.' >english
    publish "$1" make --version "$version" --installer "$installer" --link "$link" --description default=english --out out "${@:2}"
}

fails() { ! "$@"; }

expect_equal() {
    [ "$1" = "$2" ] || {
        printf 'expected: %s\nis:       %s\n' "$1" "$2" >&2
        return 1
    }
}

expect_lines() {
    local file=$1
    shift
    diff <(printf '%s\n' "$@") "$file" >&2
}

replace_program() {
    mkdir -p programs
    { printf '#!/usr/bin/env bash\nreal_%s=%q\n' "$1" "$(command -v "$1")" && cat; } >"programs/$1"
    chmod +x "programs/$1"
    PATH=$PWD/programs:$PATH
}

run_tests() {
    local name folder status failed=0 count=0
    for name in $(compgen -A function test_); do
        folder=$(mktemp -d)
        set +e
        (
            set -eE
            trap 'echo "${BASH_SOURCE[0]##*/}:$LINENO: $BASH_COMMAND" >&2' ERR
            umask 022
            cd "$folder" || exit 1
            "$name"
        )
        status=$?
        set -e
        rm -rf "$folder"
        count=$((count + 1))
        [ "$status" -eq 0 ] || {
            echo "FAILED: ${name#test_}"
            failed=$((failed + 1))
        }
    done
    echo "$count tests, $failed failed"
    [ "$failed" -eq 0 ] && [ "$count" -gt 0 ]
}
