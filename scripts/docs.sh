#!/usr/bin/env bash
# Makes the API reference in build/docs/html from the public headers and the guide.
. "$(dirname "$0")/common.sh"
need doxygen
cd "$project"
mkdir -p build/docs
doxygen docs/Doxyfile
say "build/docs/html/index.html"
