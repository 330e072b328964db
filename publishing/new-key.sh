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

# Both are made and tried in a folder that nobody else can enter, so that FOLDER never has an empty key, a cut one, or one
# without the other.
scratch=$(mktemp -d "$folder/.new-key.XXXXXX") || exit 1
private=$scratch/private.pem public=$scratch/public.pem is_done=
# shellcheck disable=SC2317 # called at the end
remove_scratch() {
    local file
    if [ -z "$is_done" ]; then
        for file in private.pem public.pem; do
            # Not somebody else's.
            [[ ! $folder/$file -ef $scratch/$file ]] || rm -f "$folder/$file"
        done
    fi
    rm -rf "$scratch"
}
at_exit remove_scratch

# With these rights from its first instant on.
(umask 077 && openssl genpkey -quiet -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -pkeyopt ec_param_enc:named_curve \
    >"$private") || refuse "OpenSSL made no private key"
openssl pkey -in "$private" -pubout >"$public" || refuse "OpenSSL made no public key"
{ openssl dgst -sha256 -sign "$private" "$public" >"$scratch/signature" &&
    openssl dgst -sha256 -verify "$public" -signature "$scratch/signature" "$public"; } >/dev/null ||
    refuse "the keys that OpenSSL has made do not work"
for file in private.pem public.pem; do
    # Unlike mv, it never replaces a file that has appeared meanwhile.
    ln -T "$scratch/$file" "$folder/$file" || refuse "no key was made"
done
is_done=1
echo "$folder/private.pem  signs updates; keep it to yourself, and a copy in a safe place"
echo "$folder/public.pem   goes into the add-in: -D ORVA_UPDATE_KEY=$(realpath "$folder")/public.pem"
