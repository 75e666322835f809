#!/usr/bin/env python3
"""tidy.py BUILD_FOLDER RESULTS_FOLDER FILE...

Runs clang-tidy on source files. A file is checked once in each state: RESULTS_FOLDER has an empty file for
every state without a finding. The state is all that clang-tidy reads: the source with its headers, comments
and macros, the compile options, the rules, and the version of clang-tidy.
"""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import shlex
import subprocess
import sys
import time

KEPT_DAYS = 60
project = pathlib.Path(__file__).resolve().parent.parent
build, results = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
entries = {entry["file"]: entry for entry in json.loads((build / "compile_commands.json").read_text())}
rules = (project / ".clang-tidy").read_bytes()
version = subprocess.run(["clang-tidy", "--version"], check=True, capture_output=True).stdout


def state_of(file):
    """The name of the state of the file, the same wherever the project lies. None if it does not compile."""
    entry = entries[str(project / file)]
    options = shlex.split(entry["command"])[1:]
    output = options.index("-o")
    del options[output:output + 2]
    options.remove("-c")
    preprocessed = subprocess.run(["clang++", *options, "-w", "-E", "-CC", "-dD"], cwd=entry["directory"],
                                  capture_output=True)
    if preprocessed.returncode != 0:
        return None
    read = "\0".join(options).encode() + preprocessed.stdout
    read = read.replace(os.fsencode(build), b"build").replace(os.fsencode(project), b".")
    return hashlib.sha256(version + rules + read).hexdigest()


def check(file):
    """What clang-tidy finds in the file."""
    state = state_of(file)
    if state and (results / state).exists():
        (results / state).touch()
        return ""
    tidy = subprocess.run(["clang-tidy", "--quiet", "-p", build, file], cwd=project, capture_output=True, text=True)
    if tidy.returncode != 0:
        return tidy.stdout + tidy.stderr
    if state:
        (results / state).touch()
    return ""


results.mkdir(parents=True, exist_ok=True)
with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    findings = [text for text in pool.map(check, sys.argv[3:]) if text]
for state in results.iterdir():
    if state.stat().st_mtime < time.time() - KEPT_DAYS * 86400:
        state.unlink(missing_ok=True)
print("".join(findings), end="")
sys.exit(1 if findings else 0)
