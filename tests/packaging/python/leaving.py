#!/usr/bin/python3
"""Ends while a callback runs on a thread of the library's. Usage: leaving.py MODULES LIBRARY"""

import atexit
import os
import sys
import tempfile
import threading

sys.path.insert(0, sys.argv[1])
import tavlo  # noqa: E402

begun, leaving = threading.Event(), threading.Event()


def fetch(_url):
    begun.set()
    leaving.wait()
    sum(range(3_000_000))  # Python would be gone by then
    os.write(1, b"fetched\n")
    return b""


def leave():
    """Runs before what the module has registered."""
    os.write(1, b"leaving\n")
    leaving.set()


sdk = tavlo.Tavlo(sys.argv[2])
atexit.register(leave)
with tempfile.TemporaryDirectory() as folder:
    sdk.install_platform(container=folder, url_data={"dataWithContentsOfURL": fetch})
    sdk.cachedBannerImage("http://h/a.png")
    begun.wait()
