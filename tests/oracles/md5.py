"""MD5 digests by Python's hashlib: for each line of hexadecimal bytes, the digest of all of them, a blank, and that of
those before the first NUL."""
import hashlib
import sys

for line in sys.stdin:
    data = bytes.fromhex(line)
    digests = (hashlib.md5(part).hexdigest() for part in (data, data.partition(b"\0")[0]))
    print(*digests)
