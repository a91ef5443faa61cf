"""Reads and writes settings files with the standard library.

show FILE   one line an entry, "key kind value", sorted by key
make FILE   a file with an entry of every kind that the library writes
"""
import datetime
import plistlib
import sys

ENTRIES = {
    "array": [1, "two", [3.5, b"\x00\xff"], {"four": 4}],
    "bytes": b"\x00\x01\xfe\xff",
    "date": datetime.datetime(2024, 2, 29, 12, 34, 56),
    "dict": {"": "empty key", "nested": {"deeper": [True, False]}},
    "double": 0.1,
    "emoji": "\U0001f600",
    "empty array": [],
    "empty dict": {},
    "false": False,
    "int": 42,
    "large": 2**64 - 1,
    "negative": -(2**63),
    "text": "caf\u00e9 & <tag>",
    "true": True,
    "uid": plistlib.UID(70000),
}


def main():
    command, path = sys.argv[1:]
    if command == "make":
        with open(path, "wb") as file:
            plistlib.dump(ENTRIES, file, fmt=plistlib.FMT_BINARY)
        return
    with open(path, "rb") as file:
        entries = plistlib.load(file, fmt=plistlib.FMT_BINARY)
    sys.stdout.reconfigure(encoding="utf-8")
    for key, value in sorted(entries.items()):
        print(key, type(value).__name__, repr(value))


if __name__ == "__main__":
    main()
