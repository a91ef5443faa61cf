"""Reads lines of JSON objects in hexadecimal; a line of each one's members, with the code points of the values."""

import json
import sys

for line in sys.stdin:
    address = json.loads(bytes.fromhex(line).decode("utf-8"))
    print(*(f"{key} {' '.join(str(ord(character)) for character in value)}" for key, value in address.items()))
