#!/usr/bin/env bash
# Packing the setup program once more, from another folder, in another time zone and with files of another time, gives the
# same bytes.
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# What the build has run, by ninja's account, with copies in place of what it had built.
command=$(ninja -C "$ORVA_BUILD_DIR" -t commands setup | grep ' -DOUTPUT=' | tail -n 1)
setup=$(sed -nE 's/.* -DOUTPUT=([^ ]*).*/\1/p' <<<"$command")
[ -f "$setup" ]
mkdir "$folder/generated"
for file in OrvaOscAddin.dll generated/notices.txt; do
    cp "$ORVA_BUILD_DIR/$file" "$folder/$file"
    touch -d 2001-02-03 "$folder/$file"
done
command=${command//=$ORVA_BUILD_DIR\//=$folder/}
TZ=Asia/Tokyo bash -c "$command"
cmp "$setup" "$folder/${setup##*/}"
