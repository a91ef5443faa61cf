#!/usr/bin/python3
"""Prints the software bill of materials of the program `tavlo`: the libraries that it is built from, as SPDX 2.3 in
JSON, to standard output.

Usage: scripts/sbom.py

The libraries are those that scripts/setup.sh installs for the product. Debian's package database says of each which
version it is, and its copyright file which licence it has; a shared library is listed as the package that holds it, a
library of headers alone as the package of its headers. The C and C++ runtimes are left out.

The same packages give the same text: its date is that of the last commit, or of SOURCE_DATE_EPOCH. SPDX is an
International Standard (ISO/IEC 5962), and tells apart what is linked when the program starts and what is built into it.
"""

import datetime
import json
import os
import re
import subprocess
import sys
import urllib.parse
import uuid
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
NO_ASSERTION = "NOASSERTION"
# Debian's names of licences whose names in SPDX are others.
SPDX_NAMES = {"BSD-2-clause": "BSD-2-Clause", "BSD-3-clause": "BSD-3-Clause", "Expat": "MIT", "expat": "MIT",
              **{name: name for name in ("Apache-2.0", "BSD-3-Clause", "CC0-1.0", "ISC", "MIT", "Zlib", "curl")},
              **{f"{kind}-{short}+": f"{kind}-{full}-or-later" for kind, short, full in (
                  ("GPL", "2", "2.0"), ("GPL", "3", "3.0"), ("LGPL", "2", "2.0"), ("LGPL", "2.1", "2.1"),
                  ("LGPL", "3", "3.0"))}}


def fail(message):
    sys.exit("sbom: " + message)


def output_of(*command):
    try:
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout
    except FileNotFoundError:
        fail(f"this is no Debian system: {command[0]} is missing")
    except subprocess.CalledProcessError as error:
        fail(f"{' '.join(command)}: {error.stderr.strip()}; run scripts/setup.sh")


def only_match(pattern, path):
    found = re.search(pattern, path.read_text(encoding="utf-8"))
    return found[1] if found else fail(f"{path}: expected {pattern}")


def linkage_of(development_packages):
    """The packages of their shared libraries, and those packages that are headers alone; each with how it is linked."""
    libraries = {package: [str(Path(path).resolve())
                           for path in output_of("dpkg-query", "--listfiles", package).splitlines()
                           if path.endswith(".so")] for package in development_packages}
    files = [file for library in libraries.values() for file in library]
    owners = [line.split(":")[0] for line in output_of("dpkg-query", "--search", *files).splitlines()]
    return {**{package: "STATIC_LINK" for package, files in libraries.items() if not files},
            **{package: "DYNAMIC_LINK" for package in owners}}


class Licences:
    """What copyright files in Debian's format for machines say, and the texts of licences that SPDX does not know."""

    def __init__(self, documents=Path("/usr/share/doc")):
        self.documents = documents
        self.texts = {}

    def of(self, package):
        """The licence of all files that have none of their own, and a remark."""
        path = self.documents / package / "copyright"
        text = path.read_text(encoding="utf-8") if path.exists() else ""
        paragraphs = [dict(re.findall(r"^([A-Za-z-]+):[ \t]*((?:.*\n?)(?:[ \t].*\n?)*)", paragraph, re.MULTILINE))
                      for paragraph in re.split(r"\n\s*\n(?=\S)", text + "\n")]
        if "/copyright-format/" not in paragraphs[0].get("Format", ""):
            return NO_ASSERTION, "the copyright file is not in the format for machines"
        bodies = {}  # by the licence's name; a later paragraph may have the text
        for paragraph in paragraphs:
            name, _, body = paragraph.get("License", "").partition("\n")
            bodies[name.strip()] = bodies.get(name.strip()) or body.strip()
        whole = next((paragraph["License"].splitlines()[0].strip() for paragraph in paragraphs
                      if paragraph.get("Files", "").split()[:1] == ["*"] and "License" in paragraph), None)
        if not whole or "," in whole:
            return NO_ASSERTION, "the copyright file names no licence of all files"
        words = re.split(r"\s+(and|or)\s+", whole, flags=re.IGNORECASE)
        declared = " ".join(word.upper() if word.lower() in ("and", "or") else self.spdx_name(word, package, bodies)
                            for word in words)
        others = sorted(set(bodies) - {whole, ""})
        return declared, ("of the whole source package, by its copyright file" +
                          (f", which names for some files: {'; '.join(others)}" if others else ""))

    def spdx_name(self, name, package, bodies):
        if name in SPDX_NAMES:
            return SPDX_NAMES[name]
        reference = "LicenseRef-" + re.sub(r"[^A-Za-z0-9.-]+", "-", f"{package}-{name}")
        self.texts[reference] = {"licenseId": reference, "name": name, "extractedText": bodies.get(name) or name}
        return reference


