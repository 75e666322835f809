#!/usr/bin/env python3
"""Writes the figures of a run into a page.

page.py RESULTS PAGE NAME

RESULTS is what measure.py wrote. In PAGE, replaces what is between the lines "<!-- NAME -->" and
"<!-- end of NAME -->".
"""
import json
import sys

import table


def machine(context):
    """Where and with what was measured, as a sentence."""
    found = context["machine"]
    versions = ", ".join(f"{name} {version}" for name, version in found["versions"].items())
    return (f"Measured on {context['date'][:10]}: {found['processor']}, {context['num_cpus']} cores, "
            f"{found['memory'] / 2**30:.0f} GiB of memory; {found['system']}, Linux {found['kernel']}. "
            f"Debian's versions: {versions}.")


def cells(row):
    if "memory" in row:
        return ["queue, a million tasks waiting", "", f"{row['memory'] / 1e6:.0f} MB", "", "",
                f"{row['spread'] / 1e6:.1f} MB", f"{row['goal'] / 1e6:.0f} MB", str(row["rounds"]),
                row["verdict"]]
    return [f"`{row['work']}`", f"`{row['peer']}`", table.duration(row["own"]),
            table.duration(row["other"]), f"{row['ratio']:.2f}", f"{row['spread']:.3f}",
            f"{row['goal']:.2f}", str(row["rounds"]), row["verdict"]]


def tables(results):
    head = ["work", "peer", "library", "peer's time", "ratio", "spread", "at most", "rounds", "verdict"]
    lines = [machine(results["context"]), "", head, ["---"] * 2 + ["---:"] * 6 + ["---"]]
    lines += [cells(row) for row in table.rows(results["benchmarks"])]
    return "\n".join(line if isinstance(line, str) else f"| {' | '.join(line)} |" for line in lines)


def with_part(page, name, text):
    """The page with another text between the two lines of that name."""
    before, rest = page.split(f"<!-- {name} -->\n")
    _, after = rest.split(f"<!-- end of {name} -->\n")
    return f"{before}<!-- {name} -->\n{text}\n<!-- end of {name} -->\n{after}"


def main():
    results, path, name = sys.argv[1:4]
    with open(results, encoding="utf-8") as file:
        text = tables(json.load(file))
    with open(path, encoding="utf-8") as file:
        page = file.read()
    with open(path, "w", encoding="utf-8") as file:
        file.write(with_part(page, name, text))


if __name__ == "__main__":
    main()
