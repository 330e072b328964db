# Private Wine prefixes with a display each, shared by the tools; to be sourced by bash.
#
# take_slot     sets and locks $slot, a folder; the lock lasts as long as this shell.
# start_slot D  makes prefix and display of slot D ready and exports WINEPREFIX, DISPLAY and Wine's settings.
# make_slots    does so with every slot.
# run_in_slot PROGRAM.exe [ARGUMENTS...]   runs it in the slot that was started, until it ends; the status is its own.
# stop_slots    ends the displays and Wine servers of every slot, by the ids noted when they were started.
#
# Descriptor 9 holds the lock. Processes that outlive this shell are started without it (9>&-), or the slot would stay
# locked.
# shellcheck shell=bash

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
    [ "$wine_slots" -gt 1 ] || echo "Waiting for another run in $wine_root to end" >&2
    # All are taken: wait for one, spread over the slots.
    slot=$wine_root/slot$((RANDOM % wine_slots))
    exec 9>"$slot/lock"
    flock 9
}

# is_running FILE: whether the process whose id FILE holds still runs. After a reboot the id may belong to another
# process, which then is younger than the file.
is_running() {
    local file=$1 pid boot_time stat ticks
    [ -s "$file" ] && pid=$(<"$file") && kill -0 "$pid" 2>/dev/null || return 1
    boot_time=$(awk '$1 == "btime" { print $2 }' /proc/stat)
    stat=$(<"/proc/$pid/stat") 2>/dev/null || return 1
    # The 22nd field, counted after the name in brackets, which may hold blanks.
    read -r -a stat <<<"${stat##*) }"
    [ "${stat[0]}" != Z ] || return 1
    ticks=${stat[19]}
    # Two seconds for the rounding of either time.
    ((boot_time + ticks / $(getconf CLK_TCK) <= $(stat -c %Y "$file") + 2))
}

start_display() {
    local dir=$1 pid
    if ! is_running "$dir/xvfb.pid"; then
        rm -f "$dir/display" "$dir/openbox.pid"
        : >"$dir/display"
        Xvfb -displayfd 1 -screen 0 "$screen_size" -nolisten tcp 9>&- >"$dir/display" 2>"$dir/xvfb.log" &
        pid=$!
        echo "$pid" >"$dir/xvfb.pid"
        # Xvfb writes the number of its display, and a line end, once it takes connections.
        wait_until 30 test_line "$dir/display" || { echo "$dir: Xvfb did not start:" >&2; cat "$dir/xvfb.log" >&2; return 1; }
    fi
    DISPLAY=:$(<"$dir/display")
    export DISPLAY
    if ! is_running "$dir/openbox.pid"; then
        rm -f "$dir/openbox.ready"
        openbox --config-file "$repository/tools/openbox.xml" --startup "touch '$dir/openbox.ready'" 9>&- >"$dir/openbox.log" 2>&1 &
        echo $! >"$dir/openbox.pid"
        # A window that is mapped earlier would stay without caption and focus.
        wait_until 30 test -e "$dir/openbox.ready" || { echo "$dir: openbox did not start" >&2; return 1; }
    fi
}

test_line() { [ "$(wc -l <"$1")" -ge 1 ]; }

# wait_until SECONDS COMMAND...: runs COMMAND every 50 ms until it succeeds; fails when the time is over.
wait_until() {
    local deadline=$((SECONDS + $1))
    shift
    until "$@"; do
        ((SECONDS < deadline)) || return 1
        sleep 0.05
    done
}

# Settings that every private prefix gets, for Wine's regedit.
prefix_settings() {
    cat <<'END'
REGEDIT4

; A crash ends the program, with no window that waits for somebody to close it.
[HKEY_CURRENT_USER\Software\Wine\WineDbg]
"ShowCrashDialog"=dword:00000000

[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\AeDebug]
"Auto"="1"

; 96 dots an inch, as on a desktop with Windows' default size of text.
[HKEY_CURRENT_USER\Control Panel\Desktop]
"LogPixels"=dword:00000060
"FontSmoothing"="2"
"FontSmoothingType"=dword:00000001

; The dialogs' shell font has Tahoma's measures.
[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\FontSubstitutes]
"MS Shell Dlg"="Tahoma"
"MS Shell Dlg 2"="Tahoma"
END
}

