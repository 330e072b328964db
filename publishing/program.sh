# Runs OrvaPublish.exe, which reads update files with the add-in's own code; to be sourced by ./publish and its commands.
#
# prepare_program           builds it and makes Wine ready.
# build_quietly TARGET...   unless ORVA_IS_BUILT is set.
# read_arguments WORD...    sets check_arguments to those of "OrvaPublish.exe check", with paths in their form in Wine.
# run_check                 runs it with these. The status is the program's.
# start_wine                makes Wine ready.
# windows_path PATH         its form in Wine.
#
# Wine's prefix is one of our own, so that neither ./run nor a test is disturbed.
# shellcheck shell=bash disable=SC2154 # variables of tools/prepare-lib.sh

windows_path() {
    local path
    path=$(realpath "$1")
    echo "Z:${path//\//\\}"
}

start_wine() {
    local is_ours=
    if [ -z "${ORVA_WINE_ROOT:-}" ]; then
        export ORVA_WINE_ROOT=$repository/build/publish ORVA_WINE_SLOTS=1
        is_ours=1
    fi
    # shellcheck source=tools/wine-lib.sh
    source "$repository/tools/wine-lib.sh"
    take_slot
    # Not before, or one that is interrupted while it waits would end the other. Those of ORVA_WINE_ROOT are ended by whoever
    # set it.
    [ -z "$is_ours" ] || at_exit stop_slots
    start_slot "$slot"
}

build_quietly() {
    [ -z "${ORVA_IS_BUILT:-}" ] || return 0
    install_packages >&2
    mkdir -p "$repository/build"
    echo "Building (the first time takes a few minutes)" >&2
    configure_and_build "$@" >"$repository/build/publish-build.log" 2>&1 || {
        tail -n 40 "$repository/build/publish-build.log" >&2
        refuse "the build failed; see build/publish-build.log"
    }
}

prepare_program() {
    build_quietly OrvaPublish
    start_wine
}

check_arguments=()
read_arguments() {
    check_arguments=()
    while [ $# -gt 0 ]; do
        case $1 in
        --installer | --public-key)
            check_arguments+=("$1")
            if [ $# -ge 2 ]; then
                [ -f "$2" ] || fail "there is no file $2"
                check_arguments+=("$(windows_path "$2")")
                shift
            fi
            ;;
        --installed)
            check_arguments+=("${@:1:2}")
            [ $# -lt 2 ] || shift
            ;;
        -* | *://*) check_arguments+=("$1") ;;
        *)
            [ -f "$1" ] || fail "there is no file $1"
            check_arguments+=("$(windows_path "$1")")
            ;;
        esac
        shift
    done
}

# is_whole_report FILE: whether it ends as the report on an update without errors does.
is_whole_report() {
    if [[ " ${check_arguments[*]} " == *" --json "* ]]; then
        jq -e '.errors == [] and has("users")' "$1" >/dev/null 2>&1
    else
        tail -n 1 "$1" | grep -qxE 'no errors, (no|[0-9]+) warnings?'
    fi
}

run_check() {
    local status attempt
    # Seen under Wine 8: a program ends before it has started. And when its Wine server ends, it ends with status 0, wherever
    # it is.
    for attempt in 1 2; do
        status=0
        run_in_slot "$build_dir/OrvaPublish.exe" check "${check_arguments[@]}" >/dev/null || status=$?
        # A program that has ended by itself has something to say.
        if [ "$status" -eq 0 ] && is_whole_report "$slot/output.log" ||
            [ "$status" -ne 0 ] && [ -s "$slot/output.log" ]; then
            cat "$slot/output.log"
            return "$status"
        fi
    done
    # With a line end behind it.
    awk 1 "$slot/output.log" >&2
    refuse "Wine ended the program with status $status before its report was complete, in $attempt attempts"
}
