"""Random texts and the integer that each begins with: a line each, the text in hexadecimal, a tab, the integer.

Usage: int_value.py COUNT SEED

Blanks and newlines, one sign, ASCII digits up to the first other character; 0 without a digit, and the nearest 32-bit
integer for one that is none."""
import random
import re
import sys
import unicodedata

# The separators of Unicode, and the control characters that break a line or jump in one.
BLANKS = "".join(chr(c) for c in range(0x110000) if unicodedata.category(chr(c)) in ("Zs", "Zl", "Zp")) + "\t\n\v\f\r\x85"
INTEGER = re.compile(rf"[{re.escape(BLANKS)}]*([+-]?[0-9]+)")
EDGES = [f"{sign}{around + off}" for sign in ("", "-", "+") for around in (0, 10, 2**31, 2**32, 2**63, 2**64, 10**19)
         for off in (-1, 0, 1, 7) if around + off >= 0]
OTHERS = ["", "", "", "+", "-", "--", "+-", "- ", "\0", "\u200b", "\ufeff", "\u0663", "\u0e51", "a", "e5", ".", ".9", ",000", "x1",
          "\u2212", "\U0001d7d8", "\x1c", "\x1f", "\x08", "\u180e", "0", "000", "00000000000000000000"]


def reading(text):
    match = INTEGER.match(text)
    return max(-2**31, min(2**31 - 1, int(match[1]))) if match else 0


def texts(count, source):
    for edge in EDGES:
        for _ in range(count // len(EDGES) // 4):
            yield source.choice(BLANKS) * source.randrange(3) + edge + source.choice(OTHERS)
    for _ in range(count - len(EDGES) * (count // len(EDGES) // 4)):
        number = source.choice([str(source.getrandbits(source.randrange(1, 70))), source.choice(EDGES), ""])
        before = source.choice([source.choice(OTHERS), source.choice(["", "-", "+"]), ""])
        parts = [before, number, source.choice(OTHERS)]
        yield "".join(source.choices(BLANKS, k=source.randrange(4))) + "".join(parts)


if __name__ == "__main__":
    for text in texts(int(sys.argv[1]), random.Random(int(sys.argv[2]))):
        print(text.encode().hex(), reading(text), sep="\t")
