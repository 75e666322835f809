#!/usr/bin/env python3
"""Prints the ratio of each time of the library to the time of its peer.

table.py RESULTS RATIOS

RESULTS is the JSON output of Google Benchmark, in which "work/own" is the library and "work/peer" is
another way to do the same work. RATIOS is the JSON file to write the ratios to.
"""
import collections
import json
import statistics
import sys

# The highest ratio that is accepted, for each work and peer.
TARGETS = {
    ("fastAppend", "write"): 1.5,
    ("fastAppend", "spdlog"): 1.0,
    ("append", "write"): 1.3,
    ("truncation", "copy"): 1.5,
    ("queue", "turns"): 1.6,
    ("queueOfChildren", "turns"): 1.6,
    ("command", "process"): 1.1,
    ("list", "shell"): 1.1,
    ("compress", "shell"): 1.03,
    ("extract", "shell"): 1.03,
    ("size", "du"): 1.5,
    ("remove", "rm"): 1.25,
    ("counter", "pread"): 1.5,
    ("info", "dom"): 1.2,
    ("toQStringAscii", "qt"): 1.1,
    ("toQStringMixed", "qt"): 1.1,
    ("toStdStringAscii", "qt"): 1.1,
    ("toStdStringMixed", "qt"): 1.1,
}

with open(sys.argv[1], encoding="utf-8") as file:
    runs = json.load(file)["benchmarks"]
times = collections.defaultdict(list)
for run in runs:
    if run["run_type"] == "iteration":
        work, who = run["name"].split("/")[:2]
        times[work, who].append(run["real_time"])

ratios = []
print(f"{'work':<18} {'beside':<8} {'ratio':>6} {'at most':>8}")
for (work, peer), target in TARGETS.items():
    if times[work, "own"] and times[work, peer]:
        ratio = statistics.median(times[work, "own"]) / statistics.median(times[work, peer])
        ratios.append({"work": work, "beside": peer, "ratio": ratio, "atMost": target})
        note = "" if ratio <= target else "  over"
        print(f"{work:<18} {peer:<8} {ratio:>6.2f} {target:>8.2f}{note}")

with open(sys.argv[2], "w", encoding="utf-8") as file:
    json.dump(ratios, file, indent=1)
