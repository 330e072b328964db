# Private Wine prefixes with a display each, shared by the tools; to be sourced by bash.
#
# take_slot     sets and locks $slot, a folder; the lock lasts as long as this shell.
# start_slot D  makes prefix and display of slot D ready and exports WINEPREFIX, DISPLAY and Wine's settings.
# stop_slots    ends the displays and Wine servers of every slot, by the ids noted when they were started.

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
wine_root=${ORVA_WINE_ROOT:-$repository/build/wine}
wine_slots=${ORVA_WINE_SLOTS:-2}
screen_size=1280x1024x24

take_slot() {
    local number
    mkdir -p "$wine_root"
    for ((number = 0; number < wine_slots; number++)); do
        slot=$wine_root/slot$number
        mkdir -p "$slot"
        exec 9>"$slot/lock"
        flock -n 9 && return
    done
    # All are taken: wait for one, spread over the slots.
    slot=$wine_root/slot$((RANDOM % wine_slots))
    exec 9>"$slot/lock"
    flock 9
}

is_running() { [ -s "$1" ] && kill -0 "$(cat "$1")" 2>/dev/null; }

start_display() {
    local dir=$1
    if ! is_running "$dir/xvfb.pid"; then
        rm -f "$dir/display" && mkfifo "$dir/display.fifo.$$"
        Xvfb -displayfd 3 -screen 0 "$screen_size" -nolisten tcp 3>"$dir/display.fifo.$$" 9>&- >/dev/null 2>&1 &
        echo $! >"$dir/xvfb.pid"
        head -n 1 "$dir/display.fifo.$$" >"$dir/display"
        rm -f "$dir/display.fifo.$$" "$dir/openbox.pid"
    fi
    export DISPLAY=:$(cat "$dir/display")
    if ! is_running "$dir/openbox.pid"; then
        openbox 9>&- >/dev/null 2>&1 &
        echo $! >"$dir/openbox.pid"
    fi
}

start_slot() {
    local dir=$1
    # Neither .NET nor the HTML engine is used; without them a prefix is made in seconds and asks nothing.
    export WINEPREFIX=$dir/prefix WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
    export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
    if [ -n "${ORVA_WINE_DISPLAY:-}" ]; then
        export DISPLAY=$ORVA_WINE_DISPLAY
    else
        start_display "$dir"
    fi
    if [ ! -e "$dir/prefix.ready" ]; then
        wineboot --init 9>&- >"$dir/wineboot.log" 2>&1
        wineserver -w 9>&-
        touch "$dir/prefix.ready"
    fi
    # Keeps Wine's server alive between two programs, which saves a second at each start.
    wineserver -p 9>&- 2>/dev/null || true
}

stop_slots() {
    local dir pid
    for dir in "$wine_root"/slot*; do
        [ -d "$dir" ] || continue
        [ -e "$dir/prefix.ready" ] && WINEPREFIX=$dir/prefix wineserver -k 2>/dev/null
        for pid in "$dir/openbox.pid" "$dir/xvfb.pid"; do
            is_running "$pid" && kill "$(cat "$pid")" 2>/dev/null
            rm -f "$pid"
        done
    done
    return 0
}
