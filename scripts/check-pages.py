#!/usr/bin/env python3
"""Checks that the pages (README.md, docs/ and so on) and the code name each other correctly.

check-pages.py [FOLDER]

FOLDER is the project; by default the one that this script belongs to. Checked are:
- docs/compatibility.md: every entry is named by a comment in Utility/, every such comment names an
  entry, and the tests that an entry names exist;
- in all pages: the files, links, presets, tests, functions and classes named exist;
- README.md: its table has every public header;
- blocks of C++ and CMake: each is a file in docs/samples/, named in the line before it.
Prints each problem and ends with 1 when there are any.
"""
import pathlib
import re
import sys

FOLDERS = "Utility|benchmarks|cmake|docs|examples|fuzz|scripts|tests|tools"
ROW = re.compile(r"^\| ([^|]+) \| [^|]+ \| ([^|]+) \|$", re.M)
COMMENT = re.compile(r"Kept for compatibility: see(.*?)docs/compatibility\.md", re.S)
LINK = re.compile(r"\]\(([^)\s]+)\)")
PATH = re.compile(rf"(?<![\w/.~$-])(?:{FOLDERS})/[\w./*-]*\w(?![\w/<*])")
BLOCK = re.compile(r"(?:`([\w.]+)`[^\n`]*:\n\n)?^```(cpp|c\+\+|cmake)\n(.*?)^```$", re.M | re.S)
CODE = re.compile(r"(?<!`)`([^`\n]+)`(?!`)")


def read(path):
    return path.read_text(encoding="utf-8")


class Project:
    def __init__(self, root):
        self.root = root
        self.pages = [*sorted(root.glob("*.md")), *sorted((root / "docs").glob("*.md")),
                      *sorted(root.glob("*/README.md")), *sorted(root.glob("tests/**/README.md")),
                      *sorted(root.glob("examples/**/README.md"))]
        self.tests = {path.stem: read(path) for path in root.glob("tests/**/tst_*.cpp")}
        self.sources = {path: read(path) for folder in ("Utility", "examples", "tests")
                        for path in (root / folder).rglob("*") if path.suffix in (".h", ".cpp")}
        self.words = set(re.findall(r"\w+", "\n".join(self.sources.values())))
        self.presets = set(re.findall(r'"name": "([^"]+)"', read(root / "CMakePresets.json")))


def entries(page):
    """The rows of the tables as {name: tests}."""
    rows = ROW.findall(page)
    return {name: tests for name, tests in rows if name != "name" and not name.startswith("-")}


def check_entry(name, tests, project):
    program = None
    words = CODE.findall(tests)
    if not any(word.startswith("tst_") for word in words):
        yield f'docs/compatibility.md: "{name}" names no test'
    for word in words:
        if word.startswith("tst_"):
            program = project.tests.get(word, "")
        elif not re.search(rf"::{word}\(\)$", program or "", re.M):
            yield f'docs/compatibility.md: "{name}" names the test function {word}, which does not exist'


def check_compatibility(project):
    named = entries(read(project.root / "docs/compatibility.md"))
    for name, tests in named.items():
        yield from check_entry(name, tests, project)
    used = set()
    for path, text in project.sources.items():
        for comment in COMMENT.findall(text):
            names = re.findall(r'"([^"]+)"', re.sub(r"\s*\n\s*//[/!]* ?", " ", comment))
            used.update(names)
            for name in set(names) - set(named):
                yield f'{path.relative_to(project.root)}: no entry "{name}" in docs/compatibility.md'
    for name in set(named) - used:
        yield f'docs/compatibility.md: no comment in the code names "{name}"'


def anchors(page):
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")
            for heading in re.findall(r"^#+ (.*)$", page, re.M)}


def check_links(page, text):
    for link in LINK.findall(text):
        if re.match(r"\w+:", link):
            continue
        name, _, anchor = link.partition("#")
        target = page.parent / name if name else page
        if not target.exists():
            yield f"the link {link} leads nowhere"
        elif anchor and anchor not in anchors(read(target)):
            yield f"the link {link} leads to no heading"


def check_code(word, project):
    """A problem with a word in `code font`, or nothing."""
    function = re.fullmatch(r"(?:(\w+)::)?(\w+)\(\)", word)
    member = re.fullmatch(r"([A-Z]\w+)::(\w+)", word)
    if re.fullmatch(r"tst_\w+", word):
        return None if word in project.tests else f"there is no test {word}"
    if re.fullmatch(r"(?:linux|windows)-\w+", word):
        return None if word in project.presets else f"there is no preset {word}"
    if re.fullmatch(r"\w*[a-z]\w*\.(?:h|cpp)", word):
        found = any(path.name == word for path in project.sources)
        return None if found else f"there is no file {word}"
    if function or member:
        names = [name for name in (function or member).groups() if name]
        missing = [name for name in names if name not in project.words]
        return f"there is no {missing[0]} in the code" if missing else None
    return None


def check_page(page, text, project):
    yield from check_links(page, text)
    yield from check_blocks(page, text, project)
    for path in sorted(set(PATH.findall(text))):
        if not any(project.root.glob(path)):
            yield f"there is no {path}"
    for preset in re.findall(r"--preset ([\w-]+)", text):
        if preset not in project.presets:
            yield f"there is no preset {preset}"
    for word in sorted(set(CODE.findall(text))):
        problem = check_code(word, project)
        if problem:
            yield problem


def check_blocks(page, text, project):
    """Code is a copy of a file that the tests build."""
    samples = {path.name: path for path in (project.root / "docs/samples").rglob("*")}
    for name, language, code in BLOCK.findall(text):
        if name not in samples:
            yield f"the block of {language} that begins with {code.splitlines()[0]} is no sample"
        elif code != read(samples[name]):
            yield f"the block {name} differs from {samples[name].relative_to(project.root)}"


def check_headers(project):
    text = read(project.root / "README.md")
    for header in sorted(project.root.glob("Utility/*.h")):
        if not header.stem.endswith("_p") and f"`{header.name}`" not in text:
            yield f"README.md: does not name {header.name}"


def main():
    default = pathlib.Path(__file__).resolve().parent.parent
    project = Project(pathlib.Path(sys.argv[1]).resolve() if len(sys.argv) > 1 else default)
    problems = [*check_compatibility(project), *check_headers(project)]
    for page in project.pages:
        name = page.relative_to(project.root)
        problems += [f"{name}: {problem}" for problem in check_page(page, read(page), project)]
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
