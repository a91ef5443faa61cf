#!/usr/bin/python3
"""A second opinion on PNG files: makes them from samples, and says what each must decode to.

Usage: png.py kinds      each kind of image there is, in several sizes
       png.py damaged    files that are no image, or are one in spite of what is wrong with them
       png.py largest    images that just reach a limit; each is of one colour

Prints one line a file: its name, width, height, the file and its RGBA pixels in hexadecimal, or "- - FILE -" where it
is no image. Of the largest it prints one pixel.
"""

import itertools
import struct
import sys
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"
GRAY, RGB, PALETTE, GRAY_ALPHA, RGBA = 0, 2, 3, 4, 6
SAMPLES = {GRAY: 1, RGB: 3, PALETTE: 1, GRAY_ALPHA: 2, RGBA: 4}
DEPTHS = {GRAY: (1, 2, 4, 8, 16), RGB: (8, 16), PALETTE: (1, 2, 4, 8), GRAY_ALPHA: (8, 16), RGBA: (8, 16)}
SIZES = [(1, 1), (5, 3), (9, 17), (33, 2)]
# First column and row, and steps, of the seven passes.
PASSES = [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2)]


def chunk(kind, data=b""):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def head(width, height, depth=8, colours=RGBA, interlaced=0, compression=0, filters=0):
    return chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, depth, colours, compression, filters, interlaced))


