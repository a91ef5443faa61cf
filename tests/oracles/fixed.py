"""Random doubles in fixed notation: a line each, the eight bytes in hexadecimal, a tab, what '%f' gives."""
import random
import struct
import sys

SPECIAL = [0.0, -0.0, 5e-324, -5e-324, 2.2250738585072014e-308, 1e308, -1e308, 1.7976931348623157e308,
           float("nan"), float("inf"), float("-inf"), 0.5e-6, 1.5e-6, 2.5e-6, -33.8688, 28.5, -0.12, 0.0000005]


def numbers(count, seed):
    yield from SPECIAL
    source = random.Random(seed)
    for index in range(count):
        if index % 2:
            yield source.uniform(-180, 180)
        else:
            yield struct.unpack(">d", source.randbytes(8))[0]


for number in numbers(int(sys.argv[1]), int(sys.argv[2])):
    print(struct.pack(">d", number).hex(), "%f" % number, sep="\t")
