#!/usr/bin/python3
"""What the component costs before it is of any use: bytes, the start of a process, the libraries that it loads.

Usage: footprint.py FOLDER    prints it for the programs of bench/footprint that were built into FOLDER
"""

import os
import random
import re
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

RUNS = 50
LARGEST_CODE = 96 * 1024

# What the "text" column of size(1) adds up; all that is read-only and is none of these is the dynamic linker's.
PARTS = {
    "code": {".text", ".init", ".fini", ".plt", ".plt.got", ".plt.sec"},
    "constants": {".rodata"},
    "unwinding": {".eh_frame", ".eh_frame_hdr", ".gcc_except_table"},
}

# What is started, largest last, and what that program is.
STARTS = {
    "tavlo_start_empty": "an empty program",
    "tavlo_start_rooms": "the rooms alone",
    "tavlo_start_full": "host and Linux platform",
}


def output_of(*command, **environment):
    return subprocess.run(command, check=True, capture_output=True, text=True, env={**os.environ, **environment})


def size_of(program):
    """The bytes that the program's file has read-only, as size(1) counts them: in all, and what they are."""
    lines = output_of("size", "--format=sysv", program).stdout.splitlines()
    sections = {fields[0]: int(fields[1]) for fields in map(str.split, lines) if len(fields) == 3 and fields[0][0] == "."}
    total = int(output_of("size", "--format=berkeley", program).stdout.splitlines()[1].split()[0])
    parts = {part: sum(sections.get(name, 0) for name in names) for part, names in PARTS.items()}
    return {"text": total, **parts, "linking": total - sum(parts.values())}


def symbols_of(program):
    """The names that the program defines, C++ ones readable, and the bytes of each, the biggest first."""
    lines = output_of("nm", "--print-size", "--size-sort", "--reverse-sort", "--demangle", program).stdout.splitlines()
    fields = (line.split(maxsplit=3) for line in lines)
    return [(name, int(size, 16)) for _, size, _, name in fields]


def biggest(program, count=10):
    """A line for each of the program's biggest symbols."""
    return [f"{size:6} {name[:100]}" for name, size in symbols_of(program)[:count]]


def operations_of(program):
    return sorted({match[1] for name, _ in symbols_of(program)
                   if (match := re.match(r"tavlo::TavloUtility::(\w+)(?:\[abi:cxx11\])?\([^{}]*\)$", name))})


def start(program, arguments):
    """Nanoseconds from posix_spawn to the program's end, those of its processors, and what it printed."""
    reading, writing = os.pipe()
    begin = time.perf_counter_ns()
    child = os.posix_spawn(program, [program, *arguments], os.environ, file_actions=[
        (os.POSIX_SPAWN_DUP2, writing, 1), (os.POSIX_SPAWN_CLOSE, writing), (os.POSIX_SPAWN_CLOSE, reading)])
    _, status, used = os.wait4(child, 0)
    elapsed = time.perf_counter_ns() - begin
    os.close(writing)
    with os.fdopen(reading, encoding="ascii") as printed:
        text = printed.read().strip()
    if status != 0:
        sys.exit(f"footprint: {program} ended with status {os.waitstatus_to_exitcode(status)}")
    return elapsed, (used.ru_utime + used.ru_stime) * 1e9, int(text) if text else None


def loaded_by(program, arguments):
    """The shared objects that the program loaded by its end, whether linked or opened later."""
    log = output_of(program, *arguments, LD_DEBUG="files").stderr
    paths = re.findall(r"calling init: (\S+)", log)
    return sorted({Path(path).name for path in paths} - {"ld-linux-x86-64.so.2", "ld-linux-aarch64.so.1"})


def linked_by(program):
    """The shared objects that the program cannot start without, without the dynamic linker itself."""
    names = (Path(line.split()[0]).name for line in output_of("ldd", program).stdout.splitlines())
    return sorted(name for name in names if not name.startswith(("linux-vdso", "ld-linux")))


