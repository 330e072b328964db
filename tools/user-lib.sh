# The demonstration's user: finds and reads windows, presses buttons and takes pictures; to be sourced by bash.
#
# start_user          starts DesktopUser.exe as a co-process.
# next_window MS      waits for the next new window: sets $window, $window_program, $window_class and reads it;
#                     fails if there was none.
# read_window         sets $window_caption, and $control_text, $control_state and $control_class by control id.
# window_state        "enabled", "disabled" or "gone".
# press ID, close_window
# picture NAME        writes NN-NAME.png of $window with its frame into $pictures; none if the window has gone.
# shellcheck shell=bash disable=SC2034,SC2154 # variables shared with the other libraries

declare -A control_text=() control_state=() control_class=()
picture_count=0

start_user() {
    coproc user { exec wine "$build_dir/DesktopUser.exe" 9>&- 2>/dev/null; }
    # Copied, because bash unsets the co-process's variables when it ends.
    # shellcheck disable=SC2154 # set by coproc
    user_in=${user[1]} user_out=${user[0]}
}

# command_user COMMAND: sets the array $reply to the lines of its answer, carriage returns taken off.
command_user() {
    local line
    reply=()
    echo "$1" >&"$user_in"
    while read -r -t 60 line <&"$user_out"; do
        line=${line%$'\r'}
        [ "$line" != . ] || return 0
        reply+=("$line")
    done
    echo "the desktop does not answer: $1" >&2
    return 1
}

# unescape TEXT: sets $plain to the text with its line ends and tabs.
unescape() { printf -v plain '%b' "$1"; }

next_window() {
    local fields
    command_user "next $1"
    [ "${#reply[@]}" -gt 0 ] || return 1
    IFS=$'\t' read -r -a fields <<<"${reply[0]}"
    window=${fields[1]}
    window_program=${fields[3]}
    window_class=${fields[4]}
    # A dialog appears a little before its texts.
    sleep 0.3
    read_window
}

read_window() {
    local line kind id class state shown text
    control_text=() control_state=() control_class=()
    command_user "read $window"
    for line in "${reply[@]}"; do
        IFS=$'\t' read -r kind id class state shown text <<<"$line"
        if [ "$kind" = caption ]; then
            unescape "$id"
            window_caption=$plain
        elif [ "$shown" = shown ] && [ -z "${control_class[$id]:-}" ]; then
            unescape "$text"
            control_text[$id]=$plain
            control_state[$id]=$state
            control_class[$id]=$class
        fi
    done
}

window_state() {
    command_user "state $window"
    echo "${reply[0]}"
}

press() {
    command_user "press $window $1"
    [ "${reply[0]}" = "done" ]
}

close_window() { command_user "close $window"; }

# wait_gone SECONDS: until $window has gone.
wait_gone() {
    local deadline=$((SECONDS + $1))
    while command_user "state $window" && [ "${reply[0]}" != gone ]; do
        ((SECONDS < deadline)) || return 1
        sleep 0.1
    done
}

# x_window: the id of the X11 window that shows $window.
x_window() {
    command_user "x $window"
    echo "${reply[0]#x$'\t'}"
}

picture() {
    local id
    id=$(x_window)
    # Raised first, and given time to be drawn.
    xdotool windowraise "$id" 2>/dev/null || true
    sleep 0.3
    picture_of "$id" "$1"
}

# picture_of ID NAME: of an X11 window as it is now.
picture_of() {
    local id=$1 file
    # Without a window, import would wait for a click on one.
    [ "$id" != 0 ] || return 0
    picture_count=$((picture_count + 1))
    printf -v file '%s/%02d-%s.png' "$pictures" "$picture_count" "$2"
    timeout 20 /usr/bin/import -silent -window "$id" -frame "$file" 2>/dev/null || rm -f "$file"
}

# keys KEY...: types on the window that has the focus.
keys() {
    xdotool key --clearmodifiers --delay 120 "$@"
}

# show_to_keyboard: gives $window the keyboard focus.
show_to_keyboard() {
    local id
    id=$(x_window)
    timeout 10 xdotool windowactivate --sync "$id" 2>/dev/null || timeout 10 xdotool windowfocus --sync "$id"
}

# picture_of_screen NAME: of the whole screen, menus included.
picture_of_screen() {
    local file
    picture_count=$((picture_count + 1))
    printf -v file '%s/%02d-%s.png' "$pictures" "$picture_count" "$1"
    timeout 20 /usr/bin/import -silent -window root -trim +repage "$file"
}
