# How the demonstration's user recognises and meets each window, and presses "Update"; to be sourced by bash.
# shellcheck shell=bash disable=SC2154 # variables shared with the other libraries

# The "File" tab of the stand-in Outlook's window.
file_button=600

# kind_of_window: the kind of $window, by its program and its controls.
kind_of_window() {
    if [[ $window_program == OrvaSetup* ]]; then
        echo installer
    elif has IDC_UPDATE_INSTALL && has IDC_UPDATE_LATER && has IDC_UPDATE_DESCRIPTION; then
        echo offer
    elif has IDC_DOWNLOAD_STATUS && has IDC_DOWNLOAD_PROGRESS; then
        echo download
    elif has IDC_ABOUT_UPDATE && has IDC_ABOUT_CLOSE; then
        echo about
    elif [ "$window_class" = "#32770" ]; then
        echo message
    elif [ "$window_class" = OrvaOutlookHost ]; then
        echo main
    else
        echo other
    fi
}

has() { [ -n "${control_class[$(id_of "$1")]:-}" ]; }
text_at() { echo "${control_text[$(id_of "$1")]:-}"; }

# one_line TEXT: the text without line ends.
one_line() {
    local text=${1//$'\r'/}
    text=${text//$'\n'/ }
    echo "${text//  / }"
}

# meet_window: handles a new window as the scene asks for.
meet_window() {
    local kind
    kind=$(kind_of_window)
    case $kind in
    main)
        main_window=$window
        tell user "sees Outlook's window \"$window_caption\""
        ;;
    offer) meet_offer ;;
    download) meet_download ;;
    installer) meet_installer ;;
    message) meet_message ;;
    about)
        about_window=$window
        meet_about
        ;;
    *)
        tell user "sees a window \"$window_caption\" of $window_program ($window_class)"
        picture "window"
        ;;
    esac
}

meet_offer() {
    tell user "sees \"$window_caption\": $(text_at IDC_UPDATE_AVAILABLE_VERSION), $(text_at IDC_UPDATE_INSTALLED_VERSION)"
    tell user "reads \"$(one_line "$(text_at IDC_UPDATE_DESCRIPTION)")\""
    picture "$phase-offer"
    seen "$phase-offer"
    if [ "$outcome" = any ] && [ "$phase" = start ]; then
        ask_for_answer
    fi
    if [ "$window_caption" = "$(text_of IDS_UPDATE_TITLE)" ] &&
        [ "$(text_at IDC_UPDATE_INSTALL)" = "$(text_of IDS_UPDATE_INSTALL)" ] &&
        [ "$(text_at IDC_UPDATE_AVAILABLE_VERSION)" = "$(with "$(text_of IDS_AVAILABLE_VERSION)" "$publish")" ] &&
        [ "$(text_at IDC_UPDATE_INSTALLED_VERSION)" = "$(with "$(text_of IDS_INSTALLED_VERSION)" "$installed")" ]; then
        seen "$phase-offer-texts"
    fi
    local button=IDC_UPDATE_INSTALL
    if [ "$phase" != start ] || [ "$answer" = later ]; then
        button=IDC_UPDATE_LATER
    fi
    tell user "presses \"$(text_at $button)\""
    press "$(id_of $button)"
    # The download dialog may be open already; only this one matters.
    if wait_gone 20 && [ "$button" = IDC_UPDATE_LATER ]; then
        seen "$phase-later"
    fi
}

# with FORMAT VALUE: the format with its %s filled in.
with() { echo "${1/\%s/$2}"; }

meet_download() {
    local deadline=$((SECONDS + 60)) percent=0
    tell user "sees the download: $(text_at IDC_DOWNLOAD_SOURCE)"
    # Until the dialog has shown all its texts.
    until [ -n "$(text_at IDC_DOWNLOAD_TIME)" ] && [ "$percent" -ge 10 ]; do
        if ((SECONDS >= deadline)) || [ "$(window_state)" = gone ]; then
            break
        fi
        sleep 0.1
        read_window
        if [[ $window_caption =~ ([0-9]+)% ]]; then
            percent=${BASH_REMATCH[1]}
        fi
    done
    tell user "sees \"$window_caption\", $(text_at IDC_DOWNLOAD_TIME), $(text_at IDC_DOWNLOAD_RATE)"
    [ "$percent" -lt 10 ] || seen progress
    picture download
    if [ "$answer" = cancel ]; then
        cancel_download
    fi
    if wait_gone 60; then
        tell user "sees the download close"
        seen download-closed
    fi
}

