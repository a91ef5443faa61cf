#!/usr/bin/python3
"""Holds a coverage report of gcovr (--json) against the bars of the tree's parts, and prints what is below one.

Usage: coverage.py REPORT    the status is 1 when a bar is missed
"""

import json
import re
import sys
from dataclasses import dataclass
from pathlib import Path

ROOMS = r"(request|cache|identity|location|resources|common)/.*|TavloUtility\.h"
DECODER = r"common/PropertyList.*|cache/(KeyedArchive|ArchivedObjects).*"


@dataclass
class Bar:
    part: str
    files: str  # an expression
    lines: float  # percent
    branches: float | None  # nothing is asked where a kernel or a library decides


BARS = [Bar("rooms", ROOMS, 98, 92), Bar("property list and archive", DECODER, 98, 92),
        Bar("platform", r"platform/.*", 90, None), Bar("host", r"host/.*", 90, None), Bar("c", r"c/.*", 90, None),
        Bar("cli", r"cli/.*", 90, None)]
WORST = 5


@dataclass
class Count:
    covered: int = 0
    total: int = 0

    def add(self, covered):
        self.covered += covered
        self.total += 1

    def __add__(self, other):
        return Count(self.covered + other.covered, self.total + other.total)

    def percent(self):
        return 100 * self.covered / self.total if self.total else 100.0

    def __str__(self):
        return f"{self.percent():6.2f} % ({self.total - self.covered} of {self.total} left)"


class File:
    def __init__(self, report):
        self.name = report["file"]
        self.lines, self.branches = Count(), Count()
        self.left, self.half = [], []  # lines that never ran, and those of which a branch was never taken
        for line in report["lines"]:
            if line.get("gcovr/noncode"):
                continue
            self.lines.add(line["count"] > 0)
            taken = [branch["count"] > 0 for branch in line["branches"]]
            for one in taken:
                self.branches.add(one)
            if line["count"] == 0:
                self.left.append(line["line_number"])
            elif not all(taken):
                self.half.append(line["line_number"])


def ranges(numbers):
    """12, 13, 14 and 20 as "12-14 20"."""
    spans = []
    for number in numbers:
        if spans and spans[-1][1] == number - 1:
            spans[-1][1] = number
        else:
            spans.append([number, number])
    return " ".join(str(first) if first == last else f"{first}-{last}" for first, last in spans)


def worst(files, kind, left):
    lacking = [file for file in files if left(file)]
    lacking.sort(key=lambda file: (kind(file).covered - kind(file).total, file.name))
    return [f"    {file.name}: {ranges(left(file))}" for file in lacking[:WORST]]


def check(bar, files):
    """The lines to print, and whether the bar is met."""
    files = [file for file in files if re.fullmatch(bar.files, file.name)]
    if not files:
        return [f"{bar.part}: no file in the report"], False
    lines, branches = sum((file.lines for file in files), Count()), sum((file.branches for file in files), Count())
    told, met = [f"{bar.part:26} lines {lines}, bar {bar.lines} %"], lines.percent() >= bar.lines
    if not met:
        told += ["  below the bar; lines that never ran:"] + worst(files, lambda file: file.lines, lambda file: file.left)
    told.append(f"{'':26} branches {branches}" + (f", bar {bar.branches} %" if bar.branches else ""))
    if bar.branches and branches.percent() < bar.branches:
        met = False
        told += ["  below the bar; lines with branches that were never taken:"]
        told += worst(files, lambda file: file.branches, lambda file: file.half)
    return told, met


def main(arguments):
    if len(arguments) != 1 or arguments[0].startswith("-"):
        print(__doc__.strip(), file=sys.stderr)
        return 2
    report = json.loads(Path(arguments[0]).read_text(encoding="utf-8"))
    files = [File(file) for file in report["files"]]
    results = [check(bar, files) for bar in BARS]
    for told, _ in results:
        print(*told, sep="\n")
    missed = [bar.part for bar, (_, met) in zip(BARS, results) if not met]
    print("coverage: " + ("below the bar: " + ", ".join(missed) if missed else "every bar is met"))
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
