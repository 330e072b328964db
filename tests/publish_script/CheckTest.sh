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
    publish 1 check http://127.0.0.1:9/UpdateInfo.txt --json
    expect_equal 'http://127.0.0.1:9/UpdateInfo.txt no-answer' "$(jq -r '.source + " " + .errors[].code' stdout)"
}

# break_wine REPORT ATTEMPT...: in these attempts the program writes only this, and ends with status 0.
break_wine() {
    printf '%s' "$1" >report
    replace_program wine <<SCRIPT
echo >>attempts
[[ " ${*:2} " != *" \$(wc -l <attempts) "* ]] || exec cat "$PWD/report"
exec "\$real_wine" "\$@"
SCRIPT
}

test_a_report_that_Wine_has_cut_is_made_once_more() {
    make_update 0
    break_wine 'out/UpdateInfo.txt: version' 1
    publish 0 check out/UpdateInfo.txt
    expect_equal 2 "$(wc -l <attempts)"
    expect_equal 'no errors, no warnings' "$(tail -n 1 stdout)"
    expect_equal 1 "$(grep -c ': version' stdout)"
}

test_a_report_that_Wine_always_cuts_is_no_success() {
    local report
    echo '{}' >UpdateInfo.txt
    for report in '' $'no errors, no warnings\nmore'; do
        break_wine "$report" 1 2
        publish 1 check UpdateInfo.txt
        expect_equal '' "$(cat stdout)"
        expect_equal 'publish: Wine ended the program with status 0 before its report was complete, in 2 attempts' \
            "$(tail -n 1 stderr)"
        rm attempts programs/wine
    done
    break_wine '{"format": 1, "errors": [], "users": [' 1 2
    publish 1 check UpdateInfo.txt --json
    expect_equal '' "$(cat stdout)"
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