def packed(samples, depth):
    """One row: its filter, none, and its samples, the first in the highest bits."""
    bits = "".join(f"{sample:0{depth}b}" for sample in samples)
    bits += "0" * (-len(bits) % 8)
    return b"\0" + int(bits, 2).to_bytes(len(bits) // 8, "big")


def rows_of(image, depth, interlaced):
    """image[y][x] is a tuple of samples."""
    passes = PASSES if interlaced else [(0, 0, 1, 1)]
    for left, top, across, down in passes:
        for row in image[top::down]:
            if row[left::across]:
                yield packed(itertools.chain(*row[left::across]), depth)


def palette(depth):
    return [((i * 37) % 256, (i * 91 + 5) % 256, 255 - i) for i in range(2 ** depth)]


def to_8_bits(sample, depth):
    return (sample * 255 * 2 + (2 ** depth - 1)) // (2 * (2 ** depth - 1))


def rgba(samples, depth, colours, transparent):
    if colours == PALETTE:
        index = samples[0]
        alpha = transparent[index] if transparent and index < len(transparent) else 255
        return (*palette(depth)[index], alpha)
    alpha = 0 if samples == transparent else 255
    eight = [to_8_bits(sample, depth) for sample in samples]
    if colours in (GRAY_ALPHA, RGBA):
        alpha = eight.pop()
    return (*(eight * 3 if len(eight) == 1 else eight), alpha)


def kind(depth, colours, size, interlaced, with_transparent):
    width, height = size
    top = 2 ** depth
    image = [[tuple((x * 7919 + y * 104729 + i * 31337 + (x * y) ** 2) % top for i in range(SAMPLES[colours]))
              for x in range(width)] for y in range(height)]
    file = SIGNATURE + head(width, height, depth, colours, interlaced)
    transparent = None
    if colours == PALETTE:
        file += chunk(b"PLTE", bytes(itertools.chain(*palette(depth))))
        if with_transparent:
            transparent = [200, 0, 100][:top]
            file += chunk(b"tRNS", bytes(transparent))
    elif with_transparent:
        transparent = image[height // 2][width // 2]
        file += chunk(b"tRNS", b"".join(struct.pack(">H", sample) for sample in transparent))
    file += chunk(b"IDAT", zlib.compress(b"".join(rows_of(image, depth, interlaced)))) + chunk(b"IEND")
    pixels = itertools.chain(*(rgba(samples, depth, colours, transparent) for row in image for samples in row))
    return file, bytes(pixels)


def kinds():
    for colours, depths in DEPTHS.items():
        for depth, size, interlaced in itertools.product(depths, SIZES, (0, 1)):
            for with_transparent in (False, True) if colours in (GRAY, RGB, PALETTE) else (False,):
                name = f"colours{colours}-depth{depth}-{size[0]}x{size[1]}"
                name += "-interlaced" * interlaced + "-transparent" * with_transparent
                yield name, size, *kind(depth, colours, size, interlaced, with_transparent)


ROWS = zlib.compress(b"\0\1\2\3\4")  # one pixel
PIXEL = b"\1\2\3\4"
BODY = chunk(b"IDAT", ROWS)
END = chunk(b"IEND")
ONE = SIGNATURE + head(1, 1) + BODY + END
BOMB = zlib.compress(bytes(64 << 20), 9)


def before_body(*chunks):
    return SIGNATURE + head(1, 1) + b"".join(chunks) + BODY + END


def wrong_checksum(file):
    return file[:-1] + bytes([file[-1] ^ 1])


SOUND = {
    "nothing-wrong": ONE,
    "more-after-the-end": ONE + b"more",
    "body-in-pieces": SIGNATURE + head(1, 1) + b"".join(chunk(b"IDAT", bytes([b])) for b in ROWS) + END,
    "unknown-chunk": before_body(chunk(b"abCd", b"x" * 1000)),
    "text-bomb": before_body(chunk(b"zTXt", b"key\0\0" + BOMB)),
    "many-texts": before_body(chunk(b"tEXt", b"key\0text") * 5000),
    "profile-bomb": before_body(chunk(b"iCCP", b"name\0\0" + BOMB)),
    "damaged-profile": before_body(wrong_checksum(chunk(b"iCCP", b"name"))),
    "a-few-more-data": SIGNATURE + head(1, 1) + chunk(b"IDAT", zlib.compress(b"\0\1\2\3\4" + bytes(100))) + END,
    "gamma": before_body(chunk(b"gAMA", struct.pack(">I", 1))),
    "text-after-the-body": SIGNATURE + head(1, 1) + BODY + chunk(b"zTXt", b"key\0\0" + BOMB) + END,
}
BROKEN = {
    "empty": b"",
    "signature-alone": SIGNATURE,
    "other-format": b"GIF89a" + ONE,
    "newlines-converted": ONE.replace(b"\r\n", b"\n"),
    "no-head": SIGNATURE + BODY + END,
    "second-head": SIGNATURE + head(1, 1) + head(1, 1) + BODY + END,
    "short-head": SIGNATURE + chunk(b"IHDR", b"\0\0\0\1") + BODY + END,
    "no-width": SIGNATURE + head(0, 1) + BODY + END,
    "no-height": SIGNATURE + head(1, 0) + BODY + END,
    "width-beyond-all": SIGNATURE + head(0xffffffff, 1) + BODY + END,
    "width-too-large": SIGNATURE + head(8193, 1) + chunk(b"IDAT", zlib.compress(bytes(8193 * 4 + 1))) + END,
    "height-too-large": SIGNATURE + head(1, 8193) + chunk(b"IDAT", zlib.compress(bytes(8193 * 5))) + END,
    "too-many-pixels": SIGNATURE + head(8192, 2049, 1, GRAY) + chunk(b"IDAT", zlib.compress(bytes(1025 * 2049))) + END,
    "huge-in-a-small-file": SIGNATURE + head(4096, 4096) + BODY + END,
    "depth-3": SIGNATURE + head(1, 1, 3) + BODY + END,
    "depth-of-other-colours": SIGNATURE + head(1, 1, 4, RGB) + BODY + END,
    "colours-1": SIGNATURE + head(1, 1, 8, 1) + BODY + END,
    "compression-1": SIGNATURE + head(1, 1, compression=1) + BODY + END,
    "filters-1": SIGNATURE + head(1, 1, filters=1) + BODY + END,
    "interlacing-2": SIGNATURE + head(1, 1, interlaced=2) + BODY + END,
    "no-palette": SIGNATURE + head(1, 1, 8, PALETTE) + chunk(b"IDAT", zlib.compress(b"\0\0")) + END,
    "unknown-chunk-that-matters": before_body(chunk(b"ABCD")),
    "no-body": SIGNATURE + head(1, 1) + END,
    "empty-body": SIGNATURE + head(1, 1) + chunk(b"IDAT") + END,
    "body-no-zlib": SIGNATURE + head(1, 1) + chunk(b"IDAT", b"abcdefgh") + END,
    "body-of-another-size": SIGNATURE + head(1, 2) + BODY + END,
    "body-wrong-at-its-end": SIGNATURE + head(1, 1) + chunk(b"IDAT", ROWS[:-1]) + END,
    "unknown-filter": SIGNATURE + head(1, 1) + chunk(b"IDAT", zlib.compress(b"\5\1\2\3\4")) + END,
    "data-bomb-behind-the-pixels": SIGNATURE + head(1, 1)
    + chunk(b"IDAT", zlib.compress(b"\0\1\2\3\4" + bytes(192 << 20), 9)) + END,
    "head-checksum": SIGNATURE + wrong_checksum(head(1, 1)) + BODY + END,
    "body-checksum": SIGNATURE + head(1, 1) + wrong_checksum(BODY) + END,
    "end-checksum": wrong_checksum(ONE),
    "no-end": SIGNATURE + head(1, 1) + BODY,
    "chunk-longer-than-the-file": SIGNATURE + head(1, 1) + b"\x7f\xff\xff\xfftEXt",
    "chunk-of-a-negative-length": SIGNATURE + head(1, 1) + b"\xff\xff\xff\xfftEXt",
}


# Size, depth, colours, level of compression; all samples are 0.
LARGEST = {
    "widest": ((8192, 1), 8, RGBA, 9),
    "highest": ((1, 8192), 8, RGBA, 9),
    "most-pixels": ((8192, 2048), 1, GRAY, 9),
    "most-tightly-packed": ((4096, 4096), 8, RGBA, 9),
    "longest-row-not-packed-at-all": ((8192, 2), 16, RGBA, 0),
}


def largest():
    for name, (size, depth, colours, level) in LARGEST.items():
        row = (size[0] * SAMPLES[colours] * depth + 7) // 8 + 1
        body = chunk(b"IDAT", zlib.compress(bytes(row * size[1]), level))
        pixel = bytes(3) + (b"\xff" if colours == GRAY else b"\0")
        yield name, size, SIGNATURE + head(*size, depth, colours) + body + END, pixel


def main(arguments):
    if arguments == ["kinds"]:
        for name, (width, height), file, pixels in kinds():
            print(name, width, height, file.hex(), pixels.hex())
    elif arguments == ["damaged"]:
        for name, file in SOUND.items():
            print(name, 1, 1, file.hex(), PIXEL.hex())
        for name, file in BROKEN.items():
            print(name, "-", "-", file.hex() or "-", "-")
    elif arguments == ["largest"]:
        for name, (width, height), file, pixel in largest():
            print(name, width, height, file.hex(), pixel.hex())
    else:
        print(__doc__, file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
