#!/usr/bin/env bash
# Writes the API reference, from the public headers and the pages, to build/docs/html.
. "$(dirname "$0")/common.sh"
need doxygen
cd "$project"
mkdir -p build/docs
doxygen docs/Doxyfile
say "build/docs/html/index.html"
