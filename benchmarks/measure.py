#!/usr/bin/env python3
"""Measures the rows of a table.

measure.py linux|windows RESULTS FOLDER FILTER PROGRAM...

Runs the benchmarks of each row whose work matches the regular expression FILTER, and writes their
figures to RESULTS, in the form of the JSON output of Google Benchmark. PROGRAM... is the command that
starts the benchmarks. They keep their files in FOLDER.

In each round, the library and its peers run one directly after the other, each in a process of its own.
The order changes from round to round, so that what one leaves behind (in the caches, on the disk) does
not always help or slow down the same one. A first round, which makes the files, does not count.
"""
import collections
import json
import os
import platform
import re
import subprocess
import sys

from rows import MEMORY, ROWS

# What the figures depend on: a name for the reader, and the Debian package.
PACKAGES = {
    "linux": {"Qt": "libqt5core5a", "GCC": "g++-12", "glibc": "libc6", "coreutils": "coreutils",
              "7-Zip": "7zip", "spdlog": "libspdlog-dev", "Google Benchmark": "libbenchmark-dev"},
    "windows": {"Wine": "wine", "Qt": "qtbase5-dev", "GCC": "g++-mingw-w64-x86-64-posix",
                "mingw-w64": "mingw-w64-x86-64-dev", "Google Benchmark": "libbenchmark-dev"},
}
MEMORY_ROUNDS = 3

# In seconds. A program sometimes hangs while Wine starts it; it is started again then. The longest
# run makes a million files.
TIMEOUT = 200


def first_match(pattern, path):
    with open(path, encoding="utf-8") as file:
        found = re.search(pattern, file.read(), re.M)
    return found.group(1) if found else "unknown"


def package_version(package):
    """The version that is installed or, for what is built from its source package, would be."""
    policy = subprocess.run(["apt-cache", "policy", package], stdout=subprocess.PIPE, text=True,
                            check=True, env={**os.environ, "LC_ALL": "C"}).stdout
    installed, candidate = re.findall(r"^  (?:Installed|Candidate): (.*)$", policy, re.M)
    return candidate if installed == "(none)" else installed


def machine(system):
    return {
        "processor": first_match(r"^model name\s*: (.*)$", "/proc/cpuinfo"),
        "memory": int(first_match(r"^MemTotal:\s*(\d+) kB$", "/proc/meminfo")) * 1024,
        "kernel": re.match(r"\d+\.\d+", platform.release()).group(),
        "system": first_match(r'^PRETTY_NAME="(.*)"$', "/etc/os-release"),
        "versions": {name: package_version(package) for name, package in PACKAGES[system].items()},
    }


class Program:
    def __init__(self, command, folder):
        self.command = [*command, f"--folder={folder}"]
        self.core = str(max(os.sched_getaffinity(0)))
        self.context = {}

    def output(self, command):
        for _ in range(3):
            try:
                return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True,
                                      timeout=TIMEOUT).stdout
            except subprocess.TimeoutExpired:
                print("started again:", *command, file=sys.stderr)
        sys.exit("the benchmark does not end")

    def run(self, name, one_core):
        """The figures of a benchmark; none if there is no such benchmark."""
        os.sync()
        prefix = ["taskset", "-c", self.core] if one_core else []
        options = [f"--benchmark_filter=^{name}(/|$)", "--benchmark_min_time=0.05",
                   "--benchmark_format=json"]
        output = self.output([*prefix, *self.command, *options])
        if not output.strip():
            return []
        result = json.loads(output)
        self.context = result["context"]
        return result["benchmarks"]


def works(system, pattern):
    """The benchmarks that run one after the other in a round, with a row that says how."""
    found = collections.defaultdict(lambda: [["own"], None])
    for row in ROWS:
        if system in row.systems.split() and re.search(pattern, row.work):
            found[row.work][0].append(row.peer)
            found[row.work][1] = row
    groups = [([f"{work}/{who}" for who in names], row.one_core, row.rounds)
              for work, (names, row) in found.items()]
    if system == "linux" and re.search(pattern, MEMORY):
        groups.append(([MEMORY], True, MEMORY_ROUNDS))
    return groups


def main():
    system, results, folder, pattern = sys.argv[1:5]
    program = Program(sys.argv[5:], folder)
    groups = works(system, pattern)
    if not groups:
        sys.exit(f"no work matches {pattern}")
    missing = [name for names, one_core, _ in groups for name in names
               if not program.run(name, one_core)]
    if missing:
        sys.exit("there is no benchmark " + ", ".join(missing))
    runs = []
    for turn in range(max(rounds for _, _, rounds in groups)):
        for names, one_core, rounds in groups:
            order = names if turn % 2 == 0 else names[::-1]
            for name in order:
                if turn < rounds:
                    runs += program.run(name, one_core)
        print(f"round {turn + 1}", file=sys.stderr)
    with open(results, "w", encoding="utf-8") as file:
        context = {**program.context, "machine": machine(system)}
        json.dump({"context": context, "benchmarks": runs}, file, indent=1)


if __name__ == "__main__":
    main()
