"""All bytes and all pairs of bytes, percent-encoded: a line each, the input in hexadecimal, a tab, the answer."""
import itertools
import sys
import urllib.parse

for length in (1, 2):
    for values in itertools.product(range(256), repeat=length):
        data = bytes(values)
        sys.stdout.write(f"{data.hex()}\t{urllib.parse.quote_from_bytes(data, safe='')}\n")
