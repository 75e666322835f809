#!/usr/bin/env python3
"""Prints a header, page or sample for Doxygen.

docs-filter.py FILE

- In a header, "Kept for compatibility: see "NAME" in docs/compatibility.md" gets a link to the row NAME
  of that page, and the name of any other page a link to it. Friends are left out.
- In a page, the page and its headings get names. A link between pages, "[text](other.md#heading)",
  becomes a reference to the name, with the title of the page if the text is its file name. The name of a
  class gets a link to it.
- In a sample, the parts between the marks "//! [name]" begin at the left margin.
"""
import pathlib
import re
import sys
import textwrap

PROJECT = pathlib.Path(__file__).resolve().parent.parent
TITLES = {"README.md": "Getting started", "docs/linux.md": "Linux equivalents"}
COMMENT = re.compile(r"(Kept for compatibility: see)(.*?)\s(?:///\s*)?in\s(?:\s*///\s*)?docs/compatibility\.md\.", re.S)
FRIEND = re.compile(r"^ *friend class \w+;$", re.M)
PAGE = re.compile(r"docs/(\w+)\.md")
CODE = re.compile(r"(?<!`)`([^`\n]+)`(?!`)")
CLASSES = {path.stem for path in (PROJECT / "Utility").glob("*.h")
           if path.stem not in ("Export", "TextConversions") and not path.stem.endswith("_p")}
ROW = re.compile(r"^\| (?!name \||-)([^|]+) \| ", re.M)
MARK = re.compile(r"(^ *//! \[[^\]]+\]\n)", re.M)
LINK = re.compile(r"(?<!!)\[([^\]]+)\]\(([^)\s:]+\.md)?(?:#([\w-]+))?\)")


def slug(text):
    """The anchor of a heading, as in a link to it."""
    return re.sub(r"[^\w\- ]", "", text.strip().lower()).replace(" ", "-")


def entry(name):
    return "compatibility-entry-" + slug(name)


def page_name(path):
    parts = path.relative_to(PROJECT).with_suffix("").parts
    return slug("-".join(parts[-2:]) if len(parts) > 2 else parts[-1])


def header(text):
    def reference(match):
        name = re.sub(r"\s*\n\s*///\s*", " ", match[1])
        return f'\\ref {entry(name)} "{name}"'

    def names(match):
        return match[1] + re.sub(r'"([^"]+)"', reference, match[2]) + "."

    text = FRIEND.sub("", text)
    return PAGE.sub(lambda match: f"\\ref {match[1]}", COMMENT.sub(names, text))


def link(match, page):
    text, target, heading = match.groups()
    name = page_name((page.parent / target).resolve() if target else page)
    if heading:
        name += "-" + heading
    return f"\\ref {name}" if text.endswith(".md") else f"[{text}](@ref {name})"


def code(match):
    text = match[1]
    if text in CLASSES:
        return f'\\ref Vorn::Util::{text} "{text}"'
    return f"``{text}``" if "'" in text else match[0]  # Doxygen ends a single one at an apostrophe


def markdown(text, page):
    name = page_name(page)
    title = TITLES.get(str(page.relative_to(PROJECT)))
    parts = re.split(r"(^ *```.*?^ *```)", text, flags=re.S | re.M)  # every second one is code
    for i in range(0, len(parts), 2):
        part = parts[i]
        if i == 0:
            part = re.sub(r"\A# (.*)", lambda match: f"# {title or match[1]} {{#{name}}}", part)
        part = re.sub(r"^(##+) (.*)$",
                      lambda match: f"{match[1]} {match[2]} {{#{name}-{slug(match[2])}}}", part, flags=re.M)
        if name == "compatibility":
            part = ROW.sub(lambda match: f"| \\anchor {entry(match[1])} {match[1]} | ", part)
        part = LINK.sub(lambda match: link(match, page), part)
        parts[i] = "\n".join(line if line.startswith("#") else CODE.sub(code, line)
                             for line in part.split("\n"))
    return "".join(parts)


def sample(text):
    parts = MARK.split(text)  # every second one is a mark, and marks come in pairs
    parts[2::4] = map(textwrap.dedent, parts[2::4])
    return "".join(parts)


def main():
    page = pathlib.Path(sys.argv[1]).resolve()
    text = page.read_text(encoding="utf-8")
    sys.stdout.reconfigure(encoding="utf-8")
    filters = {".cpp": sample, ".h": header, ".md": lambda text: markdown(text, page)}
    sys.stdout.write(filters[page.suffix](text))


if __name__ == "__main__":
    main()
