#!/usr/bin/env bash
# ./publish check: what it hands to OrvaPublish.exe, and what comes back.
# shellcheck source=tests/publish_script/script-test.sh
source "$(dirname "${BASH_SOURCE[0]}")/script-test.sh"

test_finds_nothing_wrong_with_what_make_has_made() {
    openssl genpkey -quiet -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out private.pem
    openssl pkey -in private.pem -pubout -out public.pem
    make_update 0 --key private.pem
    publish 0 check out/UpdateInfo.txt --installer "out/$installer_name" --public-key public.pem --installed 0.0.1 --json
    expect_equal '' "$(cat stderr)"
    expect_equal "$version true 0 0" \
        "$(jq -r '[.version, .installer.signed, (.errors | length), (.warnings | length)] | join(" ")' stdout)"
}

test_ends_with_1_if_there_are_errors() {
    echo '{"x64": ' >UpdateInfo.txt
    publish 1 check UpdateInfo.txt --json
    expect_equal '["syntax"]' "$(jq -c '[.errors[].code]' stdout)"
}

test_takes_paths_with_blanks_and_other_characters() {
    make_update 0
    mkdir 'a folder ğ'
    mv out/UpdateInfo.txt "a folder ğ/it's \$one.txt"
    cd 'a folder ğ'
    publish 0 check "it's \$one.txt" --installer "../out/$installer_name" --json
    expect_equal "Z:${PWD//\//\\}\\it's \$one.txt" "$(jq -r .source stdout)"
}

test_a_URL_stays_as_it_is() {
    # Wine would ask this proxy.
    unset http_proxy
    # Port 9 is the one that discards everything, where nobody listens.
    publish 2 check http://127.0.0.1:9/UpdateInfo.txt
    expect_equal 'OrvaPublish: http://127.0.0.1:9/UpdateInfo.txt cannot be read: no server answers' "$(head -n 1 stdout)"
}

test_wrong_options_end_with_2() {
    echo '{}' >UpdateInfo.txt
    publish 2 check UpdateInfo.txt --strict
    publish 2 check UpdateInfo.txt --installed
    publish 2 check UpdateInfo.txt --installer
    publish 2 check UpdateInfo.txt --installer missing.exe
    expect_lines stderr 'publish: there is no file missing.exe'
    publish 2 check UpdateInfo.txt --public-key missing.pem
    expect_lines stderr 'publish: there is no file missing.pem'
}

run_tests
