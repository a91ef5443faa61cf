#!/usr/bin/python3
"""The software bill of materials lists what the built program loads, and nothing else.

Usage: test_sbom.py PROGRAM READELF
"""

import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROGRAM, READELF = sys.argv.pop(1), sys.argv.pop(1)
ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "scripts"))
import sbom  # noqa: E402
RUNTIME = re.compile(r"lib(c|m|gcc_s|stdc\+\+)\.so\.\d+|ld-linux.*")


def output_of(*command, **environment):
    return subprocess.run(command, check=True, capture_output=True, text=True, env={**os.environ, **environment}).stdout


def packages_that_the_program_needs():
    needed = re.findall(r"\(NEEDED\)\s+Shared library: \[(.+)\]", output_of(READELF, "--wide", "--dynamic", PROGRAM))
    paths = dict(re.findall(r"(\S+) => (\S+)", output_of("ldd", PROGRAM)))
    # By the names of files alone: the database may know their folders under older names.
    files = ["*/" + Path(paths[name]).resolve().name for name in needed if not RUNTIME.fullmatch(name)]
    return {line.split(":")[0] for line in output_of("dpkg-query", "--search", *files).splitlines()}


class BillOfMaterials(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.text = output_of(ROOT / "scripts/sbom.py", SOURCE_DATE_EPOCH="1700000000")
        cls.bill = json.loads(cls.text)
        cls.packages = {package["SPDXID"]: package for package in cls.bill["packages"]}

    def related(self, relationship):
        return {self.packages[row["relatedSpdxElement"]]["name"] for row in self.bill["relationships"]
                if row["relationshipType"] == relationship and row["spdxElementId"] == "SPDXRef-tavlo"}

    def test_LinkedLibrariesAreThoseThatTheProgramNeeds(self):
        self.assertEqual(self.related("DYNAMIC_LINK"), packages_that_the_program_needs())

    def test_LibrariesOfHeadersAreListedAsBuiltIn(self):
        self.assertEqual(self.related("STATIC_LINK"), {"libcli11-dev", "nlohmann-json3-dev"})

    def test_EveryPackageIsRelatedAndNamedOnce(self):
        self.assertEqual(len(self.packages), len(self.bill["packages"]))
        self.assertEqual(sorted(row["relatedSpdxElement"] for row in self.bill["relationships"]),
                         sorted(self.packages))

    def test_VersionsAreThoseThatAreInstalled(self):
        listed = {package["name"]: package["versionInfo"] for package in self.bill["packages"][1:]}

        self.assertEqual(
            "".join(f"{name} {version}\n" for name, version in sorted(listed.items())),
            output_of("dpkg-query", "--show", "--showformat=${Package} ${Version}\n", *sorted(listed)))

    def test_DocumentHasWhatTheFormatRequires(self):
        self.assertEqual(self.bill["spdxVersion"], "SPDX-2.3")
        self.assertEqual(self.bill["dataLicense"], "CC0-1.0")
        self.assertEqual(self.bill["SPDXID"], "SPDXRef-DOCUMENT")
        self.assertEqual(self.bill["creationInfo"]["created"], "2023-11-14T22:13:20Z")
        for package in self.bill["packages"]:
            self.assertRegex(package["SPDXID"], r"^SPDXRef-[A-Za-z0-9.-]+$")
            self.assertEqual((package["downloadLocation"], package["filesAnalyzed"]), ("NOASSERTION", False))

    def test_LicencesAreDebiansInTheNamesOfTheFormat(self):
        licences = {package["name"]: package["licenseDeclared"] for package in self.bill["packages"]}

        self.assertEqual(licences["tavlo"], "NOASSERTION")
        self.assertEqual(licences["libcurl4"], "curl")
        self.assertEqual(licences["nlohmann-json3-dev"], "MIT")
        self.assertEqual(licences["libsqlite3-0"], "LicenseRef-libsqlite3-0-public-domain")
        referred = {name for licence in licences.values() for name in re.findall(r"LicenseRef-[A-Za-z0-9.-]+", licence)}
        self.assertEqual(referred, {info["licenseId"] for info in self.bill["hasExtractedLicensingInfos"]})

    def test_SamePackagesGiveTheSameText(self):
        self.assertEqual(output_of(ROOT / "scripts/sbom.py", SOURCE_DATE_EPOCH="1700000000"), self.text)

    def test_UsageAndTroubleAreToldOnStandardError(self):
        cases = {
            "no argument is known": (["--bogus"], {}, 2, "Usage: scripts/sbom.py\n"),
            "no Debian": ([], {"PATH": "/nowhere"}, 1, "sbom: this is no Debian system: dpkg-query is missing\n"),
        }
        for name, (arguments, environment, status, told) in cases.items():
            with self.subTest(name):
                done = subprocess.run(["/usr/bin/python3", "-B", ROOT / "scripts/sbom.py", *arguments],
                                      capture_output=True, text=True, env={**os.environ, **environment})

                self.assertEqual((done.returncode, done.stdout), (status, ""))
                self.assertIn(told, done.stderr)


MACHINE = "Format: https://www.example.org/copyright-format/1.0/\n\n"


class CopyrightFiles(unittest.TestCase):
    def test_LicenceIsThatOfAllFiles(self):
        cases = {
            "missing": (None, "NOASSERTION"),
            "for people": ("This package was made by somebody.\n\nLicense: GPL-2+\n", "NOASSERTION"),
            "none for all files": (MACHINE + "Files: a.c\nLicense: Expat\n", "NOASSERTION"),
            "beyond its grammar": (MACHINE + "Files: *\nLicense: Expat, or ISC\n", "NOASSERTION"),
            "known": (MACHINE + "Files: a.c\nLicense: ISC\n\nFiles: *\nLicense: Expat\n text\n", "MIT"),
            "a choice": (MACHINE + "Files: *\nLicense: LGPL-2.1+ or Expat\n", "LGPL-2.1-or-later OR MIT"),
            "its own": (MACHINE + "Files: *\nLicense: odd one\n", "LicenseRef-p-odd-one"),
        }
        for name, (text, licence) in cases.items():
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                Path(folder, "p").mkdir()
                if text is not None:
                    Path(folder, "p/copyright").write_text(text, encoding="utf-8")

                self.assertEqual(sbom.Licences(Path(folder)).of("p")[0], licence)

    def test_TextOfALicenceOfItsOwnIsListed(self):
        with tempfile.TemporaryDirectory() as folder:
            Path(folder, "p").mkdir()
            Path(folder, "p/copyright").write_text(
                MACHINE + "Files: *\nLicense: odd\n\nLicense: odd\n Do as you like.\n", encoding="utf-8")
            licences = sbom.Licences(Path(folder))

            self.assertEqual(licences.of("p"),
                             ("LicenseRef-p-odd", "of the whole source package, by its copyright file"))
            self.assertEqual(licences.texts, {"LicenseRef-p-odd": {
                "licenseId": "LicenseRef-p-odd", "name": "odd", "extractedText": "Do as you like."}})


if __name__ == "__main__":
    unittest.main()