make_prefix() {
    local dir=$1
    if [ -d "$dir/prefix" ]; then
        wineserver -k 2>/dev/null || true
        wineserver -w
        rm -rf "$dir/prefix" "$dir/prefix.ready"
    fi
    # Wine does not find the fonts where Debian puts them. Without them dialogs have other sizes than on Windows, and
    # the System font's replacement may break lines elsewhere, which crashes SysLink controls.
    mkdir -p "$dir/prefix/drive_c/windows/Fonts"
    ln -s /usr/share/wine/fonts/*.{ttf,fon} "$dir/prefix/drive_c/windows/Fonts/"
    wineboot --init 9>&- >"$dir/wineboot.log" 2>&1 || { cat "$dir/wineboot.log" >&2; return 1; }
    prefix_settings >"$dir/settings.reg"
    wine regedit /S "Z:${dir//\//\\}\\settings.reg" 9>&- >>"$dir/wineboot.log" 2>&1
    wineserver -w 9>&-
    prefix_settings >"$dir/prefix.ready"
}

start_slot() {
    local dir=$1
    export WINEPREFIX=$dir/prefix WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
    # In another encoding than UTF-8, file names with characters beyond it could not exist.
    export LC_ALL=C.UTF-8
    # Neither .NET nor the HTML engine is used; without them a prefix is made in seconds and without questions.
    # The menu builder would write menus into the user's home folder.
    export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
    if [ -n "${ORVA_WINE_DISPLAY:-}" ]; then
        export DISPLAY=$ORVA_WINE_DISPLAY
    else
        start_display "$dir"
    fi
    # Made anew when the settings have changed since.
    [ "$(cat "$dir/prefix.ready" 2>/dev/null)" = "$(prefix_settings)" ] || make_prefix "$dir"
    # Keeps Wine's server alive between two programs, which saves a second at each start. Its services are started here
    # and not by the first program: they would hold its output open, and its reader would wait for them.
    if wineserver -p 9>&- >/dev/null 2>&1; then
        wineboot 9>&- </dev/null >/dev/null 2>&1 || true
    fi
}

# Into a file that tail follows, not directly: a Wine process that the program starts (the desktop, a service) and that
# outlives it would hold a pipe open, and its reader would wait for it.
run_in_slot() {
    local output=$slot/output.log program status=0
    # Created here, because tail may start before the program writes.
    : >"$output"
    wine "$@" 9>&- >"$output" 2>&1 </dev/null &
    program=$!
    tail --lines=+1 --follow --sleep-interval=0.05 --pid="$program" "$output" 9>&-
    wait "$program" || status=$?
    return "$status"
}

# Makes all slots ready at the same time.
make_slots() {
    local number pids=() pid failed=0
    for ((number = 0; number < wine_slots; number++)); do
        mkdir -p "$wine_root/slot$number"
        (start_slot "$wine_root/slot$number") 8>&- &
        pids+=($!)
    done
    for pid in "${pids[@]}"; do
        wait "$pid" || failed=1
    done
    return "$failed"
}

stop_slots() {
    local dir file
    for dir in "$wine_root"/slot*; do
        [ -d "$dir" ] || continue
        if [ -e "$dir/prefix.ready" ]; then
            WINEPREFIX=$dir/prefix wineserver -k 2>/dev/null || true
        fi
        for file in "$dir/openbox.pid" "$dir/xvfb.pid"; do
            if is_running "$file"; then
                kill "$(<"$file")" 2>/dev/null || true
            fi
            rm -f "$file"
        done
    done
}