# The dialog stays open for one second after Cancel, so this must be quick.
cancel_download() {
    local text status id
    text=$(text_of IDS_DOWNLOAD_CANCELED)
    status=$(id_of IDC_DOWNLOAD_STATUS)
    id=$(x_window)
    tell user "presses \"${control_text[2]:-}\""
    press 2
    command_user "await $window $status 10000 $text"
    if [ "${reply[0]}" = "done" ]; then
        picture_of "$id" download-canceled
        tell user "sees \"$text\""
        seen cancel-shown
    fi
}

meet_installer() {
    tell user "sees the installer \"$window_caption\": \"$(one_line "${control_text[0]:-}")\""
    picture installer
    press button
    if wait_gone 20; then
        seen installer-window
    fi
}

meet_message() {
    tell user "sees the message \"$(one_line "${control_text[65535]:-}")\""
    picture "$phase-message"
    seen "$phase-message"
    case ${control_text[65535]:-} in
    "$(text_of IDS_UPDATE_CANCELED)") seen canceled-message ;;
    "$(text_of IDS_LATEST_INSTALLED)") seen "$phase-latest" ;;
    esac
    press button
    if ! wait_gone 20; then
        tell user "cannot close the message"
    fi
}

meet_about() {
    tell user "sees \"$window_caption\": $(text_at IDC_ABOUT_VERSION_LINE1)"
    picture about
    if [ "$(text_at IDC_ABOUT_UPDATE)" = "$(text_of IDS_UPDBUTTON_LABEL)" ] &&
        [ "$(text_at IDC_ABOUT_CLOSE)" = "$(text_of IDS_CLOSE)" ]; then
        seen about
    fi
}

# request_in_file_view: opens the File view and, on the add-in's tab, presses "Update".
request_in_file_view() {
    local id
    window=$main_window
    tell user "opens the File view"
    press "$file_button"
    if ! watch 20 is_seen file-view; then
        tell "" "the File view did not open"
        return
    fi
    window=$main_window
    read_window
    picture file-view
    if [ "$language" = es ]; then
        tell user "sees no tab of the add-in"
        return
    fi
    id=$(control_with Button "$(text_of IDS_UPDBUTTON_LABEL)")
    if [ -z "$id" ]; then
        tell "" "the File view has no button \"$(text_of IDS_UPDBUTTON_LABEL)\""
        return
    fi
    if [ -n "$(control_with '' "$(text_of IDS_DESCRIPTION1)")" ] && [ -n "$(control_with '' "$(own_version)")" ]; then
        tell user "sees the add-in's tab: $(own_version)"
        seen backstage
    fi
    tell user "presses \"$(text_of IDS_UPDBUTTON_LABEL)\""
    press "$id"
    watch 120 is_seen update-pressed || tell "" "the check did not end in time"
}

# own_version: the version line as the add-in shows it.
own_version() {
    local format
    format=$(text_of IDS_VERSION_LINE1)
    # shellcheck disable=SC2059 # the text is a format
    printf "$format" 1 2 0 64
}

# control_with CLASS TEXT: the id of the control with this text; of any class if CLASS is empty.
control_with() {
    local id
    for id in "${!control_text[@]}"; do
        if [ "${control_text[$id]}" = "$2" ] && [ "${1:-${control_class[$id]}}" = "${control_class[$id]}" ]; then
            echo "$id"
            return
        fi
    done
}

# request_in_about: chooses the command in the Help menu and presses "Update" in the About dialog.
request_in_about() {
    about_window=''
    window=$main_window
    show_to_keyboard
    tell user "chooses \"$(text_of IDS_ABOUT_COMMAND)\" in the Help menu"
    # The command is the menu's last one.
    keys alt+h
    sleep 0.5
    keys Up
    picture_of_screen help-menu
    keys Return
    if ! watch 20 test_about_is_open; then
        tell "" "the About dialog did not open"
        return
    fi
    window=$about_window
    read_window
    tell user "presses \"$(text_at IDC_ABOUT_UPDATE)\""
    press "$(id_of IDC_ABOUT_UPDATE)"
    # Disabled from before the request until the check is over.
    watch 120 about_is_ready_again || tell "" "the check did not end in time"
    window=$about_window
    read_window
    tell user "presses \"$(text_at IDC_ABOUT_CLOSE)\""
    press "$(id_of IDC_ABOUT_CLOSE)"
    if wait_gone 20; then
        seen about-closed
    fi
}

test_about_is_open() { [ -n "$about_window" ]; }
about_is_ready_again() { is_seen request-asked && is_enabled "$about_window"; }
