# Installs the packages that are missing and builds; shared by ./run and ./test, to be sourced by bash.
#
# install_packages [FILE...]        installs what tools/packages.txt, and these files, name and this machine has not.
# configure                         makes $build_dir ready for preset release. The array cmake_options has further options.
# configure_and_build [TARGET...]   does so and builds everything, or only these targets.
# configure_and_build_checked       builds everything with run-time checks compiled in (preset checked) into $checked_dir.
# shellcheck shell=bash

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${ORVA_BUILD_DIR:-$repository/build/release}
checked_dir=${ORVA_CHECKED_DIR:-$repository/build/checked}

fail() {
    echo "${0##*/}: $*" >&2
    exit 2
}

# retry COMMAND...: up to three times, because a mirror may not answer at once.
retry() {
    local attempt
    for attempt in 1 2 3; do
        "$@" && return
        echo "${0##*/}: attempt $attempt failed: $*" >&2
        sleep $((attempt * 5))
    done
    return 1
}

# missing_packages FILE...
missing_packages() {
    local package
    while read -r package; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || echo "$package"
    done < <(grep -hv '^#' "$@")
}

# shellcheck disable=SC2120 # not everybody needs more than the others
install_packages() {
    local packages apt log
    command -v apt-get >/dev/null || fail "this needs Debian 12 (the packages of tools/packages.txt)"
    mapfile -t packages < <(missing_packages "$repository/tools/packages.txt" "$@")
    [ "${#packages[@]}" -gt 0 ] || return 0

    apt=(env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3)
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "packages are missing; run as root or install sudo: ${packages[*]}"
        apt=(sudo "${apt[@]}")
    fi
    echo "Installing from Debian: ${packages[*]}"
    mkdir -p "$repository/build"
    log=$repository/build/apt.log
    { retry "${apt[@]}" update && retry "${apt[@]}" install -y --no-install-recommends "${packages[@]}"; } \
        >"$log" 2>&1 </dev/null || { tail -n 40 "$log" >&2; fail "packages could not be installed"; }
}

cmake_options=()

configure() {
    (cd "$repository" && cmake --preset release -B "$build_dir" "${cmake_options[@]}")
}

# shellcheck disable=SC2120 # ./test builds everything, ./run names targets
configure_and_build() {
    # Not two lines: a caller's "||" would let the second run after the first had failed.
    configure && cmake --build "$build_dir" ${1:+--target "$@"}
}

configure_and_build_checked() {
    (cd "$repository" && cmake --preset checked -B "$checked_dir") && cmake --build "$checked_dir"
}
