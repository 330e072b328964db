# The scenes of the demonstration: what is set up, what happens at Outlook's start, the check that the user asks for,
# and the end; to be sourced by bash. Uses the other libraries and the options that ./run has read.
# shellcheck shell=bash disable=SC2154

is_newer() {
    local major minor build
    IFS=. read -r major minor build <<<"$1"
    ((major > 1 || (major == 1 && (minor > 2 || (minor == 2 && build > 0)))))
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

# --- What the logs say ---------------------------------------------------------------------------------------------

request_seen() {
    local line=$1 status size encoding target
    [[ $line =~ ^[^\ ]+\ ([0-9]+)\ ([0-9]+)\ bytes,\ encoding\ \"([^\"]*)\":\ \"([^\"]*)\" ]] || return 0
    status=${BASH_REMATCH[1]} size=${BASH_REMATCH[2]} encoding=${BASH_REMATCH[3]} target=${BASH_REMATCH[4]}
    tell server "$target: $status, $size bytes$([ "$encoding" = - ] || echo " in $encoding")"
    case $target in
    *"$update_info_path"*)
        [ "$status" != 200 ] || [ "$encoding" != gzip ] || seen "$phase-fetched"
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
    "Outlook -> "*) tell Outlook "calls ${line#Outlook -> }" ;;
    "Outlook: "*) tell Outlook "${line#Outlook: }" ;;
    *) tell add-in "$line" ;;
    esac
    case $line in
    *"OnConnection(1)"*"= 0x00000000"*) seen connected ;;
    *"OnStartupComplete"*"= 0x00000000"*) seen started ;;
    esac
}
