#!/usr/bin/env bash
# Runs a Windows program with Wine, for CTest. A test program prints nothing if its standard output is
# not a console, so this script prints the file result.txt that the program wrote.
result=
for argument in "$@"; do
    case $argument in *,txt) result=${argument%,txt} ;; esac
done
[ -z "$result" ] || rm -f "$result"
WINEDEBUG=-all wine "$@"
code=$?
[ -z "$result" ] || cat "$result" 2>/dev/null
exit $code
