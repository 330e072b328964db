# Prints a demonstration line by line as it happens, and checks that what was asked for was seen; to be sourced by bash.
#
# begin_story TRACE REQUESTS   starts the clock; TRACE and REQUESTS are the logs that catch_up reads.
# tell WHO TEXT       prints a line with its time.
# catch_up            handles the lines added to the two logs since the last call.
# asked FACT TEXT     notes what must be seen to happen.
# seen FACT [TEXT]    notes that it was seen, and prints TEXT if it is given.
# end_story           prints what was asked for and not seen, and fails if there is any.
# shellcheck shell=bash

declare -A asked_facts=() seen_facts=()
asked_order=()

begin_story() {
    story_start=${EPOCHREALTIME/[.,]/}
    story_trace=$1
    story_requests=$2
    trace_lines=0
    request_lines=0
}

tell() {
    local tenths=$(((${EPOCHREALTIME/[.,]/} - story_start) / 100000))
    printf '%4d.%d s  %-9s %s\n' $((tenths / 10)) $((tenths % 10)) "$1" "$2"
}

asked() {
    asked_facts[$1]=$2
    asked_order+=("$1")
}

seen() {
    seen_facts[$1]=1
    [ $# -lt 2 ] || tell seen "$2"
}

# new_lines FILE COUNT: the complete lines after the first COUNT.
new_lines() {
    [ -e "$1" ] || return 0
    local complete
    complete=$(wc -l <"$1")
    [ "$complete" -le "$2" ] || sed -n "$(($2 + 1)),${complete}p" "$1"
}

catch_up() {
    local line lines
    mapfile -t lines < <(new_lines "$story_requests" "$request_lines")
    request_lines=$((request_lines + ${#lines[@]}))
    for line in "${lines[@]}"; do
        request_seen "$line"
    done
    mapfile -t lines < <(new_lines "$story_trace" "$trace_lines")
    trace_lines=$((trace_lines + ${#lines[@]}))
    for line in "${lines[@]}"; do
        # Without the trace's own times, whose clock starts a little later than ours.
        line=${line#"${line%%[![:space:]]*}"}
        line=${line%$'\r'}
        trace_seen "${line#* }"
    done
}

end_story() {
    local fact missing=0
    for fact in "${asked_order[@]}"; do
        if [ -z "${seen_facts[$fact]:-}" ]; then
            [ "$missing" -ne 0 ] || echo "NOT seen to happen:"
            missing=1
            echo "  - ${asked_facts[$fact]}"
        fi
    done
    [ "$missing" -eq 0 ] || return 1
    echo "Seen to happen:"
    for fact in "${asked_order[@]}"; do
        echo "  - ${asked_facts[$fact]}"
    done
}
