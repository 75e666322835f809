#!/usr/bin/env bash
# check-exports.sh LIBRARY LIST: compares what the library exports with the checked-in list.
# "check-exports.sh --update LIBRARY LIST" writes the list anew after a wanted change.
set -euo pipefail
export LC_ALL=C

update=
if [ "$1" = --update ]; then update=1; shift; fi
library=$1 list=$2

exports() {
    case $library in
    *.dll)
        x86_64-w64-mingw32-objdump -p "$library" |
            sed -n '/Ordinal\/Name Pointer/,/^$/s/^.*\] //p' | sed 's/^+base\[ *[0-9]*\] *[0-9a-f]* //' |
            awk '{print $NF}' | c++filt
        ;;
    *) nm -DC --defined-only "$library" | sed 's/^[0-9a-f]* [A-Za-z] //' ;;
    esac | grep 'Vorn::Util' | sort -u
}

# GNU-unique symbols: the process has only one of each, even if two copies of the library are
# loaded, and dlclose() does not unload a library that has one.
unique=$(case $library in *.dll) ;; *) nm -DC --defined-only "$library" | grep ' u ' || true ;; esac)
if [ -n "$unique" ]; then
    printf 'Exported as GNU-unique symbols:\n%s\n' "$unique"
    exit 1
fi

if [ -n "$update" ]; then
    exports > "$list"
elif ! difference=$(diff "$list" <(exports)); then
    printf 'The exports have changed (< the list, > the library):\n%s\n' "$difference"
    exit 1
fi
