#!/usr/bin/env python3
"""Compares the layers in docs/architecture.md with the #include lines of the code.

check-includes.py [FOLDER]

FOLDER is the project; by default the one that this script belongs to. The page has a table of the
layers: their files, and the layers that they may include. It also has a picture, in which every layer
stands above those that it includes. Prints each contradiction and ends with 1 when there are any.
"""
import pathlib
import re
import sys

SOURCES = {".h", ".cpp"}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)
SYSTEM_SWITCH = re.compile(
    r"^\s*#\s*(?:el)?if.*\b(_WIN32|_WIN64|WIN32|_MSC_VER|__linux__|__unix__|__APPLE__|Q_OS_\w+)\b", re.M)
WINDOWS_HEADER = "Utility/Platform/Windows/WindowsApi.h"
WINDOWS_PEERS = pathlib.PurePath("benchmarks/windows")
WINDOWS_EXAMPLES = "examples/*/Windows/*"  # programs of their own, which cannot use the library's header


def read_table(page):
    """The first table of the page, as {name: (patterns, names of the layers below)}."""
    table = page.partition("\n|")[2].partition("\n\n")[0]
    rows = re.findall(r"^\| (\w+) \| (`.*?) \| .* \| (.*?) \|$", table, re.M)
    layers = {}
    for name, files, includes in rows:
        below = [] if includes == "nothing" else includes.split(", ")
        layers[name] = (re.findall(r"`([^`]+)`", files), below)
    return layers


def lines_of_layers(page, layers):
    """The line of the picture that each layer stands in."""
    picture = page.split("```")[1].splitlines()
    return {name: number for number, line in enumerate(picture)
            for name in re.findall(r"\w+", line) if name in layers}


def layer_of(path, layers):
    """The layer with the longest matching pattern: a folder, or a name in one folder."""
    best = (0, None)
    for name, (patterns, _) in layers.items():
        for pattern in patterns:
            if pattern.endswith("/"):
                matches = path.as_posix().startswith(pattern)
            else:
                matches = path.parent == pathlib.PurePath(pattern).parent and path.match(pattern)
            if matches:
                best = max(best, (len(pattern), name))
    return best[1]


def check_picture(page, layers):
    lines = lines_of_layers(page, layers)
    for name, (_, below) in layers.items():
        if name not in lines:
            yield f"docs/architecture.md: the picture does not show {name}"
        for lower in below:
            if lower not in layers:
                yield f"docs/architecture.md: the table has no layer {lower}"
            elif lines.get(lower, 0) <= lines.get(name, 0):
                yield f"docs/architecture.md: the picture does not show {lower} below {name}"


def is_of_the_system(header):
    """Whether a header is neither Qt's nor the C++ library's nor the project's own."""
    return header.endswith(".h") and not header.startswith(("Utility/", "Qt"))


def check_file(path, text, layers, used):
    name = layer_of(path, layers)
    if name is None:
        yield f"{path}: belongs to no layer of docs/architecture.md"
        return
    in_library = path.parts[0] == "Utility"
    of_one_system = name == "systems"
    for bracket, header in INCLUDE.findall(text):
        if header.startswith("Utility/"):
            lower = layer_of(pathlib.PurePath(header), layers)
            used.add((name, lower))
            if lower != name and lower not in layers[name][1]:
                yield f"{path}: {name} must not include {lower} ({header})"
            if of_one_system and lower == name and pathlib.PurePath(header).parent != path.parent:
                yield f"{path}: one system includes another ({header})"
        elif in_library and bracket == '"':
            yield f'{path}: "{header}" should be <Utility/...>'
        elif in_library and not of_one_system and is_of_the_system(header):
            yield f"{path}: <{header}> belongs in Utility/Platform/<System>/"
        if (header.lower() == "windows.h" and path.as_posix() != WINDOWS_HEADER
                and WINDOWS_PEERS not in path.parents and not path.match(WINDOWS_EXAMPLES)):
            yield (f"{path}: only {WINDOWS_HEADER}, {WINDOWS_PEERS} and {WINDOWS_EXAMPLES}"
                   " include <windows.h>")
    if in_library and not of_one_system:
        for switch in SYSTEM_SWITCH.findall(text):
            yield f"{path}: {switch} is used outside Utility/Platform/<System>/"


def find_circle(headers):
    """A list of headers that include each other, or nothing. Takes {header: headers included}."""
    done, way = set(), []

    def visit(header):
        if header in way:
            return way[way.index(header):] + [header]
        if header in done or header not in headers:
            return None
        way.append(header)
        for included in headers[header]:
            circle = visit(included)
            if circle:
                return circle
        way.pop()
        done.add(header)
        return None

    return next(filter(None, map(visit, list(headers))), None)


def check(root):
    page = (root / "docs/architecture.md").read_text(encoding="utf-8")
    layers = read_table(page)
    yield from check_picture(page, layers)

    used = set()
    headers = {}
    folders = ["Utility", "examples", "benchmarks", "tests", "fuzz"]
    paths = [path for folder in folders for path in sorted((root / folder).rglob("*"))
             if path.suffix in SOURCES]
    for path in paths:
        text = path.read_text(encoding="utf-8")
        relative = path.relative_to(root)
        yield from check_file(relative, text, layers, used)
        if path.suffix == ".h":
            headers[relative.as_posix()] = [header for _, header in INCLUDE.findall(text)]
    for name, (_, below) in layers.items():
        for lower in below:
            if (name, lower) not in used:
                yield f"docs/architecture.md: {name} includes nothing of {lower}"
    circle = find_circle(headers)
    if circle:
        yield "These headers include each other: " + ", ".join(circle)


def main():
    default = pathlib.Path(__file__).resolve().parent.parent
    problems = list(check(pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else default))
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
