#!/usr/bin/python3
"""Prints a header with its comments as Doxygen takes them. Usage: doxygen_filter.py HEADER

The comments are plain; what is ours and what Doxygen's is kept apart here. The banner of a file, and any comment with
columns, becomes text as it stands; the others become paragraphs, in which nothing is a command, a tag or a link of
Doxygen's own making. A comment that begins with "----" names a group and is left out, and so is one behind code.
"""

import re
import sys

COMMENT = re.compile(r"^( *)//( ?)(.*)$")
COLUMNS = re.compile(r"\S {3,}\S|^ {2,}\S")


def escaped(text):
    """Between backquotes is code; elsewhere nothing is special."""
    parts = [re.sub(r"([@\\&#%$<>\"])", r"\\\1", part) for part in text.split("`")]
    return "".join(part if i % 2 == 0 else f"<tt>{part}</tt>" for i, part in enumerate(parts))


def converted(block, indent, is_banner, name):
    """The lines of one comment, without their slashes."""
    if block[0].startswith("----") or block[0].startswith("clang-format "):
        return []
    if not is_banner and not any(COLUMNS.search(line) for line in block):
        return [f"{indent}/// {escaped(line)}" for line in block]
    brief, rest = block[0], block[1:]
    while rest and rest[0] and not brief.endswith((".", ":")):
        brief, rest = f"{brief} {rest[0]}", rest[1:]
    lines = ["/**", f"@file {name}"] if is_banner else ["/**"]
    lines += [f"@brief {escaped(brief)}", ""]
    if any(line.strip() for line in rest):
        lines += ["@verbatim", *(line.replace("*/", "* /") for line in rest), "@endverbatim"]
    return [*lines, "*/"]


def filtered(text, name):
    out, block, indent, is_first = [], [], "", True

    def flush():
        nonlocal block, is_first
        if block:
            out.extend(converted(block, indent, is_first, name))
            is_first, block = False, []

    for line in text.splitlines():
        comment = COMMENT.match(line)
        if comment:
            indent = comment[1]
            block.append(comment[3])
            continue
        flush()
        out.append(line)
    flush()
    return "\n".join(out) + "\n"


if __name__ == "__main__":
    path = sys.argv[1]
    with open(path, encoding="utf-8") as header:
        print(filtered(header.read(), path.split("include/tavlo/")[-1]), end="")
