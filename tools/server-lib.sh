# The web server of the demonstration, nginx on a free loopback port; to be sourced by bash.
#
# It answers for the add-in's own web host only: requests reach it through the proxy setting of the Wine prefix, in
# absolute form.
#
# start_server DIR     starts it with everything it needs below DIR; sets $server_port and $server_log.
# publish DIR WHAT [INSTALLER [KEY]]   puts UpdateInfo.txt for version WHAT, or the file WHAT as it is, into the web root,
#                      DIR/www, and INSTALLER beside it; sets $installer_path to its path there. KEY is the private key that
#                      signs them.
# stop_server DIR
# shellcheck shell=bash disable=SC2034,SC2154 # variables shared with the other libraries

update_info_path=/downloads/outlook/UpdateInfo.txt

web_host() {
    sed -n 's/^ORVA_WEB_HOST:[A-Z]*=//p' "$build_dir/CMakeCache.txt"
}

# is_open PORT: whether somebody listens there.
is_open() { (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null; }

# installer_rate ANSWER: bytes a second; slow enough to see the progress, and to cancel if that is the answer.
installer_rate() {
    case $1 in
    cancel) echo 40k ;;
    *) echo 120k ;;
    esac
}

server_settings() {
    local dir=$1 port=$2 rate=$3
    cat <<END
daemon off;
master_process off;
pid "$dir/nginx.pid";
error_log "$dir/error.log";
events { worker_connections 64; }
http {
    log_format seen '\$time_iso8601 \$status \$body_bytes_sent bytes, '
        'encoding "\$sent_http_content_encoding": "\$request" '
        'accept-encoding "\$http_accept_encoding" user-agent "\$http_user_agent"';
    access_log "$dir/requests.log" seen;
    client_body_temp_path "$dir/temp";
    proxy_temp_path "$dir/temp";
    fastcgi_temp_path "$dir/temp";
    uwsgi_temp_path "$dir/temp";
    scgi_temp_path "$dir/temp";
    types { text/plain txt; application/octet-stream exe; }
    charset utf-8;
    gzip on;
    gzip_min_length 1;
    gzip_proxied any;
    gzip_types text/plain;
    server {
        listen 127.0.0.1:$port;
        server_name $(web_host);
        root "$dir/www";
        location ~ [.]exe\$ { limit_rate $rate; }
    }
    server {
        listen 127.0.0.1:$port default_server;
        location = /running { access_log off; return 200 "$dir\n"; }
        location / { return 404; }
    }
}
END
}

# Whether our server answers there, and not another program.
answers_for() {
    local dir=$1 port=$2 line
    (
        exec 3<>"/dev/tcp/127.0.0.1/$port"
        printf 'GET /running HTTP/1.0\r\nHost: 127.0.0.1\r\n\r\n' >&3
        while read -r -t 5 line <&3; do
            [ "$line" != "$dir" ] || exit 0
        done
        exit 1
    ) 2>/dev/null
}

start_server() {
    local dir=$1 rate=$2 attempt pid
    mkdir -p "$dir/temp" "$dir/www"
    server_log=$dir/requests.log
    rm -f "$server_log"
    for attempt in 1 2 3 4 5 6 7 8 9 10; do
        server_port=$((20000 + RANDOM % 12000))
        ! is_open "$server_port" || continue
        server_settings "$dir" "$server_port" "$rate" >"$dir/nginx.conf"
        # Debian has nginx where only root's search path looks.
        PATH=$PATH:/usr/sbin nginx -p "$dir" -c "$dir/nginx.conf" -e "$dir/error.log" 9>&- >"$dir/nginx.log" 2>&1 &
        pid=$!
        echo "$pid" >"$dir/started.pid"
        until answers_for "$dir" "$server_port"; do
            kill -0 "$pid" 2>/dev/null || continue 2
            sleep 0.05
        done
        return 0
    done
    echo "nginx found no free port in $attempt attempts" >&2
    cat "$dir/nginx.log" "$dir/error.log" >&2
    return 1
}

stop_server() {
    local file=$1/started.pid
    if is_running "$file"; then
        kill "$(<"$file")" 2>/dev/null || true
    fi
    rm -f "$file"
}

publish() {
    local dir=$1 what=$2 installer=${3:-} key=${4:-} major minor build signature=
    rm -rf "$dir/www"
    mkdir -p "$dir/www/downloads/outlook"
    installer_path=/downloads/outlook/${installer##*/}
    [ -z "$installer" ] || cp "$installer" "$dir/www$installer_path"
    if [ -f "$what" ]; then
        cp "$what" "$dir/www$update_info_path"
        return
    fi
    IFS=. read -r major minor build <<<"$what"
    if [ -n "$key" ]; then
        signature=$({ echo "$what"; cat "$installer"; } | openssl dgst -sha256 -sign "$key" | base64 -w 0)
    fi
    sed "s/VERSION/$what/; s/MAJOR/$major/; s/MINOR/$minor/; s/BUILD/$build/; s|LINK|http://$(web_host)$installer_path|" \
        "$repository/demo/UpdateInfo.txt.in" |
        jq --arg signature "$signature" 'if $signature == "" then . else .x64.signature = $signature end' \
            >"$dir/www$update_info_path"
}
