#!/usr/bin/python3
"""Runs the races of tavlo_bench and makes one table of them, as text, Markdown and JSON.

Ratios are of medians within one run, in which the repetitions of all contestants of a race are shuffled. The spread is
the larger of the interquartile ranges of ours and of what the row is compared with, over the median; beyond 20 % the
row is not decided. bench/footprint.py adds what the component costs before it is of any use.
"""

import argparse
import json
import math
import statistics
import subprocess
import sys
from datetime import datetime, timezone
from pathlib import Path

import footprint

UNDECIDED = 0.20
BEGIN, END = "<!-- the table: made by scripts/bench.sh -->", "<!-- the end of the table -->"
COLUMNS = ("operation", "input", "ours", "peers", "limit", "to best peer", "to limit", "bar", "allocations", "spread")


def listed(program):
    """The races, as the program prints them."""
    races = []
    for line in subprocess.run([*program, "--list"], check=True, capture_output=True, text=True).stdout.splitlines():
        kind, *fields = line.split("\t")
        if kind == "race":
            number, operation, given, size = fields
            races.append({"number": int(number), "operation": operation, "input": given,
                          "size": int(size) if size else None, "contestants": [], "bars": []})
        elif kind == "contestant":
            races[-1]["contestants"].append({"name": fields[0], "role": fields[1]})
        else:
            races[-1]["bars"].append({"ratio": float(fields[0]), "of": fields[1]})
    return races


def run(program, race, repetitions, seconds):
    """Puts the times of all repetitions into the contestants, in nanoseconds."""
    done = subprocess.run(
        [*program, f"--race={race['number']}", f"--benchmark_repetitions={repetitions}",
         f"--benchmark_min_time={seconds}", "--benchmark_enable_random_interleaving=true", "--benchmark_format=json"],
        stdout=subprocess.PIPE, text=True, check=False)
    if done.returncode != 0:
        sys.exit(f"bench: the race {race['operation']}, {race['input']} ended with status {done.returncode}")
    prefix = f"{race['operation']}/{race['input']}/"
    scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    for each in race["contestants"]:
        runs = [one for one in json.loads(done.stdout)["benchmarks"]
                if one["run_type"] == "iteration" and contestant_of(one["name"], prefix) == each["name"]]
        clock = "cpu_time" if runs[0]["name"] == prefix + each["name"] else "real_time"
        each["times"] = [one[clock] * scale[one["time_unit"]] for one in runs]
        each["median"] = statistics.median(each["times"])
        each["allocations"] = runs[0].get("allocations", 0)
        each["peak_bytes"] = runs[0]["peak_bytes"]


def contestant_of(name, prefix):
    """The contestant's name in a benchmark's: without what the library appends for its clock and iterations."""
    rest = name.removeprefix(prefix)
    for suffix in ("/real_time", "/manual_time", "/iterations:1"):
        rest = rest.replace(suffix, "")
    return rest


def spread(each):
    if len(each["times"]) < 2:
        return 0.0
    low, _, high = statistics.quantiles(each["times"], n=4, method="inclusive")
    return (high - low) / each["median"]


def judge(race):
    """Adds the ratios and whether the bars are met: "met", "missed", "not decided", or None without bars."""
    by_role = {role: [one for one in race["contestants"] if one["role"] == role] for role in ("ours", "peer", "limit")}
    ours = by_role["ours"][0]
    best = min(by_role["peer"], key=lambda one: one["median"], default=None)
    limit = min(by_role["limit"], key=lambda one: one["median"], default=None)
    race["ours"], race["best"], race["limit"] = ours, best, limit
    race["to_best"] = ours["median"] / best["median"] if best else None
    race["to_limit"] = ours["median"] / limit["median"] if limit else None
    rivals = []
    race["verdict"] = "met" if race["bars"] else None
    for bar in race["bars"]:
        rival = next((one for one in race["contestants"] if one["name"] == bar["of"]), None) if bar["of"] else best
        if rival is None:
            race["verdict"] = "no peer"
            continue
        rivals.append(rival)
        bar["measured"] = ours["median"] / rival["median"]
        if bar["measured"] > bar["ratio"]:
            race["verdict"] = "missed"
    race["spread"] = max(spread(one) for one in [ours, *(rivals or [one for one in (best, limit) if one])])
    if race["spread"] > UNDECIDED and race["verdict"] in ("met", "missed"):
        race["verdict"] = "not decided"


def growth(races):
    """For each operation with sizes: the exponent that fits time ~ size ^ exponent best."""
    exponents = {}
    for operation in dict.fromkeys(race["operation"] for race in races):
        points = [(math.log(race["size"]), math.log(race["ours"]["median"]))
                  for race in races if race["operation"] == operation and race["size"]]
        if len({x for x, _ in points}) >= 3:
            exponents[operation] = statistics.linear_regression(*zip(*points)).slope
    return exponents