def described(package, licences):
    version, architecture, source = output_of(
        "dpkg-query", "--show", "--showformat=${Version}\n${Architecture}\n${source:Package} ${source:Version}",
        package).split("\n")
    declared, remark = licences.of(package)
    return {
        "SPDXID": "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", package),
        "name": package,
        "versionInfo": version,
        "supplier": "Organization: Debian",
        "sourceInfo": "built from the Debian source package " + source,
        "downloadLocation": NO_ASSERTION,
        "filesAnalyzed": False,
        "licenseConcluded": NO_ASSERTION,
        "licenseDeclared": declared,
        "licenseComments": remark,
        "copyrightText": NO_ASSERTION,
        "externalRefs": [{
            "referenceCategory": "PACKAGE-MANAGER",
            "referenceType": "purl",
            "referenceLocator": f"pkg:deb/debian/{package}@{urllib.parse.quote(version, safe='')}?arch={architecture}",
        }],
    }


def date():
    seconds = os.environ.get("SOURCE_DATE_EPOCH")
    if seconds is None:
        git = subprocess.run(["git", "-C", ROOT, "log", "-1", "--format=%ct"], capture_output=True, text=True)
        seconds = git.stdout.strip() or "0"
    return datetime.datetime.fromtimestamp(int(seconds), datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")


def main():
    if len(sys.argv) > 1:
        print(__doc__.strip(), file=sys.stdout if sys.argv[1] in ("-h", "--help") else sys.stderr)
        return 0 if sys.argv[1] in ("-h", "--help") else 2

    version = only_match(r"project\(Tavlo VERSION ([0-9.]+)", ROOT / "CMakeLists.txt")
    development = only_match(r"LIBRARIES=\(([^)]*)\)", ROOT / "scripts/setup.sh").split()
    linkage = linkage_of(development)
    licences = Licences()
    libraries = [described(package, licences) for package in sorted(linkage)]
    program = {"SPDXID": "SPDXRef-tavlo", "name": "tavlo", "versionInfo": version, "downloadLocation": NO_ASSERTION,
               "filesAnalyzed": False, "licenseConcluded": NO_ASSERTION, "licenseDeclared": NO_ASSERTION,
               "copyrightText": NO_ASSERTION}
    contents = {
        "packages": [program, *libraries],
        "relationships": [
            {"spdxElementId": "SPDXRef-DOCUMENT", "relationshipType": "DESCRIBES",
             "relatedSpdxElement": "SPDXRef-tavlo"},
            *({"spdxElementId": "SPDXRef-tavlo", "relationshipType": linkage[library["name"]],
               "relatedSpdxElement": library["SPDXID"]} for library in libraries)],
        "hasExtractedLicensingInfos": [licences.texts[name] for name in sorted(licences.texts)],
    }
    created = date()
    unique = uuid.uuid5(uuid.NAMESPACE_URL, created + json.dumps(contents, sort_keys=True))
    print(json.dumps({
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"tavlo-{version}",
        "documentNamespace": f"https://spdx.org/spdxdocs/tavlo-{version}-{unique}",
        "creationInfo": {"created": created, "creators": ["Tool: scripts/sbom.py"]},
        **contents,
    }, indent=2))
    return 0


if __name__ == "__main__":
    sys.exit(main())
