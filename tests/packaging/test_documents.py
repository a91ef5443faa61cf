#!/usr/bin/python3
"""The manual page and the completions of shells, held against what the program's own --help says.

Usage: test_documents.py PROGRAM DOCUMENTS
"""

import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import shells

PROGRAM, DOCUMENTS = sys.argv.pop(1), Path(sys.argv.pop(1))
COMPLETIONS = {"bash": "tavlo", "fish": "tavlo.fish", "zsh": "_tavlo"}


class Help:
    """What --help of a command has, below its headings."""

    def __init__(self, words):
        text = subprocess.run([PROGRAM, *words[1:], "--help"], capture_output=True, text=True, check=True).stdout
        self.words = words
        self.commands = [word for word, _ in self.rows(text, "Subcommands")]
        self.options = [(word.split(",")[-1], words) for word, words in self.rows(text, "Options")]
        self.arguments = [word for word, _ in self.rows(text, "Positionals")]

    @staticmethod
    def rows(text, heading):
        """The first word of each row, and the text of its first column."""
        found = re.search(rf"^{heading}:\n((?:  .*\n)*)", text, re.MULTILINE)
        rows = re.findall(r"^  (\S.*?)(?:  .*)?$", found[1], re.MULTILINE) if found else []
        return [(row.split(" ")[0], row) for row in rows]

    def flags(self):
        return [name for name, _ in self.options]


def all_helps(words=("tavlo",)):
    own = Help(list(words))
    return [own] + [each for command in own.commands for each in all_helps([*words, command])]


HELPS = all_helps()
GLOBALS = HELPS[0].flags()


class Manual(unittest.TestCase):
    maxDiff = None
    PAGE = (DOCUMENTS / "tavlo.1").read_text(encoding="utf-8").replace("\\-", "-") if DOCUMENTS.exists() else ""

    def test_HasEveryCommandWithItsArgumentsAndOptionsAndNoOther(self):
        described = {}
        for part in re.split(r"^\.SS ", self.PAGE.partition("\n.SH ENVIRONMENT")[0], flags=re.MULTILINE)[1:]:
            words = re.match(r"((?:[a-z0-9-]+ ?)+?)(?: ?[\[A-Z].*)?\n", part)[1].strip()
            described[words] = (re.findall(r"^\.TP\n\.I (\S+)$", part, re.MULTILINE),
                                re.findall(r'^\.BI? "?(--[a-z-]+)', part, re.MULTILINE))

        self.assertEqual(described, {" ".join(help_.words): (help_.arguments, [
            name for name in help_.flags() if name != "--help"]) for help_ in HELPS[1:]})

    def test_HasTheOptionsOfTheProgramAndNoOther(self):
        options = self.PAGE.partition("\n.SH OPTIONS\n")[2].partition("\n.SH ")[0]

        self.assertEqual(re.findall(r'^\.BI? "?(?:-\w, )?(--[a-z-]+)', options, re.MULTILINE), GLOBALS)

    def test_IsOfTheProgramsVersion(self):
        version = subprocess.run([PROGRAM, "--version"], capture_output=True, text=True, check=True).stdout.strip()

        self.assertEqual(self.PAGE.splitlines()[0], f'.TH TAVLO 1 "" "{version}" "User Commands"')

    @unittest.skipUnless(shutil.which("man"), "there is no man")
    def test_IsFormattedWithoutAWarning(self):
        done = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", DOCUMENTS / "tavlo.1"], capture_output=True,
                              text=True, env={"LC_ALL": "C.UTF-8", "MANWIDTH": "100", "PATH": "/usr/bin:/bin"})

        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("\n   tavlo cache put-list LIST FILE\n", done.stdout)
        self.assertIn("""\n         echo '{"package": {"page": "Home & News"}}' | tavlo request ad --session -\n""", done.stdout)


class Completions(unittest.TestCase):
    """Each shell is asked for real. A shell that is not there is skipped."""

    def offers(self, lines):
        """Compares what each shell offers with what the line says; of files there are two."""
        with tempfile.TemporaryDirectory() as folder:
            Path(folder, "session.json").touch()
            Path(folder, "folder").mkdir()
            for shell, ask in shells.SHELLS.items():
                if not shutil.which(shell):
                    continue
                answers = ask(DOCUMENTS / COMPLETIONS[shell], list(lines), folder)
                for (line, expected), offered in zip(lines.items(), answers, strict=True):
                    with self.subTest(shell=shell, line=line):
                        self.assertEqual({word.rstrip("/") for word in offered} - {"-h"}, set(expected))

    def test_OfferEveryCommandAndNoOther(self):
        self.offers({" ".join(help_.words) + " ": help_.commands for help_ in HELPS if help_.commands})

    def test_OfferEveryOptionAndNoOther(self):
        self.offers({" ".join(help_.words) + " --": {*help_.flags(), *GLOBALS} for help_ in HELPS})

    def test_OfferWordsToChooseFromAndFilesAndFolders(self):
        names, files = ["ad", "in-app", "user", "tracker"], ["session.json", "folder"]
        self.offers({
            "tavlo request ": names,
            "tavlo contract ": names,
            "tavlo contract --format ": ["table", "json", "markdown"],
            "tavlo image m": ["mute"],
            "tavlo cache list ": ["video", "interstitial"],
            "tavlo image ": ["volume", "mute"],
            "tavlo --color ": ["auto", "always", "never"],
            "tavlo request ad --session ": files,
            "tavlo request --session ": files,
            "tavlo cache sort ": files,
            "tavlo cache delete ": files,
            "tavlo image mute --out s": ["session.json"],
            "tavlo cache ls --container ": ["folder"],
        })

    def test_KnowWhereALineHasArrived(self):
        self.offers({
            "tavlo cache put-list ": ["video", "interstitial"],
            "tavlo cache put-list video ": ["session.json", "folder"],
            "tavlo --json --domain cache id set ": ["app", "optional", "security", "ApplicationId", "OptionalId", "SecurityKey"],
            "tavlo --domain=cache event l": ["list"],
            "tavlo id set app ": [],
            "tavlo --domain ": [],
            "tavlo cac": ["cache"],
            "tavlo cache c": ["clear"],
        })


if __name__ == "__main__":
    unittest.main()
