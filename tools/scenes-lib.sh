# The scenes of the demonstration: what is set up, what happens at Outlook's start, the check that the user asks for,
# and the end; to be sourced by bash. Uses the other libraries and the options that ./run has read.
# shellcheck shell=bash disable=SC2034,SC2154 # variables shared with the other libraries

# is_newer VERSION: whether the add-in counts it as newer than itself.
is_newer() {
    [ "$1" != "$installed" ] && [ "$(printf '%s\n' "$1" "$installed" | sort -V | tail -n 1)" = "$1" ]
}

# id_of NAME: a resource's number.
id_of() {
    sed -n "s/^#define $1 \([0-9]*\)\$/\1/p" "$repository/res/resource.h"
}

# text_of NAME: a string of the add-in in the language of this run, as the user sees it.
text_of() {
    local text
    text=$(sed -n "s/^ *$1 \"\(.*\)\"\$/\1/p" "$repository/res/strings/$language.rc")
    text=${text//\"\"/\"}
    printf '%b' "$text"
}

windows_path() { echo "Z:${1//\//\\}"; }

language_id() {
    case $language in
    en) echo 1033 ;;
    de) echo 1031 ;;
    es) echo 3082 ;;
    tr) echo 1055 ;;
    esac
}

registry() { wine reg add "$@" /f 9>&- >/dev/null 2>&1; }

users_folder() { find "$WINEPREFIX/drive_c/users" "$@" 2>/dev/null; }

prepare_prefix() {
    local settings='HKCU\Software\Microsoft\Windows\CurrentVersion\Internet Settings'
    wine regsvr32 /s "$(windows_path "$build_dir/OrvaOscAddin.dll")" 9>&- >/dev/null 2>&1 ||
        fail "regsvr32 could not register the add-in"
    registry "$settings" /v ProxyServer /d "127.0.0.1:$server_port"
    registry "$settings" /v ProxyEnable /t REG_DWORD /d 1
    registry "HKCU\\SOFTWARE\\Microsoft\\Office\\$office.0\\Common\\LanguageResources" \
        /v UILanguage /t REG_DWORD /d "$(language_id)"
    registry 'HKCU\SOFTWARE\ORVA Connector' /v EnableDebugLog /t REG_DWORD /d 1
    # What an earlier run has left.
    users_folder -depth -path '*/Temp/osc*' -delete
    users_folder -name logfile_OrvaAddIn.txt -delete
}

# Interpreting the logs.

request_seen() {
    local line=$1 status size encoding target
    [[ $line =~ ^[^\ ]+\ ([0-9]+)\ ([0-9]+)\ bytes,\ encoding\ \"([^\"]*)\":\ \"([^\"]*)\" ]] || return 0
    status=${BASH_REMATCH[1]} size=${BASH_REMATCH[2]} encoding=${BASH_REMATCH[3]} target=${BASH_REMATCH[4]}
    tell server "$target: $status, $size bytes$([ "$encoding" = - ] || echo " in $encoding")"
    case $target in
    *"$update_info_path"*)
        # A file of the caller's may be too short to be worth compressing.
        if [ "$status" = 200 ] && { [ "$encoding" = gzip ] || [ "$outcome" = any ]; }; then
            seen "$phase-fetched"
        fi
        seen "$phase-asked"
        ;;
    *.exe*)
        seen downloaded
        [ "$size" -lt "$installer_size" ] || seen downloaded-whole
        [ "$size" -ge "$installer_size" ] || seen downloaded-part
        ;;
    esac
}

