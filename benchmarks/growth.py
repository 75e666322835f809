#!/usr/bin/env python3
"""Turns the results of the benchmarks named growth/... into tables for gnuplot, and prints them."""
import collections
import json
import statistics
import sys

with open(sys.argv[1], encoding="utf-8") as file:
    runs = json.load(file)["benchmarks"]
points = collections.defaultdict(lambda: collections.defaultdict(list))
for run in runs:
    if run["run_type"] == "iteration":
        _, work, size = run["name"].split("/")[:3]
        points[work][int(size)].append(run)


def block(title, work, value):
    print(f'"{title}"')
    for size, group in sorted(points[work].items()):
        print(size, statistics.median(value(run) for run in group))
    print("\n")


SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1}


def seconds(run):
    return run["real_time"] * SECONDS[run["time_unit"]]


block("lines", "line", lambda run: run["lines"])
block("list", "list", seconds)
block("queue", "queue", seconds)
block("memory", "queue", lambda run: run["memory"] / 2**20)
block("tasks with the processor as parent", "queueOfChildren", seconds)
for layout in ("size", "sizeFlat"):
    block(f"folder size: {layout}", layout, seconds)
    block(f"memory of folder size: {layout}", layout, lambda run: run["memory"] / 2**20)
