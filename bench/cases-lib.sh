# What bench/run measures, case by case; to be sourced by it.
#
# prepare_files       makes what the server publishes. prepare_settings leads the prefix's requests to the server.
# all_cases           the names of the cases of bench/rows.tsv, in its order.
# measure_CASE        runs a case; its samples go to $results/samples.tsv.
# measure_growth      measures the curves of the charts.
# shellcheck shell=bash disable=SC2154,SC2317 # variables shared with the other libraries, functions called by name

# Fresh processes per figure. Outlook takes the median of five starts.
share_starts=5
memory_rounds=9
# Seconds for a case. The longest, the download, takes some 90, and five times as long on a slow machine.
case_limit=900

settings_key='HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Internet Settings'

all_cases() { awk -F '\t' '!/^#/ && !seen[$1]++ { print $1 }' "$here/rows.tsv"; }

# Replaces the demonstration's settings: no log, no compression, persistent connections.
server_settings() {
    local dir=$1 port=$2
    cat <<END
daemon off;
master_process off;
pid "$dir/nginx.pid";
error_log "$dir/error.log";
events { worker_connections 64; }
http {
    access_log off;
    client_body_temp_path "$dir/temp";
    proxy_temp_path "$dir/temp";
    fastcgi_temp_path "$dir/temp";
    uwsgi_temp_path "$dir/temp";
    scgi_temp_path "$dir/temp";
    types { text/plain txt; }
    sendfile on;
    keepalive_requests 1000000;
    server {
        listen 127.0.0.1:$port default_server;
        root "$dir/www";
        location = /running { return 200 "$dir\n"; }
    }
}
END
}

# update_info KB: a file of exactly this size that publishes the installed version. Larger files have more languages in the
# description.
update_info() {
    awk -v size=$(($1 * 1024)) '
        function filled(n,    text) { while (length(text) < n) text = text "contacts are brought up to date "; return substr(text, 1, n) }
        BEGIN {
            printf "%s", text = "{\"x64\":{\"majorVersion\":1,\"minorVersion\":2,\"buildNumber\":0,\"downloadLink\":\"http://127.0.0.1/OrvaSetup.exe\",\"description\":{"
            length_now = length(text)
            end = "\"default\":\""
            while (length_now + 200 + length(end) < size) {
                printf "%s", text = sprintf("\"l%04d\":\"%s\",", ++language, filled(160))
                length_now += length(text)
            }
            printf "%s%s\"}}}", end, filled(size - length_now - length(end) - 4)
        }'
}

prepare_files() {
    local size
    mkdir -p "$server_dir/www/downloads/outlook"
    for size in 1 10 100 250; do
        update_info "$size" >"$scratch/update-$size.txt"
    done
    for size in 1 16 256 1024; do
        # Sparse, so that the server's disk is not measured.
        truncate -s "${size}M" "$server_dir/www/$size.bin"
    done
    publish_update_info 1
    [ "$(df --output=avail -k "$scratch" | tail -n 1)" -gt $((1536 * 1024)) ] || fail "1.5 GiB of disk space are needed in $scratch"
}

publish_update_info() { cp "$scratch/update-$1.txt" "$server_dir/www$update_info_path"; }

# apply_settings [PORT [LOG]]: sets the proxy 127.0.0.1:PORT, or none; Office's language to English; and the log to LOG (0).
apply_settings() {
    local port=${1:-}
    cat >"$scratch/settings.reg" <<END
REGEDIT4

[$settings_key]
"ProxyEnable"=dword:0000000$([ -n "$port" ] && echo 1 || echo 0)
"ProxyServer"="127.0.0.1:${port:-0}"

[HKEY_CURRENT_USER\\SOFTWARE\\Microsoft\\Office\\14.0\\Common\\LanguageResources]
"UILanguage"=dword:00000409

[HKEY_CURRENT_USER\\SOFTWARE\\ORVA Connector]
"EnableDebugLog"=dword:0000000${2:-0}
END
    wine regedit /S "$(windows_path "$scratch/settings.reg")" 9>&- </dev/null >"$scratch/regedit.log" 2>&1
}