trace_seen() {
    local line=$1
    case $line in
    *QueryInterface* | *GetIDsOfNames* | *CLSIDFromProgID* | *"references to"* | "Outlook: menu &"*) ;;
    "Outlook -> "*) tell Outlook "called ${line#Outlook -> *: }" ;;
    "Outlook: "*) tell Outlook "${line#Outlook: }" ;;
    "add-in -> "*) tell add-in "called ${line#add-in -> }" ;;
    *) tell "" "$line" ;;
    esac
    case $line in
    *"OnConnection(ConnectMode 1) = 0x00000000"*) seen connected ;;
    *"Outlook: start-up complete"*) seen started ;;
    *"Outlook: custom UI of OrvaOscAddin.Connect refused: "*) seen parse-report ;;
    *"Outlook: custom UI of OrvaOscAddin.Connect: 0 characters"*) seen no-tab ;;
    *"Outlook: File view shows "*) seen file-view ;;
    *"Invoke 42000 ButtonClicked("*) seen update-pressed ;;
    *"add-in -> "*Add"("*) seen command ;;
    esac
}

# watch SECONDS CONDITION...: handles logs and windows until the condition holds; fails when the time is over or Outlook
# has ended.
watch() {
    local deadline=$((SECONDS + $1))
    shift
    catch_up
    until "$@"; do
        kill -0 "$host_pid" 2>/dev/null || return 1
        ((SECONDS < deadline)) || return 1
        if next_window 200; then
            meet_window
        fi
        catch_up
    done
}

is_seen() { [ -n "${seen_facts[$1]:-}" ]; }
are_seen() {
    local fact
    for fact in "$@"; do
        is_seen "$fact" || return 1
    done
}

ask_for_facts() {
    asked connected "Outlook loaded and connected the add-in (OnConnection gave S_OK)"
    if [ "$outcome" = any ]; then
        asked start-fetched "at Outlook's start the add-in read $update_info_path, the file as it is"
    else
        asked start-fetched "at Outlook's start the add-in read $update_info_path, compressed with gzip"
    fi
    if [ -n "$show" ]; then
        asked ended "Outlook ended by itself"
        return
    fi
    asked started "Outlook's start was completed"
    asked start-enabled "after the start-up check Outlook's window could be used"
    case $outcome in
    offer)
        asked start-offer "version $publish was offered"
        asked start-offer-texts "the offer named both versions, in the language of Outlook"
        ask_for_answer
        ;;
    silence)
        asked start-silence "nothing was shown at the start, because $installed is the latest version"
        ;;
    esac
    case $office in
    12)
        asked about "the command in the Help menu opened the About dialog, in the language of Outlook"
        ask_for_explicit_check
        asked about-closed "the About dialog closed"
        ;;
    14)
        if [ "$language" = es ]; then
            asked parse-report "Outlook reported the Spanish markup as not well-formed and showed no tab"
        else
            asked backstage "the File view showed the add-in's tab, in the language of Outlook"
            ask_for_explicit_check
        fi
        ;;
    15)
        asked no-tab "the add-in gave no tab (GetCustomUI answered with an empty text)"
        asked no-command "the add-in added no menu command"
        ;;
    esac
    asked logged "the add-in's debug log tells of the start-up check"
    asked ended "Outlook ended by itself"
}

ask_for_answer() {
    case $answer in
    install)
        asked progress "the download showed its progress"
        asked downloaded-whole "the server sent the whole installer"
        asked download-closed "the download dialog closed"
        asked installer-same "the downloaded file is what was published, byte for byte, in a fresh temporary folder"
        asked installer-ran "the installer was started from there"
        asked installer-window "the installer's window was seen, and closed"
        ;;
    later)
        asked start-later "the offer was declined and closed"
        asked nothing-downloaded "nothing was downloaded"
        ;;
    cancel)
        asked progress "the download showed its progress"
        asked cancel-shown "after Cancel the download said so"
        asked download-closed "the download dialog closed"
        asked canceled-message "the message about the canceled download was shown"
        asked downloaded-part "the server sent only a part of the installer"
        asked partial-deleted "the partial file was deleted"
        asked installer-not-run "no installer was started"
        ;;
    esac
}

ask_for_explicit_check() {
    asked request-fetched "\"Update\" read $update_info_path again"
    case $outcome in
    offer)
        asked request-offer "version $publish was offered again"
        asked request-later "the second offer was declined and closed"
        ;;
    silence) asked request-latest "the user was told that the latest version is installed" ;;
    esac
    asked request-enabled "after that check Outlook's window could be used"
}