def starts_of(folder, runs):
    """For each program that was built: its medians, in nanoseconds, and its shared objects."""
    programs = [name for name in STARTS if (folder / name).exists()]
    with tempfile.TemporaryDirectory(prefix="tavlo-start-") as container:
        arguments = {name: [container] if name == "tavlo_start_full" else [] for name in programs}
        starts = {name: {"what": STARTS[name], "linked": linked_by(folder / name),
                         "loaded": loaded_by(folder / name, arguments[name])} for name in programs}
        order = programs * runs
        random.Random(1).shuffle(order)
        measured = {name: [] for name in programs}
        for name in order:
            measured[name].append(start(folder / name, arguments[name]))
    for name, each in starts.items():
        elapsed, processor, first = zip(*measured[name])
        each["elapsed"], each["processor"] = statistics.median(elapsed), statistics.median(processor)
        each["spread"] = spread(elapsed)
        each["first_request"] = None if first[0] is None else statistics.median(first)
    return starts


def spread(times):
    low, middle, high = statistics.quantiles(times, n=4, method="inclusive") if len(times) > 1 else (1, 1, 1)
    return (high - low) / middle


def measured(folder, runs=RUNS):
    """All of it. Without "size" where the compiler is another one than that of the figures."""
    smallest = folder / "tavlo_smallest"
    footprint = {"starts": starts_of(folder, runs)}
    if smallest.exists():
        footprint["size"] = {**size_of(smallest), "largest_code": LARGEST_CODE}
    return footprint


def markdown(footprint):
    lines = []
    if "size" in footprint:
        size = footprint["size"]
        lines += ["| the rooms, -Os, stripped | bytes |", "|---|---|",
                  f"| code | {size['code']:,} (≤ {size['largest_code']:,}: {verdict(size)}) |"]
        lines += [f"| {part} | {size[part]:,} |" for part in ("constants", "unwinding", "linking")]
        lines += [f"| all that is read-only, as size(1) adds it up | {size['text']:,} |"]
        lines.append("")
    lines += ["| a process with | elapsed | spread | processor | first request | objects loaded | linked |",
              "|---|---|---|---|---|---|---|"]
    for each in footprint["starts"].values():
        lines.append(f"| {each['what']} | {' | '.join(cells(each))} |")
    return "\n".join(lines) + "\n"


def text(footprint):
    lines = []
    if "size" in footprint:
        size = footprint["size"]
        parts = ", ".join(f"{part} {size[part]:,}" for part in ("constants", "unwinding", "linking"))
        lines.append(f"the rooms, -Os, stripped: code {size['code']:,} bytes (≤ {size['largest_code']:,}: "
                     f"{verdict(size)}), {parts}, all that is read-only {size['text']:,}")
    for each in footprint["starts"].values():
        elapsed, spread_, processor, first, loaded, linked = cells(each)
        lines.append(f"a process with {each['what']}: {elapsed} from start to end (spread {spread_}), {processor} of "
                     f"processor, first request {first}, {loaded} shared objects loaded, {linked} of them linked")
        lines.append(f"  {' '.join(each['loaded'])}")
    return "\n".join(lines)


def missed(footprint):
    return "size" in footprint and verdict(footprint["size"]) == "missed"


def verdict(size):
    return "met" if size["code"] <= size["largest_code"] else "missed"


def cells(each):
    first = "-" if each["first_request"] is None else f"{each['first_request'] / 1e3:.1f} µs"
    return (f"{each['elapsed'] / 1e6:.2f} ms", f"{each['spread']:.0%}", f"{each['processor'] / 1e6:.2f} ms", first,
            str(len(each["loaded"])), str(len(each["linked"])))


def main(arguments):
    if len(arguments) != 1 or not (Path(arguments[0]) / "tavlo_start_empty").exists():
        print(__doc__, file=sys.stderr)
        return 2
    print(text(measured(Path(arguments[0]))))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
