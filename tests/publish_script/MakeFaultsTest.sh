#!/usr/bin/env bash
# ./publish make: what is refused, and what happens to the files that were there.
# shellcheck source=tests/publish_script/script-test.sh
source "$(dirname "${BASH_SOURCE[0]}")/script-test.sh"

# What the folder holds afterwards is what it held before, and nothing else.
expect_untouched() {
    expect_lines out/UpdateInfo.txt 'the old file'
    expect_lines "out/$installer_name" 'the old installer'
    expect_equal "$installer_name UpdateInfo.txt" "$(cd out && find . -mindepth 1 -printf '%P\n' | sort | xargs)"
}

publish_old_files() {
    mkdir out
    echo 'the old file' >out/UpdateInfo.txt
    echo 'the old installer' >"out/$installer_name"
}

test_an_error_that_check_finds_leaves_the_old_files() {
    local link
    publish_old_files
    for link in "https://www.orva.example/$installer_name" "ftp://www.orva.example/$installer_name"; do
        make_update 1
        expect_equal 'publish: nothing was written to out' "$(tail -n 1 stderr)"
        expect_untouched
    done
}

test_an_installer_of_another_version_is_refused() {
    publish_old_files
    local version=9.0.0
    make_update 1
    expect_untouched
}

test_a_version_that_users_have_already_is_refused() {
    publish_old_files
    make_update 1 --installed "$version"
    expect_untouched
}

test_ended_in_the_middle_of_writing_it_leaves_the_old_files() {
    publish_old_files
    replace_program jq <<'SCRIPT'
printf '{"x64": {'
kill -TERM $PPID
SCRIPT
    make_update 130
    expect_untouched
}

test_killed_in_the_middle_of_writing_it_leaves_the_old_files_whole() {
    publish_old_files
    replace_program jq <<'SCRIPT'
printf '{"x64": {'
kill -KILL $PPID
SCRIPT
    make_update 137
    expect_lines out/UpdateInfo.txt 'the old file'
    expect_lines "out/$installer_name" 'the old installer'
}

test_a_full_disk_leaves_the_old_files() {
    publish_old_files
    replace_program cp <<<'echo "No space left on device" >&2; exit 1'
    make_update 1
    expect_untouched
}

test_the_installer_is_there_before_a_file_that_names_it() {
    publish_old_files
    replace_program mv <<'SCRIPT'
echo "${@: -1}" >>renamed
exec "$real_mv" "$@"
SCRIPT
    make_update 0
    expect_lines renamed "out/$installer_name" out/UpdateInfo.txt
}

run_tests