prepare_settings() { apply_settings "$server_port"; }

windows_path() { printf 'Z:%s' "${1//\//\\}"; }

# run_bench PROGRAM CASE ARGUMENTS...: what it prints is added to the samples.
run_bench() {
    local program=$1 status=0
    shift
    timeout "$case_limit" wine "$build_dir/$program.exe" "$@" 9>&- </dev/null >"$scratch/out.txt" 2>"$scratch/errors.txt" || status=$?
    [ "$status" -eq 0 ] || {
        cat "$scratch/out.txt" "$scratch/errors.txt" >&2
        fail "$program $* ended with status $status"
    }
    tr -d '\r' <"$scratch/out.txt" >>"$results/samples.tsv"
}

measure_start() { run_bench AddInBench start; }
measure_start_cold() { run_bench AddInBench start-cold; }
measure_check() { run_bench OrvaBench check; }
measure_check_log() { run_bench AddInBench check-log; }
measure_custom_ui() { run_bench AddInBench custom-ui; }
measure_load_string() { run_bench OrvaBench load-string; }
measure_json() { run_bench OrvaBench json "$(windows_path "$scratch/update-1.txt")" "$(windows_path "$scratch/update-250.txt")"; }
measure_download() { run_bench OrvaBench download "$(download_url 256)" "$(windows_path "$scratch/download.bin")" 256; }

download_url() { echo "http://127.0.0.1:$server_port/$1.bin"; }

measure_memory() {
    local round
    for ((round = 0; round < memory_rounds; round++)); do
        run_bench AddInBench memory product
        run_bench AddInBench memory baseline
    done
}

measure_size() {
    local dll
    for dll in OrvaOscAddin:product EmptyAddIn:baseline; do
        printf 'sample\tsize\t%s\t%s\n' "${dll#*:}" "$(stat -c %s "$build_dir/${dll%:*}.dll" | awk '{ print $1 / 1024 }')" \
            >>"$results/samples.tsv"
    done
    "$here/size-map" "$build_dir/bench/OrvaOscAddin.map" "$build_dir/OrvaOscAddin.dll" >"$results/size-map.tsv"
}

measure_share() {
    local round closed_port=$((server_port + 1))
    while is_open "$closed_port"; do
        closed_port=$((closed_port + 1))
    done
    for ((round = 0; round < share_starts; round++)); do
        run_bench AddInBench share server
    done
    apply_settings "$closed_port"
    for ((round = 0; round < share_starts; round++)); do
        run_bench AddInBench share refused
    done
    # Without a proxy the host's own name is looked up; names that end in "example" belong to nobody.
    apply_settings
    for ((round = 0; round < share_starts; round++)); do
        run_bench AddInBench share unresolved
    done
    prepare_settings
}

measure_growth() {
    local size lines
    for size in 1 10 100 250; do
        printf '%3d s  check of %d KB\n' "$SECONDS" "$size"
        publish_update_info "$size"
        run_bench OrvaBench grow-check "$size"
    done
    publish_update_info 1
    for size in 1 16 256 1024; do
        printf '%3d s  download of %d MiB\n' "$SECONDS" "$size"
        run_bench OrvaBench grow-download "$(download_url "$size")" "$(windows_path "$scratch/download.bin")" "$size"
    done
    apply_settings "$server_port" 1
    for lines in 1000 10000 100000; do
        printf '%3d s  log of %d lines\n' "$SECONDS" "$lines"
        rm -f "$WINEPREFIX"/drive_c/users/*/AppData/Local/"ORVA Connector"/logfile_OrvaAddIn.txt
        run_bench OrvaBench grow-log "$lines"
    done
    prepare_settings
    local curve
    for curve in check download log; do
        awk -F '\t' -v OFS='\t' -v curve="$curve" '$1 == "point" && $2 == curve { print $3, $4, $5 }' "$results/samples.tsv" \
            >"$results/$curve.tsv"
        awk -F '\t' -v OFS='\t' '{ printf "%7d\t%.3g\t%.1f\n", $1, $2, $3 / 1024 }' "$results/$curve.tsv" >"$results/grow-$curve.tsv"
    done
}
