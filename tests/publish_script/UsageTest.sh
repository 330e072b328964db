#!/usr/bin/env bash
# ./publish: options that are missing or wrong, and what it tells about itself.
# shellcheck source=tests/publish_script/script-test.sh
source "$(dirname "${BASH_SOURCE[0]}")/script-test.sh"

# wrong MESSAGE ARGUMENT...: status 2, this one line, and nothing is made.
wrong() {
    publish 2 "${@:2}"
    expect_lines stderr "publish: $1"
    expect_equal '' "$(cat stdout)"
    [ ! -e out ]
}

# wrong_make MESSAGE ARGUMENT...: with what comes before it in the list of options.
wrong_make() {
    echo text >text
    wrong "$1 (./publish make --help)" make "${@:2}"
}

complete=(--version "$version" --installer "$installer" --link "$link" --out out)

test_without_a_command_it_tells_what_there_is() {
    publish 2
    grep -q '^  ./publish new-key FOLDER ' stderr
    publish 0 --help
    expect_equal '' "$(cat stderr)"
    grep -q '^  ./publish preview FILE --out FOLDER ' stdout
    fails grep -q '^#\|shellcheck\|set -' stdout
}

test_each_command_tells_what_it_takes() {
    local name
    for name in new-key make check preview; do
        publish 0 "$name" --help
        grep -q "^  ./publish $name " stdout
        fails grep -q '^#\|shellcheck' stdout
    done
}

test_an_unknown_command() {
    wrong 'unknown command: upload (./publish --help)' upload
}

test_each_option_that_must_not_be_missing() {
    wrong_make '--version is missing'
    wrong_make '--installer is missing' --version "$version"
    wrong_make '--link is missing' --version "$version" --installer "$installer"
    wrong_make '--out is missing' --version "$version" --installer "$installer" --link "$link"
    wrong_make '--description default=FILE is missing: what everybody reads who has no text of their own' \
        "${complete[@]}" --description de=text
}

test_options_without_a_value() {
    local option
    for option in --version --installer --link --out --key --installed --description; do
        wrong_make "$option needs a value" "$option"
        wrong_make "$option needs a value" "$option" --out
        wrong_make "$option needs a value" "$option" ''
    done
}

test_options_that_are_unknown_or_given_twice() {
    wrong_make 'unknown option: --sign' --sign
    wrong_make 'unknown option: UpdateInfo.txt' UpdateInfo.txt
    wrong_make '--link is given twice' --link one --link other
}

test_versions_that_are_none() {
    local given
    echo text >text
    for given in 1.3 1.3.0.0 1.03.0 -1.3.0 1.3.x v1.3.0 '1.3.0 ' 1.3.99999999999; do
        wrong_make "--version is MAJOR.MINOR.BUILD, not $given" --version "$given" "${complete[@]:2}" --description default=text
        wrong_make "--installed is MAJOR.MINOR.BUILD, not $given" "${complete[@]}" --description default=text \
            --installed "$given"
        wrong "--installed is MAJOR.MINOR.BUILD, not $given (./publish preview --help)" \
            preview text --out out --installed "$given"
    done
}

test_versions_larger_than_a_program_can_have() {
    local message='no number may be greater than 65535, as 65536 is'
    echo text >text
    complete[1]=1.65536.0
    wrong_make "--version: $message" "${complete[@]}" --description default=text
    complete[1]=$version
    wrong_make "--installed: $message" "${complete[@]}" --description default=text --installed 65536.0.0
    wrong "--installed: $message (./publish preview --help)" preview text --out out --installed 1.2.65536
}

test_descriptions_that_are_none() {
    printf 'Gr\xFC\xDFe\n' >latin
    printf 'h\0i\0' >utf-16
    printf '\xEF\xBB\xBF \r\n\n' >blank
    : >empty
    wrong_make '--description takes LANGUAGE=FILE, not text' --description text
    wrong_make 'there is no language en: users with English read default' --description en=text
    wrong_make 'the languages are de, es, tr and default, not fr' --description default=text fr=text
    wrong_make 'the languages are de, es, tr and default, not ' --description =text
    wrong_make 'there are two descriptions for de' --description de=text --description default=text de=text
    wrong_make 'there is no file missing' --description default=missing
    wrong_make 'latin is not a text in UTF-8' --description default=latin
    wrong_make 'utf-16 holds a zero byte, with which a text ends' --description default=utf-16
    wrong_make 'blank holds no text' --description default=blank
    wrong_make 'empty holds no text' --description default=empty
}

test_an_installer_that_is_missing_or_that_the_link_does_not_name() {
    complete[3]=missing.exe
    wrong_make 'there is no file missing.exe' "${complete[@]}" --description default=text
    complete[3]=$installer
    complete[5]=http://www.orva.example/OrvaSetup-0.0.1.exe
    wrong_make 'the link ends with OrvaSetup-0.0.1.exe, but the installer is '"$installer_name" \
        "${complete[@]}" --description default=text
    complete[5]=http://www.orva.example/
    wrong_make 'the link ends with , but the installer is '"$installer_name" "${complete[@]}" --description default=text
}

test_a_percent_sign_that_begins_no_character() {
    local end
    for end in %zz.exe %4 % %%4141; do
        complete[5]=http://www.orva.example/OrvaSetup$end
        wrong_make "the link holds a % without two hexadecimal digits behind it: ${complete[5]}" \
            "${complete[@]}" --description default=text
    done
}

test_check_and_preview_without_a_file() {
    wrong 'check takes a file or a URL (./publish check --help)' check
    publish 2 check missing.txt
    expect_lines stderr "publish: there is no file missing.txt"
    wrong 'preview takes a file (./publish preview --help)' preview
    echo text >text
    wrong '--out is missing (./publish preview --help)' preview text
    wrong 'there is no file missing (./publish preview --help)' preview missing --out out
}

run_tests
