# Takes pictures of what users will see of an update.
#
#   ./publish preview FILE [--installed X.Y.Z] --out FOLDER
#
#   FILE                   an UpdateInfo.txt
#   --installed X.Y.Z      the version that the users have (default: that of this source)
#   --out FOLDER           where the pictures go
#
# Starts the stand-in Outlook in four languages, lets it find FILE, and asks for a check besides. FOLDER gets offer-en.png,
# offer-de.png, offer-es.png and offer-tr.png. Where a message is shown instead, that is taken: message-start-LANGUAGE.png at
# Outlook's start, message-request-LANGUAGE.png on request, with "-2" if there is a second one. What each user sees is told
# as well. Nothing is downloaded.
# shellcheck shell=bash disable=SC2154 # variables of ./publish

# shellcheck source=publishing/program.sh
source "$here/publishing/program.sh"
# shellcheck source=tools/server-lib.sh
source "$here/tools/server-lib.sh"

file='' out='' installed=''
while [ $# -gt 0 ]; do
    case $1 in
    --out | --installed)
        [[ -n ${2:-} && $2 != --* ]] || usage "$1 needs a value"
        printf -v "${1#--}" %s "$2"
        shift
        ;;
    -*) usage "unknown option: $1" ;;
    *)
        [ -z "$file" ] || usage "preview takes one file"
        file=$1
        ;;
    esac
    shift
done
[ -n "$file" ] || usage "preview takes a file"
[ -f "$file" ] || usage "there is no file $file"
[ -n "$out" ] || usage "--out is missing"
[ -z "$installed" ] || check_version --installed "$installed"
mkdir -p "$out" || exit 1

# Empty as well, because the build folder remembers it.
# shellcheck disable=SC2034 # used by configure_and_build
cmake_options=(-D "ORVA_PUBLISHED_VERSION=$installed")
if [ -n "$installed" ]; then
    build_quietly OrvaDemo setup-published
    setup=$build_dir/published/OrvaSetup-$installed.exe
else
    build_quietly OrvaDemo setup
    installed=$(sed -n 's/^#define ORVA_VERSION "\(.*\)"/\1/p' "$build_dir/generated/OrvaVersion.h")
    setup=$build_dir/OrvaSetup-$installed.exe
fi
start_wine
folder=$WINEPREFIX/drive_c/Program\ Files/ORVA\ Connector
remove_addin() {
    [ -e "$folder/Uninstall.exe" ] || return 0
    # In its place, and so to its end: a copy of it would work on, and no setup would start beside it. As words of their own,
    # because NSIS wants the folder without quotation marks. It cannot remove itself then.
    run_in_slot "$folder/Uninstall.exe" /S '_?=C:\Program' 'Files\ORVA' Connector >/dev/null ||
        refuse "the add-in cannot be removed from $WINEPREFIX"
    rm -r "$folder"
}
# A setup does not replace a newer version, which a preview that was ended may have left.
remove_addin
echo "What users of $installed see:"
server_dir=$slot/server
# shellcheck disable=SC2317 # called at the end
end_server() { stop_server "$server_dir"; }
at_exit end_server
rm -rf "$server_dir"
mkdir -p "$server_dir/www${update_info_path%/*}"
cp "$file" "$server_dir/www$update_info_path"
start_server "$server_dir" 1m

rm -f "$out"/{offer,message-start,message-request}-{en,de,es,tr}{,-2}.png
status=0
run_in_slot "$build_dir/OrvaDemo.exe" preview 12 en "$(windows_path "$file")" any later plain "$(windows_path "$out")" \
    "$server_port" "$(windows_path "$server_log")" "$(windows_path "$server_dir/www$update_info_path")" none \
    "$(windows_path "$setup")" "$(windows_path "$here/demo/take-picture")" || status=$?
# When its Wine server ends, a Windows program ends with status 0, wherever it is.
grep -qx 'Every language was seen.' "$slot/output.log" || status=1
remove_addin
[ "$status" -eq 0 ] || refuse "not every window was seen"
rm -f "$out/host.log"
echo "Pictures: $out"
