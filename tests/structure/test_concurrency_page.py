#!/usr/bin/python3
"""Holds docs/concurrency.md to the code: it names everything that threads share, and nothing else."""

import re
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PAGE = "docs/concurrency.md"
FOLDERS = ("common", "platform", "request", "cache", "identity", "location", "resources", "host", "cli", "c",
           "objc")

SHARED = re.compile(
    r"(?:std::(?:recursive_|shared_|timed_)*mutex|std::condition_variable(?:_any)?|std::once_flag|dispatch_once_t|std::atomic_flag"
    r"|std::atomic<[^;]*>|(?<!processSlot)\bSlot<[\w:]+>)\s+(\w+)\s*(?:=|\{|;)"
    r"|\bthread_local\b[^;=({]*?(\w+)\s*(?:=|\{|;)"
    r"|using (\w+) = std::atomic<")
SLOT = re.compile(r"\bprocessSlot<((?:const )?[\w:]+)>\(\)")
PARAMETER = re.compile(r"(?:class|typename) (\w+)[,>]")
ROW = re.compile(r"^\| `([^`]+\.(?:h|cpp|mm))` `(\w+)` \|", re.MULTILINE)
SLOT_ROW = re.compile(r"^\| `processSlot<([^`]+)>` \|", re.MULTILINE)


def without_comments(code):
    return re.sub(r"//[^\n]*", "", code)


def shared_in(root, folders=FOLDERS):
    """What threads share: (file, name), and the types of process-wide slots."""
    members, slots = set(), set()
    for folder in folders:
        for path in sorted(Path(root, folder).rglob("*")):
            if path.suffix not in {".h", ".cpp", ".mm"}:
                continue
            code = without_comments(path.read_text(encoding="utf-8"))
            name = path.relative_to(root).as_posix()
            members |= {(name, next(filter(None, match.groups()))) for match in SHARED.finditer(code)}
            slots |= set(SLOT.findall(code)) - set(PARAMETER.findall(code))
    return members, slots


def complaints(page, root, folders=FOLDERS):
    members, slots = shared_in(root, folders)
    named, named_slots = set(ROW.findall(page)), set(SLOT_ROW.findall(page))
    return [*(f"{PAGE} lacks a row \"| `{file}` `{name}` |\": say who writes it, who reads it, what guards it"
              for file, name in sorted(members - named)),
            *(f"{PAGE} has a row for {file} {name}, which is gone" for file, name in sorted(named - members)),
            *(f"{PAGE} lacks a row \"| `processSlot<{slot}>` |\"" for slot in sorted(slots - named_slots)),
            *(f"{PAGE} has a row for processSlot<{slot}>, which is gone" for slot in sorted(named_slots - slots))]


class Check(unittest.TestCase):
    def complaintsAbout(self, code, page):
        with tempfile.TemporaryDirectory() as root:
            Path(root, "host").mkdir()
            Path(root, "host/A.h").write_text(code, encoding="utf-8")
            return complaints(page, root, ("host",))

    def test_FindsEveryKindOfSharedThing(self):
        for code, name in (("mutable std::mutex a_;", "a_"), ("std::shared_mutex a;", "a"),
                           ("std::condition_variable a_;", "a_"), ("std::atomic<bool> a_ = false;", "a_"),
                           ("std::atomic<std::uint64_t> a_{1};", "a_"), ("static std::once_flag once;", "once"),
                           ("thread_local bool isIn = false;", "isIn"), ("Slot<Menu> shown_;", "shown_"),
                           ("thread_local constinit std::array<char, 8> e{};", "e"),
                           ("using Owners = std::atomic<int>;", "Owners")):
            with self.subTest(code):
                self.assertEqual(self.complaintsAbout(code + "\n", ""),
                                 [f"{PAGE} lacks a row \"| `host/A.h` `{name}` |\": say who writes it, who reads it, "
                                  "what guards it"])
                self.assertEqual(self.complaintsAbout(code + "\n", f"| `host/A.h` `{name}` | x |\n"), [])

    def test_LocksAndCommentsAreNotShared(self):
        self.assertEqual(self.complaintsAbout("const std::lock_guard<std::mutex> lock_;\n// std::mutex a_;\n", ""), [])

    def test_SlotsAreNamedByTheirTypes(self):
        self.assertEqual(self.complaintsAbout("processSlot<const Image>().load();\n", ""),
                         [f"{PAGE} lacks a row \"| `processSlot<const Image>` |\""])
        self.assertEqual(self.complaintsAbout("processSlot<const Image>().load();\n", "| `processSlot<const Image>` |\n"), [])

    def test_ParameterOfATemplateIsNoSlot(self):
        self.assertEqual(self.complaintsAbout("template <class Role>\nauto a() { return processSlot<Role>(); }\n", ""), [])

    def test_RowOfWhatIsGoneIsAMistake(self):
        self.assertEqual(self.complaintsAbout("int a;\n", "| `host/A.h` `mutex_` | x |\n| `processSlot<A>` | x |\n"),
                         [f"{PAGE} has a row for host/A.h mutex_, which is gone",
                          f"{PAGE} has a row for processSlot<A>, which is gone"])


class Page(unittest.TestCase):
    def test_NamesEverythingThatThreadsShare(self):
        found = complaints(Path(ROOT, PAGE).read_text(encoding="utf-8"), ROOT)

        self.assertEqual(found, [], "\n" + "\n".join(found))


if __name__ == "__main__":
    unittest.main()
