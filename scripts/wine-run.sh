#!/usr/bin/env bash
# Runs a Windows program under Wine for CTest. A test program prints nothing to a standard output
# that is not a console, so what it wrote to result.txt is shown instead.
result=
for argument in "$@"; do
    case $argument in *,txt) result=${argument%,txt} ;; esac
done
[ -z "$result" ] || rm -f "$result"
WINEDEBUG=-all wine "$@"
code=$?
[ -z "$result" ] || cat "$result" 2>/dev/null
exit $code
