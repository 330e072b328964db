# Tells what each user will see of an update, before any of them does.
#
#   ./publish check FILE|URL [OPTIONS]
#
#   FILE                   an UpdateInfo.txt
#   URL                    where it is published: the server's answer is checked too, and the installer by its link
#   --installer FILE       the installer that the link is going to lead to
#   --public-key FILE      the key of the add-ins (PEM): the signature has to be there and right
#   --installed X.Y.Z      a version that users have, besides the one that this source builds
#   --json                 for scripts
#
# It reads the file with the add-in's own code. Errors are what would show an error to a user or make the update impossible;
# then the exit status is 1. Warnings are what was probably not meant so.
# shellcheck shell=bash disable=SC2154 # variables of ./publish

# shellcheck source=publishing/program.sh
source "$here/publishing/program.sh"

[ $# -gt 0 ] || fail "check takes a file or a URL (./publish check --help)"
read_arguments "$@"
prepare_program
run_check
