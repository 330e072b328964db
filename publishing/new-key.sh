# Makes the key pair of whoever publishes updates.
#
#   ./publish new-key FOLDER
#
# leaves in FOLDER, which is made if there is none:
#
#   private.pem   signs updates (./publish make --key). Only its owner can read it. Keep it where nobody else gets it, and
#                 a copy where it cannot get lost: docs/publishing.md says what happens then.
#   public.pem    goes into the add-in (-D ORVA_UPDATE_KEY=public.pem), which then starts only installers that the other
#                 key has signed. It is no secret.
#
# The keys are of the elliptic curve P-256, as PEM, made by OpenSSL. An existing file is never overwritten.
# shellcheck shell=bash

[[ $# -eq 1 && $1 != -* ]] || fail "new-key takes the folder for the keys (./publish new-key --help)"
folder=$1
install_tools

for file in "$folder/private.pem" "$folder/public.pem"; do
    [[ ! -e $file && ! -L $file ]] || refuse "$file exists, and a key is never overwritten"
done
mkdir -p "$folder" || exit 1

# into FILE COMMAND...: writes the command's output into a file that did not exist.
into() (
    file=$1
    shift
    set -o noclobber
    exec >"$file"
    "$@" || {
        rm "$file"
        exit 1
    }
)

# With these rights from its first instant on.
(umask 077 && into "$folder/private.pem" openssl genpkey -quiet -algorithm EC \
    -pkeyopt ec_paramgen_curve:P-256 -pkeyopt ec_param_enc:named_curve) || exit 1
into "$folder/public.pem" openssl pkey -in "$folder/private.pem" -pubout || exit 1
echo "$folder/private.pem  signs updates; keep it to yourself, and a copy in a safe place"
echo "$folder/public.pem   goes into the add-in: -D ORVA_UPDATE_KEY=$(realpath "$folder")/public.pem"
