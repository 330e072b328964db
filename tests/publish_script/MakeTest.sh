#!/usr/bin/env bash
# ./publish make: what it writes.
# shellcheck source=tests/publish_script/script-test.sh
source "$(dirname "${BASH_SOURCE[0]}")/script-test.sh"

# The text that add-ins will read for a language.
text_of() { jq -j ".x64.description.$1" out/UpdateInfo.txt; }

test_writes_these_bytes() {
    local major minor build
    IFS=. read -r major minor build <<<"$version"
    echo 'Faster at the start.' >english
    echo 'Schneller beim Start.' >german
    echo 'Más rápido al iniciar.' >spanish
    echo 'Başlangıçta daha hızlı.' >turkish
    publish 0 make --version "$version" --installer "$installer" --link "$link" --out out \
        --description tr=turkish default=english --description de=german --description es=spanish
    expect_lines out/UpdateInfo.txt \
        '{' \
        '    "x64": {' \
        "        \"majorVersion\": $major," \
        "        \"minorVersion\": $minor," \
        "        \"buildNumber\": $build," \
        "        \"downloadLink\": \"http://www.orva.example/downloads/outlook/OrvaSetup-$version.exe\"," \
        '        "description": {' \
        '            "de": "Schneller beim Start.",' \
        '            "es": "Más rápido al iniciar.",' \
        '            "tr": "Başlangıçta daha hızlı.",' \
        '            "default": "Faster at the start."' \
        '        }' \
        '    }' \
        '}'
    [[ $(tail -n 4 stdout) == *$'\n'"out/$installer_name"$'\nout/UpdateInfo.txt' ]]
}

test_puts_the_installer_beside_the_file_and_nothing_else() {
    cp "$installer" .
    chmod 700 "$installer_name"
    local installer=$installer_name
    make_update 0
    expect_equal "$installer_name UpdateInfo.txt" "$(cd out && find . -mindepth 1 -printf '%P\n' | sort | xargs)"
    cmp "$installer" "out/$installer_name"
    # For a web server to read.
    expect_equal '644 644' "$(stat -c %a "out/$installer_name" out/UpdateInfo.txt | xargs)"
}

test_has_only_the_languages_that_were_given() {
    make_update 0
    expect_equal '["default"]' "$(jq -c '.x64.description | keys' out/UpdateInfo.txt)"
}

test_keeps_every_character_of_a_text() {
    # shellcheck disable=SC2016 # nothing of it is meant for the shell
    local text='"quoted" \ \n \u0041 {$link} $(id) `id` %d
	tab, ÄÖÜ ß ñ İı € 😀 
 '$'\x01\x7f''<b>&amp;</b>'
    printf %s "$text" >english
    make_update 0
    expect_equal "$text" "$(text_of default)"
}

test_drops_a_byte_order_mark_carriage_returns_and_line_ends_at_the_end() {
    printf '\xEF\xBB\xBFone\r\n\r\ntwo \r\n\r\n\n' >english
    make_update 0
    expect_equal $'one\n\ntwo ' "$(text_of default)"
    fails grep -q $'\xEF\xBB\xBF' out/UpdateInfo.txt
}

test_takes_a_long_text() {
    # More than a pipe holds.
    seq -f 'Line %g of what is new.' 5000 >english
    make_update 0
    expect_equal "$(<english)" "$(text_of default)"
}

test_keeps_line_ends_at_the_beginning() {
    printf '\n\none' >english
    make_update 0
    expect_equal $'\n\none' "$(text_of default)"
}

test_takes_an_installer_with_blanks_in_its_name() {
    local link
    cp "$installer" 'Orva Setup ä.exe'
    local installer='Orva Setup ä.exe'
    for link in 'http://www.orva.example/Orva Setup ä.exe' 'http://www.orva.example/Orva%20Setup%20%c3%A4.exe'; do
        make_update 0
        cmp "$installer" "out/$installer"
        expect_equal "$link" "$(jq -r .x64.downloadLink out/UpdateInfo.txt)"
    done
}

test_replaces_the_file_in_one_step() {
    make_update 0
    cp out/UpdateInfo.txt before
    ln out/UpdateInfo.txt still-open
    echo 'Another text.' >english
    make_update 0
    # Whoever still reads the old file reads it to its end.
    cmp before still-open
    expect_equal 'Another text.' "$(text_of default)"
}

test_takes_the_installer_that_is_in_the_folder_already() {
    mkdir out
    cp "$installer" "out/$installer_name"
    cp "$installer" before
    local installer="out/$installer_name"
    make_update 0
    cmp before "$installer"
}

run_tests
