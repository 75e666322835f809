#!/usr/bin/env python3
"""Prints how many test functions and rows each test program ran on the two systems.

test-table.py LINUX_RUN_FOLDER WINDOWS_RUN_FOLDER
"""
import pathlib
import re
import sys

TOTALS = re.compile(r"^Totals: (\d+) passed, (\d+) failed, (\d+) skipped", re.M)
SKIP = re.compile(r"^SKIP\s+: (\S+)\(.*?\)\s*(.*)$", re.M)


def results(folder):
    found = {}
    for path in sorted(pathlib.Path(folder).glob("tst_*/result.txt")):
        text = path.read_text(encoding="utf-8", errors="replace")
        totals = TOTALS.findall(text)
        if totals:
            passed, failed, skipped = map(int, totals[-1])
            # QtTest also counts initTestCase and cleanupTestCase.
            found[path.parent.name[4:]] = (passed + failed - 2, failed, skipped, SKIP.findall(text))
    return found


def cell(result, column):
    return "-" if result is None else str(result[column])


def main():
    linux, windows = (results(folder) for folder in sys.argv[1:3])
    row = "{:<22} {:>9} {:>8} {:>11} {:>8}"
    print(row.format("class", "Linux run", "skipped", "Windows run", "skipped"))
    for name in sorted(set(linux) | set(windows)):
        pair = linux.get(name), windows.get(name)
        print(row.format(name, *(cell(result, column) for result in pair for column in (0, 2))))
    for system, found in (("Linux", linux), ("Windows", windows)):
        for name, result in found.items():
            for function, reason in result[3]:
                print(f"skipped on {system}: {function}: {reason}")


main()
