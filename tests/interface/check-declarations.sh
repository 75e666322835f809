#!/usr/bin/env bash
# check-declarations.sh FOLDER LIST: compares what the headers in the folder declare with the
# checked-in list. The list has one line per declaration, without comments and includes, so that it
# shows what the exported names do not: types, values of enumerators, default arguments, inline
# functions, and the order of members and of virtual functions.
# "check-declarations.sh --update FOLDER LIST" writes the list anew after a wanted change.
set -euo pipefail
export LC_ALL=C

update=
if [ "$1" = --update ]; then update=1; shift; fi
folder=$1 list=$2

declarations() {
    local header
    for header in "$folder"/*.h; do
        printf '%s\n' "-- ${header##*/}"
        # A line of the preprocessor stands for itself, the rest is split where a declaration ends.
        sed -e 's://.*::' -e '/^ *#\(include\|pragma\)/d' -e 's/^ *#.*/\x01&\x01/' "$header" |
            tr -s ' \t\r\n' ' ' |
            sed -e 's/( /(/g' -e 's/ *\([;{}]\) */\1\n/g' -e 's/\x01/\n/g' \
                -e 's/\(public\|protected\|private\|Q_SIGNALS\|Q_SLOTS\):/&\n/g' |
            sed -e 's/^ *//' -e 's/ *$//' -e '/^$/d'
    done
}

if [ -n "$update" ]; then
    declarations > "$list"
elif ! difference=$(diff "$list" <(declarations)); then
    printf 'The declarations have changed (< the list, > the headers):\n%s\n' "$difference"
    exit 1
fi