def duration(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def row(race):
    def times(role):
        return ", ".join(f"{one['name']} {duration(one['median'])}"
                         for one in race["contestants"] if one["role"] == role) or "-"

    def ratio(value):
        return f"{value:.2f}" if value is not None else "-"

    bars = ", ".join(f"≤ {bar['ratio']:g} × {bar['of'] or 'best peer'}" for bar in race["bars"])
    return (race["operation"], race["input"], duration(race["ours"]["median"]), times("peer"), times("limit"),
            ratio(race["to_best"]), ratio(race["to_limit"]), f"{bars}: {race['verdict']}" if bars else "-",
            f"{race['ours']['allocations']:.3g}", f"{race['spread']:.0%}")


MEMORY_COLUMNS = ("most memory held at once", "input", "ours", "others", "to limit", "ours for each of the size")


def memory(races):
    """Of the races with sizes: the bytes that were asked for and not given back, at their most."""
    rows = []
    for race in races:
        ours, *others = [(each["name"], each["peak_bytes"]) for each in race["contestants"]]
        if not race["size"] or ours[1] == 0:
            continue
        limit = race["limit"]["peak_bytes"] if race["limit"] else 0
        rows.append((race["operation"], race["input"], f"{ours[1]:,.0f}",
                     ", ".join(f"{name} {peak:,.0f}" for name, peak in others) or "-",
                     f"{ours[1] / limit:.2f}" if limit else "-", f"{ours[1] / race['size']:.3g}"))
    return rows


def machine():
    model = next((line.split(":", 1)[1].strip() for line in Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines()
                  if line.startswith("model name")), "an unknown processor")
    cores = subprocess.run(["nproc"], capture_output=True, text=True, check=True).stdout.strip()
    compiler = subprocess.run(["g++", "--version"], capture_output=True, text=True, check=True).stdout.splitlines()[0]
    return f"{datetime.now(timezone.utc):%Y-%m-%d}, {cores} cores of {model}, {compiler}"


def markdown(races, exponents, about):
    if not races:
        return f"Measured {about}.\n"
    lines = [f"Measured {about}.", "", "| " + " | ".join(COLUMNS) + " |", "|" + "---|" * len(COLUMNS)]
    lines += ["| " + " | ".join(cell.replace("|", "\\|") for cell in row(race)) + " |" for race in races]
    if exponents:
        lines += ["", "| operation | time grows with the size to the power of |", "|---|---|"]
        lines += [f"| {operation} | {exponent:.2f} |" for operation, exponent in exponents.items()]
    if held := memory(races):
        lines += ["", "| " + " | ".join(MEMORY_COLUMNS) + " |", "|" + "---|" * len(MEMORY_COLUMNS)]
        lines += ["| " + " | ".join(line) + " |" for line in held]
    return "\n".join(lines) + "\n"


def text(races, exponents, about):
    if not races:
        return about
    lines = aligned([COLUMNS, *map(row, races)])
    lines += [f"{operation}: time ~ size ^ {exponent:.2f}" for operation, exponent in exponents.items()]
    if held := memory(races):
        lines += ["", *aligned([MEMORY_COLUMNS, *held])]
    return "\n".join([about, *lines])


def aligned(rows):
    widths = [max(map(len, column)) for column in zip(*rows)]
    return ["  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip() for line in rows]


def put(document, table):
    """Replaces what stands between the markers."""
    whole = document.read_text(encoding="utf-8")
    if BEGIN not in whole or END not in whole:
        sys.exit(f"bench: {document} needs the lines {BEGIN} and {END} around the table")
    before, after = whole.split(BEGIN)[0], whole.split(END)[1]
    document.write_text(f"{before}{BEGIN}\n{table}{END}{after}", encoding="utf-8")


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("program", type=Path)
    options.add_argument("--results", type=Path, required=True, help="folder for results.json and results.md")
    options.add_argument("--only", default="", help="only operations whose name has this in it")
    options.add_argument("--repetitions", type=int, default=9)
    options.add_argument("--footprint", type=Path, metavar="FOLDER",
                         help="also measure the programs in FOLDER; as an operation it is called \"footprint\"")
    options.add_argument("--brief", action="store_true", help="small inputs, once and for a moment: does it still run?")
    options.add_argument("--document", type=Path, help="put the table between the markers in this file, too")
    given = options.parse_args()

    program = [given.program, "--brief"] if given.brief else [given.program]
    races = [race for race in listed(program) if given.only in race["operation"]]
    costs = given.footprint and given.only in "footprint"
    if not races and not costs:
        sys.exit(f"bench: no operation has \"{given.only}\" in its name")
    for race in races:
        print(f"bench: {race['operation']}, {race['input']}", file=sys.stderr)
        run(program, race, *((1, 0.001) if given.brief else (given.repetitions, 0.05)))
        judge(race)
    exponents, about = growth(races), machine()
    given.results.mkdir(parents=True, exist_ok=True)
    table, shown = markdown(races, exponents, about), text(races, exponents, about)
    results = {"machine": about, "races": races, "growth": exponents}
    if costs:
        print("bench: footprint", file=sys.stderr)
        results["footprint"] = footprint.measured(given.footprint, *((1,) if given.brief else ()))
        table += "\n" + footprint.markdown(results["footprint"])
        shown += "\n\n" + footprint.text(results["footprint"])
    (given.results / "results.md").write_text(table, encoding="utf-8")
    (given.results / "results.json").write_text(
        json.dumps(results, indent=1, ensure_ascii=False), encoding="utf-8")
    print(shown)
    if given.document:
        put(given.document, table)
    missed = any(race["verdict"] == "missed" for race in races) or (costs and footprint.missed(results["footprint"]))
    return 1 if missed and not given.brief else 0


if __name__ == "__main__":
    sys.exit(main())
