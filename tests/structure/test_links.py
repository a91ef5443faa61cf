#!/usr/bin/python3
"""What the documents of the tree name is there: links, scripts, presets and legs."""

import json
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
LINK = re.compile(r"\[[^\]]*\]\(([^)#:\s]*)(#[^)\s]*)?\)")
SCRIPT = re.compile(r"(?:scripts/\w+\.(?:sh|py)|\.ci/run)")


def documents(root):
    listed = subprocess.run(["git", "-C", root, "ls-files", "-z", "*.md"], stdout=subprocess.PIPE, text=True)
    return [Path(root, name) for name in listed.stdout.split("\0") if name]


def anchors(text):
    """Those that a heading gets."""
    headings = re.findall(r"^#+ (.*)$", re.sub(r"^```.*?^```", "", text, flags=re.MULTILINE | re.DOTALL), re.MULTILINE)
    return {"#" + re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def dead_links(document, text):
    dead = []
    for path, anchor in LINK.findall(re.sub(r"^```.*?^```", "", text, flags=re.MULTILINE | re.DOTALL)):
        target = document.parent / path if path else document
        if not target.exists():
            dead.append(path)
        elif anchor and anchor not in anchors(target.read_text(encoding="utf-8")):
            dead.append(path + anchor)
    return dead


class Finding(unittest.TestCase):
    def test_LinksToFilesAndHeadingsThatAreNotThere(self):
        with tempfile.TemporaryDirectory() as folder:
            page = Path(folder, "a.md")
            page.write_text("# One two, three\n")

            self.assertEqual(dead_links(page, "[a](a.md) [b](b.md) [c](a.md#one-two-three) [d](a.md#four)"),
                             ["b.md", "a.md#four"])
            self.assertEqual(dead_links(page, "[a](https://h/x) ```\n```sh\n[b](b.md)\n```\n"), [])


class Documents(unittest.TestCase):
    def test_LinkToWhatIsThere(self):
        pages = documents(ROOT)
        if not pages:
            self.skipTest("this is no clone")
        for page in pages:
            with self.subTest(page=page.relative_to(ROOT).as_posix()):
                self.assertEqual(dead_links(page, page.read_text(encoding="utf-8")), [])

    def test_NameScriptsThatAreThere(self):
        for page in documents(ROOT):
            for script in SCRIPT.findall(page.read_text(encoding="utf-8")):
                with self.subTest(page=page.name, script=script):
                    self.assertTrue(Path(ROOT, script).exists())


class Contributing(unittest.TestCase):
    def setUp(self):
        self.page = Path(ROOT, "CONTRIBUTING.md").read_text(encoding="utf-8")

    def test_NamesEveryLeg(self):
        legs = set(re.search(r"LEGS=\(([^)]*)\)", Path(ROOT, ".ci/run").read_text(encoding="utf-8"))[1].split())
        on_demand = set(re.search(r"ON_DEMAND=\(([^)]*)\)", Path(ROOT, ".ci/run").read_text(encoding="utf-8"))[1].split())
        paragraph = re.search(r"The legs of `\.ci/run`:.*?\n\n", self.page, re.DOTALL)[0]

        named = set(re.findall(r"`(\w+)`", paragraph))

        self.assertEqual((legs | on_demand) - named, set())
        self.assertEqual(named - legs - on_demand, set())

    def test_NamesEveryPreset(self):
        presets = json.loads(Path(ROOT, "CMakePresets.json").read_text(encoding="utf-8"))["configurePresets"]
        table = self.page[:self.page.index("The legs of")]

        missing = [preset["name"] for preset in presets if not preset.get("hidden") and f"`{preset['name']}`" not in table]

        self.assertEqual(missing, [])


if __name__ == "__main__":
    unittest.main()
