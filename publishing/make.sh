# Makes the folder that is uploaded to the web host: UpdateInfo.txt and the installer.
#
#   ./publish make --version X.Y.Z --installer FILE --link URL --description LANGUAGE=FILE... [--key FILE] --out FOLDER
#
#   --version X.Y.Z        the version that the installer installs
#   --installer FILE       the setup program; a copy of it is put into FOLDER
#   --link URL             from where add-ins will download it; plain http, and it ends with the installer's name
#   --description LANGUAGE=FILE...
#                          what the user reads in the offer, a text in UTF-8 for each language: de, es, tr, and default,
#                          which must not be missing and which everybody else reads. May be given repeatedly.
#   --key FILE             the private key of ./publish new-key: signs version and installer for builds that have the
#                          public one; others ignore the signature
#   --installed X.Y.Z      a version that users have, besides the one that this source builds
#   --out FOLDER           where both files go; what was there before stays whole until they are ready
#
# A byte-order mark and line ends at a text's end are dropped, and line ends become line feeds. Before anything is replaced,
# ./publish check reads the new file, and an error leaves everything as it was.
# shellcheck shell=bash disable=SC2154 # variables of ./publish

# shellcheck source=publishing/program.sh
source "$here/publishing/program.sh"

version='' installer='' link='' key='' out='' installed=''
declare -A text=()

# add_text LANGUAGE=FILE
add_text() {
    local language=${1%%=*} file=${1#*=}
    [[ $1 == *=* ]] || usage "--description takes LANGUAGE=FILE, not $1"
    case $language in
    de | es | tr | default) ;;
    en) usage "there is no language en: users with English read default" ;;
    *) usage "the languages are de, es, tr and default, not $language" ;;
    esac
    [ -z "${text[$language]:-}" ] || usage "there are two descriptions for $language"
    [ -f "$file" ] || usage "there is no file $file"
    iconv -f UTF-8 -t UTF-8 "$file" >/dev/null 2>&1 || usage "$file is not a text in UTF-8"
    ! grep -qaP '\x00' "$file" || usage "$file holds a zero byte, with which a text ends"
    grep -q '[^[:space:]]' <(sed $'1s/^\xEF\xBB\xBF//' "$file") || usage "$file holds no text"
    text[$language]=$file
}

while [ $# -gt 0 ]; do
    option=$1
    name=${option#--}
    case $option in
    --version | --installer | --link | --key | --out | --installed | --description)
        [[ -n ${2:-} && $2 != --* ]] || usage "$option needs a value"
        ;;
    *) usage "unknown option: $option" ;;
    esac
    if [ "$option" = --description ]; then
        shift
        while [ $# -gt 0 ] && [[ $1 != --* ]]; do
            add_text "$1"
            shift
        done
    else
        [ -z "${!name}" ] || usage "$option is given twice"
        printf -v "$name" %s "$2"
        shift 2
    fi
done
for name in version installer link out; do
    [ -n "${!name}" ] || usage "--$name is missing"
done
[ -n "${text[default]:-}" ] || usage "--description default=FILE is missing: what everybody reads who has no text of their own"

[ -z "$installed" ] || check_version --installed "$installed"
check_version --version "$version"
[ -f "$installer" ] || usage "there is no file $installer"
# A server answers such a link with an error.
[[ ${link//%[[:xdigit:]][[:xdigit:]]/} != *%* ]] || usage "the link holds a % without two hexadecimal digits behind it: $link"
# As the web server reads the link; the user's own file will have the name that stands there.
link_name=${link##*/}
link_name=${link_name//\\/\\\\}
printf -v link_name %b "${link_name//%/\\x}"
file_name=$(basename "$installer")
[ "$link_name" = "$file_name" ] || usage "the link ends with $link_name, but the installer is $file_name"

install_tools
if [ -n "$key" ]; then
    public_key=$(openssl pkey -in "$key" -pubout) || usage "$key is not a private key"
    [[ $(openssl pkey -pubin -noout -text <<<"$public_key") == *"ASN1 OID: prime256v1"* ]] ||
        usage "$key is not a key of the curve P-256"
fi

prepare_program
mkdir -p "$out" || exit 1
# In the same file system, so that renaming puts it there in one step.
scratch=$(mktemp -d "$out/.publish.XXXXXX") || exit 1
# shellcheck disable=SC2317 # called at the end
remove_scratch() { rm -rf "$scratch"; }
at_exit remove_scratch
# Not with the rights of a temporary file: a web server has to read it.
cp --no-preserve=mode "$installer" "$scratch/$file_name"

signature=
if [ -n "$key" ]; then
    echo "$public_key" >"$scratch/public.pem"
    # Both together, so that an old installer cannot be offered under a new number.
    signature=$({ printf '%s\n' "$version" && cat "$scratch/$file_name"; } |
        openssl dgst -sha256 -sign "$key" | openssl base64 -A) || refuse "OpenSSL could not sign with $key"
fi

for language in default de es tr; do
    : "${text[$language]:=/dev/null}"
done
jq -n --indent 4 --argjson major "${numbers[0]}" --argjson minor "${numbers[1]}" --argjson build "${numbers[2]}" \
    --arg link "$link" --arg signature "$signature" --rawfile de "${text[de]}" --rawfile es "${text[es]}" \
    --rawfile tr "${text[tr]}" --rawfile default "${text[default]}" '
        def plain: ltrimstr("\ufeff") | split("\r\n") | join("\n") | until(endswith("\n") | not; .[:-1]);
        {x64: ({majorVersion: $major, minorVersion: $minor, buildNumber: $build, downloadLink: $link}
            + if $signature == "" then {} else {$signature} end
            + {description: ({$de, $es, $tr, $default} | map_values(plain) | with_entries(select(.value != "")))})}
    ' >"$scratch/UpdateInfo.txt" || exit 1

# Shown as a whole: who publishes wants to know what users will see.
read_arguments "$scratch/UpdateInfo.txt" --installer "$scratch/$file_name" \
    ${key:+--public-key "$scratch/public.pem"} ${installed:+--installed "$installed"}
run_check || refuse "nothing was written to $out"
# The installer first, because a link must not lead nowhere.
mv -T "$scratch/$file_name" "$out/$file_name"
mv -T "$scratch/UpdateInfo.txt" "$out/UpdateInfo.txt"
echo "Ready to be uploaded, the installer first:"
echo "$out/$file_name"
echo "$out/UpdateInfo.txt"
