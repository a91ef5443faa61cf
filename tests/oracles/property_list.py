"""Python's own property lists and integers, as a second opinion.

decimal            lines "HIGH LOW": the decimal text of the 128-bit two's-complement integer
read               lines of hexadecimal binary property lists: each one's contents as text
write SEED COUNT   COUNT random lists: lines "HEX CONTENTS"

Contents are written without sharing and in the file's order: n, T, F, i<decimal>, r<bits>, d<bits of the
seconds since 2001>, t<UTF-8>, b<bytes>, u<index>, [item,...], {key=value,...}; bits, UTF-8 and bytes in
hexadecimal.
"""

import datetime
import plistlib
import random
import struct
import sys

EPOCH = datetime.datetime(2001, 1, 1)


def bits(number):
    return struct.pack(">d", number).hex()


def contents(value):
    if value is None:
        return "n"
    if value is True:
        return "T"
    if value is False:
        return "F"
    if isinstance(value, int):
        return f"i{value}"
    if isinstance(value, float):
        return "r" + bits(value)
    if isinstance(value, datetime.datetime):
        return "d" + bits((value - EPOCH).total_seconds())
    if isinstance(value, str):
        return "t" + value.encode().hex()
    if isinstance(value, bytes):
        return "b" + value.hex()
    if isinstance(value, plistlib.UID):
        return f"u{value.data}"
    if isinstance(value, list):
        return "[" + ",".join(map(contents, value)) + "]"
    return "{" + ",".join(f"{contents(k)}={contents(v)}" for k, v in value.items()) + "}"


def random_text(rng):
    alphabets = ["abc", "abc \u00e9\u65e5\U0001f600", "\x00\x7f\x80\u07ff\u0800\ud7ff\ue000\uffff\U0010ffff"]
    return "".join(rng.choices(rng.choice(alphabets), k=rng.choice([0, 1, 3, 3, 3, 14, 15, 16, 100])))


def random_scalar(rng):
    return rng.choice([
        lambda: None,
        lambda: rng.random() < 0.5,
        lambda: rng.choice([-1, 1]) * rng.getrandbits(rng.randrange(64)),
        lambda: rng.choice([-(1 << 63), (1 << 63) - 1, 1 << 63, (1 << 64) - 1, 255, 256, 65535, 65536, 1 << 32]),
        lambda: struct.unpack(">d", rng.randbytes(8))[0],
        lambda: rng.choice([0.0, 1.5, float("inf"), float("nan")]),  # no -0.0: the writer takes it for 0.0
        lambda: EPOCH + datetime.timedelta(seconds=rng.randrange(-60_000_000_000, 60_000_000_000) / 2),
        lambda: random_text(rng),
        lambda: rng.randbytes(rng.choice([0, 1, 1, 2, 14, 15, 16, 256])),
        lambda: plistlib.UID(rng.getrandbits(rng.randrange(65))),
    ])()


def random_graph(rng, depth, made):
    if made and rng.random() < 0.2:
        return rng.choice(made)
    if depth == 0 or rng.random() < 0.4:
        return random_scalar(rng)
    size = rng.choice([0, 1, 2, 3] if depth < 4 else [1, 2, 5, 14, 15, 16])
    if rng.random() < 0.5:
        value = [random_graph(rng, depth - 1, made) for _ in range(size)]
    else:
        value = {random_text(rng): random_graph(rng, depth - 1, made) for _ in range(size)}
    if depth <= 2:
        made.append(value)
    return value


def main(mode, *arguments):
    if mode == "decimal":
        for line in sys.stdin:
            high, low = map(int, line.split())
            print((high - (1 << 64) if high >> 63 else high) << 64 | low)
    elif mode == "read":
        for line in sys.stdin:
            print(contents(plistlib.loads(bytes.fromhex(line), fmt=plistlib.FMT_BINARY)))
    elif mode == "write":
        seed, count = arguments
        rng = random.Random(seed)
        for _ in range(int(count)):
            graph = random_graph(rng, 4, [])
            print(plistlib.dumps(graph, fmt=plistlib.FMT_BINARY, sort_keys=False).hex(), contents(graph))
    else:
        sys.exit(f"unknown mode {mode}")


main(*sys.argv[1:])
