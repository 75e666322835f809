#!/usr/bin/env bash
# Writes the documentation site, guide and API reference, to build/docs/html. Fails when a public
# member has no description or a link leads nowhere.
. "$(dirname "$0")/common.sh"
need doxygen doxygen-awesome-css graphviz python3
cd "$project"
rm -rf build/docs
mkdir -p build/docs
VERSION=$(sed -nE 's/.*int (Major|Minor|Patch) = ([0-9]+);.*/\2/p' Utility/Version.h | paste -sd.)
export VERSION

# Doxygen's own header, with the switch between light and dark.
touch build/docs/header.html
doxygen -w html build/docs/header.html build/docs/footer.html build/docs/style.css docs/Doxyfile
sed -i 's|</head>|<script type="text/javascript" src="$relpath^doxygen-awesome-darkmode-toggle.js"></script>\
<script type="text/javascript">DoxygenAwesomeDarkModeToggle.init()</script>\
&|' build/docs/header.html

doxygen docs/Doxyfile

# As images, diagrams and plots fit into a narrow window; in frames and objects they would be cut off.
sed -i -E -e 's|<object type="image/svg\+xml" data="([^"]*)"[^>]*>([^<]*)</object>|<img src="\1" alt="\2"/>|' \
    -e 's|<iframe [^>]*src="([^"]*\.svg)"[^>]*>.*</iframe>|<img src="\1" alt="Diagram"/>|' build/docs/html/*.html

# Doxygen writes the indexes of members without a title, pages that nothing leads to, and an empty list of
# pages: the first page has the list.
sed -i 's|^<div class="contents">|<div class="header"><div class="headertitle"><div class="title">Members</div></div></div>&|' \
    build/docs/html/{functions,namespacemembers}*.html
sed -i 's|"pages.html"|"index.html#pages"|' build/docs/html/menudata.js
rm -f build/docs/html/{pages,classes,dir_*}.html
scripts/check-site.py build/docs
say "build/docs/html/index.html"
