#!/usr/bin/env python3
"""Checks the documentation site that scripts/docs.sh has written.

check-site.py FOLDER

FOLDER has the subfolders html and xml. Prints and ends with 1 for
- every class, member, enumerator and macro that is public or protected and has no description;
- every link and picture that leads to no file or to no anchor of the site, and every entry of the menu that
  leads to no file;
- every page without a title.
"""
import html.parser
import pathlib
import re
import sys
import urllib.parse
import xml.etree.ElementTree as ElementTree


def has_text(element):
    return any("".join(description.itertext()).strip()
               for description in (element.find("briefdescription"), element.find("detaileddescription"))
               if description is not None)


def undocumented(folder):
    for path in sorted(folder.glob("*.xml")):
        for compound in ElementTree.parse(path).getroot().findall("compounddef"):
            name = compound.findtext("compoundname")
            if compound.get("kind") in ("class", "struct", "namespace", "group") and not has_text(compound):
                yield f"{name}: no description"
            for member in compound.iter("memberdef"):
                if member.get("prot") == "private" or member.get("kind") == "friend":
                    continue
                for element in (member, *member.findall("enumvalue")):
                    if not has_text(element):
                        yield f"{name}: {element.findtext('name')} has no description"


class Page(html.parser.HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.links, self.anchors, self.has_title = [], set(), False
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("id", "name") and value:
                self.anchors.add(value)
            elif name == "class" and value == "title":
                self.has_title = True
            elif name in ("href", "src", "data") and value:
                self.links.append(value)


def page_problems(folder):
    pages = {path.resolve(): Page(path.read_text(encoding="utf-8")) for path in folder.rglob("*.html")}
    for url in re.findall(r'url:"([^"#]+)', (folder / "menudata.js").read_text(encoding="utf-8")):
        if not (folder / url).exists():
            yield f"menu: {url} does not exist"
    for path, page in sorted(pages.items()):
        if path.parent == folder.resolve() and not page.has_title:
            yield f"{path.name}: no title"
        for link in page.links:
            parts = urllib.parse.urlsplit(link)
            if parts.scheme or parts.netloc or link.startswith("javascript:"):
                continue
            target = (path.parent / urllib.parse.unquote(parts.path)).resolve() if parts.path else path
            anchor = urllib.parse.unquote(parts.fragment)
            if not target.exists():
                yield f"{path.name}: the link {link} leads to no file"
            elif anchor and target in pages and anchor not in pages[target].anchors:
                yield f"{path.name}: the link {link} leads to no anchor"


def main():
    folder = pathlib.Path(sys.argv[1])
    if not (folder / "html/index.html").exists() or not (folder / "xml/index.xml").exists():
        sys.exit(f"{folder} has no site")
    problems = sorted({*undocumented(folder / "xml"), *page_problems(folder / "html")})
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
