#!/usr/bin/env bash
# ./publish preview
# shellcheck source=tests/publish_script/script-test.sh
source "$(dirname "${BASH_SOURCE[0]}")/script-test.sh"

test_takes_a_picture_of_what_each_user_sees() {
    local name
    # German users get a message on request, the others an offer.
    cat >UpdateInfo.txt <<'FILE'
{"x64": {"majorVersion": 99, "minorVersion": 0, "buildNumber": 0, "downloadLink": "http://www.orva.example/OrvaSetup-99.0.0.exe",
    "description": {"de": "", "es": "Más rápido.", "default": "Faster."}}}
FILE
    mkdir out
    echo 'of an earlier preview' >out/message-start-en.png
    # A newer version, as a preview that was ended leaves it.
    replace_program wineserver <<SCRIPT
"\$real_wineserver" "\$@"
status=\$?
[ "\$1" != -p ] || [ -e prefix ] || { echo "\$WINEPREFIX" >prefix; wine '$installer' /S; }
exit \$status
SCRIPT
    publish 0 preview UpdateInfo.txt --out out
    [ ! -e "$(<prefix)/drive_c/Program Files/ORVA Connector" ]
    expect_equal 'message-request-de.png offer-en.png offer-es.png offer-tr.png' \
        "$(find out -mindepth 1 -printf '%P\n' | sort | xargs)"
    for name in out/*.png; do
        # The offer and the message are hundreds of pixels wide.
        [[ $(/usr/bin/identify -format '%m %w' "$name") =~ ^PNG\ [2-9][0-9]{2}$ ]]
    done
    sed -n "s/^ *[0-9.]* s  \(..\) *\(at Outlook's start\|on request\) /\1 \2: /p" stdout >told
    expect_lines told \
        "en at Outlook's start: is offered \"Available version: 99.0.0\" with the text \"Faster.\"" \
        'en on request: is offered "Available version: 99.0.0" with the text "Faster."' \
        "de at Outlook's start: sees nothing" \
        'de on request: sees the message "Die Updateinformationen konnten nicht ausgewertet werden."' \
        "es at Outlook's start: is offered \"Versión disponible: 99.0.0\" with the text \"Más rápido.\"" \
        'es on request: is offered "Versión disponible: 99.0.0" with the text "Más rápido."' \
        "tr at Outlook's start: is offered \"Kullanılabilir sürüm: 99.0.0\" with the text \"Faster.\"" \
        'tr on request: is offered "Kullanılabilir sürüm: 99.0.0" with the text "Faster."'
}

# cmake_calls FAILING [ARGUMENTS...]: what cmake is told if it fails when FAILING is its first argument; nothing is built.
cmake_calls() {
    local failing=$1
    shift
    unset ORVA_IS_BUILT
    replace_program dpkg-query <<<'echo installed'
    replace_program cmake <<<"echo \"\$*\" >>'$PWD/calls'; [ \"\$1\" != $failing ]"
    echo text >text
    publish 1 preview text --out out "$@"
    expect_equal 'publish: the build failed; see build/publish-build.log' "$(tail -n 1 stderr)"
}

test_builds_the_version_that_users_have() {
    cmake_calls --build --installed 1.1.0
    expect_lines calls "--preset release -B $ORVA_BUILD_DIR -D ORVA_PUBLISHED_VERSION=1.1.0" \
        "--build $ORVA_BUILD_DIR --target OrvaDemo setup-published"
}

test_builds_no_version_that_users_of_an_earlier_preview_had() {
    cmake_calls --build
    expect_lines calls "--preset release -B $ORVA_BUILD_DIR -D ORVA_PUBLISHED_VERSION=" \
        "--build $ORVA_BUILD_DIR --target OrvaDemo setup"
}

test_builds_nothing_in_a_folder_that_cannot_be_configured() {
    cmake_calls --preset
    expect_lines calls "--preset release -B $ORVA_BUILD_DIR -D ORVA_PUBLISHED_VERSION="
}

run_tests