start_outlook() {
    tell Outlook "$office starts (OutlookHost.exe --office $office --mode startup)"
    wine "$build_dir/OutlookHost.exe" --office "$office" --mode startup --trace "$(windows_path "$out/host.log")" \
        9>&- >"$ORVA_WINE_ROOT/host-output.log" 2>&1 &
    host_pid=$!
}

is_enabled() {
    window=$1
    [ "$(window_state)" = enabled ]
}

# A dialog may be gone a moment before its owner is enabled.
becomes_enabled() {
    local deadline=$((SECONDS + 10))
    until is_enabled "$1"; do
        ((SECONDS < deadline)) || return 1
        sleep 0.1
    done
}

play() {
    phase=start main_window='' about_window=''
    pictures=$out
    ask_for_facts
    begin_story "$out/host.log" "$server_log"
    start_user
    start_outlook
    if [ -n "$show" ]; then
        play_for_a_person
    else
        play_the_start
        play_the_request
        play_the_end
    fi
    examine_logs
    echo
    if ! end_story; then
        echo "Pictures and logs: $out"
        return 1
    fi
    echo "Pictures and logs: $out"
}

play_the_start() {
    if ! watch 180 is_seen started; then
        tell "" "Outlook's start was not completed in time"
        return
    fi
    is_seen start-offer || is_seen start-message || seen start-silence
    if is_seen progress && [ "$answer" = install ]; then
        watch 30 are_seen installer-window downloaded-whole || true
    fi
    if [ -n "$main_window" ] && becomes_enabled "$main_window"; then
        seen start-enabled
        picture outlook
    fi
    examine_download
}

# What the download has left on disk.
examine_download() {
    local file published trace
    published=$(find "$server_dir/www" -name '*.exe')
    file=$(users_folder -path '*/Temp/osc*' -name '*.exe' | head -n 1)
    trace=$(users_folder -path '*/Temp/osc*' -name '*.trace.txt' | head -n 1)
    if [ -z "$file" ]; then
        ! is_seen progress || seen partial-deleted
    elif cmp -s "$file" "$published"; then
        seen installer-same
    fi
    if [ -z "$trace" ]; then
        seen installer-not-run
    elif grep -q '^path C:.*\\osc......\\OrvaSetup' "$trace"; then
        tell installer "says: $(sed -n 's/\r$//; s/^path /ran from /p' "$trace")"
        seen installer-ran
    fi
    is_seen downloaded || seen nothing-downloaded
}

play_the_request() {
    is_seen started || return 0
    phase=request
    case $office in
    12) request_in_about ;;
    14) request_in_file_view ;;
    esac
    catch_up
    is_seen command || seen no-command
    if is_seen request-asked && becomes_enabled "$main_window"; then
        seen request-enabled
    fi
}

play_the_end() {
    catch_up
    if [ -n "$main_window" ]; then
        tell user "closes Outlook"
        window=$main_window
        close_window
    fi
    watch 30 is_over || true
    if is_over; then
        tell_the_end
    else
        tell "" "Outlook did not end"
    fi
}

tell_the_end() {
    local status=0
    catch_up
    wait "$host_pid" || status=$?
    tell Outlook "has ended with status $status"
    [ "$status" -ne 0 ] || seen ended
}

is_over() { ! kill -0 "$host_pid" 2>/dev/null; }

play_for_a_person() {
    echo "It is your turn: answer what Outlook shows, and close it when you have seen enough."
    while ! is_over; do
        if next_window 500; then
            tell user "sees \"$window_caption\""
            picture "$(kind_of_window)" || true
        fi
        catch_up
    done
    tell_the_end
    examine_download
}

examine_logs() {
    local log
    log=$(users_folder -name logfile_OrvaAddIn.txt | head -n 1)
    if [ -z "$log" ]; then
        tell "" "the add-in wrote no log"
        return
    fi
    cp "$log" "$out/orva.log"
    if grep -q 'CConnect::OnConnection() check for updates ' "$log" && grep -q 'CheckForUpdate() TextRequest succeeded ' "$log"; then
        seen logged
    fi
}
