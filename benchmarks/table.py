#!/usr/bin/env python3
"""Prints the times of the library beside the times of its peers, and whether the goals are reached.

table.py RESULTS

RESULTS is what measure.py wrote, or the JSON output of Google Benchmark. In it, "work/own" is the
library and "work/peer" is another way to do the same work.
"""
import collections
import json
import statistics
import sys

from rows import MEMORY, MEMORY_GOAL, ROWS

HEAD = """\
Times are medians over the rounds; ratio = own / peer. Spread: in half of the rounds, the ratio differs
from the ratio shown by at most this much (median absolute deviation). "noisy": the spread is larger
than the distance between the ratio and the goal, so the run does not tell whether the goal is reached.
"""

TO_SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1}


def verdict(value, spread, goal):
    if spread > abs(goal - value):
        return "noisy"
    return "ok" if value <= goal else "over"


def figures(work, peer, own, other, goal):
    """The row of a work. own and other are the times in seconds, one for each round."""
    ratio = statistics.median(own) / statistics.median(other)
    spread = statistics.median(abs(a / b - ratio) for a, b in zip(own, other))
    return {"work": work, "peer": peer, "own": statistics.median(own),
            "other": statistics.median(other), "rounds": len(own), "ratio": ratio,
            "spread": spread, "goal": goal, "verdict": verdict(ratio, spread, goal)}


def memory_figures(values):
    median = statistics.median(values)
    spread = statistics.median(abs(value - median) for value in values)
    return {"memory": median, "spread": spread, "rounds": len(values), "goal": MEMORY_GOAL,
            "verdict": verdict(median, spread, MEMORY_GOAL)}


def rows(runs):
    """The rows of all works that the runs have figures of."""
    times = collections.defaultdict(list)
    memory = []
    for run in runs:
        if run["run_type"] != "iteration":
            continue
        names = run["name"].split("/")
        times[names[0], names[1]].append(run["real_time"] * TO_SECONDS[run["time_unit"]])
        if "/".join(names[:3]) == MEMORY:
            memory.append(run["memory"])
    found = []
    for row in ROWS:
        own, other = times[row.work, "own"], times[row.work, row.peer]
        if other and not own:
            raise ValueError(f"there are no figures of {row.work}/own")
        if own and other:
            found.append(figures(row.work, row.peer, own, other, row.goal))
    return found + ([memory_figures(memory)] if memory else [])


def duration(seconds):
    """A time with three digits and its unit."""
    for unit, factor in TO_SECONDS.items():
        if seconds < 1000 * factor or unit == "s":
            return f"{seconds / factor:.3g} {unit}"
    raise AssertionError


def text(row):
    if "memory" in row:
        return (f"a million waiting tasks take {row['memory'] / 1e6:.0f} MB"
                f" (spread {row['spread'] / 1e6:.1f}, at most {row['goal'] / 1e6:.0f})"
                f"  {row['verdict']}")
    return (f"{row['work']:<17} {row['peer']:<8} {duration(row['own']):>9} {duration(row['other']):>9}"
            f" {row['ratio']:>6.2f} {row['spread']:>7.3f} {row['goal']:>8.2f}  {row['verdict']}")


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        found = rows(json.load(file)["benchmarks"])
    print(HEAD)
    print(f"{'work':<17} {'peer':<8} {'own':>9} {'peer':>9} {'ratio':>6} {'spread':>7} {'at most':>8}")
    for entry in found:
        print(text(entry))


if __name__ == "__main__":
    main()
