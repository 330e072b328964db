# The thorough form of ./test, to be sourced by it.
#
# run_thoroughly   runs every test in its long form, all of them again in the build with run-time checks, and makes
#                  docs/reliability.md. Ends the shell with status 0 only if nothing failed.
# stop_fuzzing     ends the fuzzers if they still run; for the caller's trap.
# shellcheck shell=bash
# shellcheck source=tools/prepare-lib.sh
source "${BASH_SOURCE[0]%/*}/prepare-lib.sh"

# note_suite NAME LOG SECONDS: a row of the report about one run, from the line in which CTest counts the tests.
note_suite() {
    local name=$1 log=$2 seconds=$3 failed total
    read -r failed total < <(sed -n 's/^[0-9]*% tests passed, \([0-9]*\) tests failed out of \([0-9]*\)$/\1 \2/p' "$log" | tail -n 1)
    mkdir -p "$build_dir/report"
    printf '%s\t%s\t%s\t%s\n' "$name" "$total" "$failed" "$seconds" >>"$build_dir/report/suites.tsv"
}

# run_suite NAME DIR CTEST-ARGUMENTS...
run_suite() {
    local name=$1 dir=$2 log start status=0
    shift 2
    log=$build_dir/thorough-${name// /-}.log
    start=$SECONDS
    run_ctest "$dir" "$@" >"$log" 2>&1 || status=$?
    note_suite "$name" "$log" "$((SECONDS - start))"
    echo
    echo "== $name"
    cat "$log"
    return "$status"
}

fuzzing=

stop_fuzzing() {
    [ -z "$fuzzing" ] || kill -- "-$fuzzing" 2>/dev/null || true
}

run_thoroughly() {
    local failed=0
    # The fuzzers take five minutes each and run at low priority. Job control gives them a process group, which
    # stop_fuzzing ends.
    set -m
    {
        renice -n 19 -p "$BASHPID" >/dev/null
        ORVA_THOROUGH=1 run_suite "fuzzing" "$build_dir" -L fuzz -j "$(nproc)"
    } &
    fuzzing=$!
    set +m
    ORVA_THOROUGH=1 run_suite "long form" "$build_dir" -LE fuzz -j "$ORVA_WINE_SLOTS" || failed=1
    run_suite "checked" "$checked_dir" -j "$ORVA_WINE_SLOTS" || failed=1
    wait "$fuzzing" || failed=1
    fuzzing=
    # SECONDS also counts preparing and building, since ./test was called.
    echo
    if [ "$failed" -ne 0 ]; then
        echo "The thorough run FAILED after $((SECONDS / 60)) minutes; docs/reliability.md stays as it was."
        exit 1
    fi
    "$repository/tools/make-reliability" "$build_dir" "$(((SECONDS + 59) / 60))"
    echo "The thorough run passed after $((SECONDS / 60)) min $((SECONDS % 60)) s. docs/reliability.md is new."
    exit 0
}
