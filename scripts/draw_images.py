#!/usr/bin/python3
"""Draws the images of the resource bundle: volume.png, a loudspeaker with waves, and mute.png, the same crossed out.

Usage: draw_images.py FOLDER    writes both into the folder, which must be there

White on a dark disc that lets what is under it shine through, so that they are seen on any video.
"""

import math
import struct
import sys
import zlib
from pathlib import Path

SIDE = 64
CENTRE = (SIDE / 2, SIDE / 2)
DISC_RADIUS = 31
DISC_OPACITY = 0.62

LOUDSPEAKER = [(14, 26.5), (21, 26.5), (31, 17.5), (31, 46.5), (21, 37.5), (14, 37.5)]
ROUNDING = 1.5
WAVES_CENTRE = (30, 32)
WAVES = [(9.5, math.radians(46)), (17, math.radians(46))]  # radius, half the angle
STROKE = 3.8
CROSS = ((15.5, 14), (49.5, 50))
CROSS_GAP = 3  # between the cross and what it covers


def to_segment(point, start, end):
    """The distance of a point to a line from start to end."""
    along = (end[0] - start[0], end[1] - start[1])
    off = (point[0] - start[0], point[1] - start[1])
    share = (off[0] * along[0] + off[1] * along[1]) / (along[0] ** 2 + along[1] ** 2)
    share = min(1, max(0, share))
    return math.dist(off, (along[0] * share, along[1] * share))


def to_polygon(point, corners):
    """The same to a polygon's edge, negative inside."""
    nearest, inside = math.inf, False
    for start, end in zip(corners, corners[1:] + corners[:1]):
        nearest = min(nearest, to_segment(point, start, end))
        if (start[1] > point[1]) != (end[1] > point[1]):
            crossing = start[0] + (point[1] - start[1]) / (end[1] - start[1]) * (end[0] - start[0])
            inside ^= crossing > point[0]
    return -nearest if inside else nearest


def to_arc(point, centre, radius, half_angle):
    """The same to an arc that opens to the right."""
    x, y = point[0] - centre[0], abs(point[1] - centre[1])
    if math.atan2(y, x) <= half_angle:
        return abs(math.hypot(x, y) - radius)
    return math.dist((x, y), (radius * math.cos(half_angle), radius * math.sin(half_angle)))


def covered(distance):
    """How much of a pixel lies inside a shape whose edge is this far away."""
    return min(1, max(0, 0.5 - distance))


def volume(point):
    shapes = [to_polygon(point, LOUDSPEAKER) - ROUNDING]
    shapes += [to_arc(point, WAVES_CENTRE, radius, angle) - STROKE / 2 for radius, angle in WAVES]
    return covered(min(shapes))


def mute(point):
    cross = to_segment(point, *CROSS) - STROKE / 2
    return max(covered(cross), volume(point) * (1 - covered(cross - CROSS_GAP)))


def pixel(point, glyph):
    """Gray and alpha of the glyph over the disc."""
    disc = covered(math.dist(point, CENTRE) - DISC_RADIUS) * DISC_OPACITY
    white = glyph(point)
    alpha = white + disc * (1 - white)
    return bytes([round(255 * white / alpha) if alpha else 0, round(255 * alpha)])


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(glyph):
    rows = bytearray()
    for y in range(SIDE):
        rows += b"\0" + b"".join(pixel((x + 0.5, y + 0.5), glyph) for x in range(SIDE))
    header = struct.pack(">IIBBBBB", SIDE, SIDE, 8, 4, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(bytes(rows), 9))
            + chunk(b"IEND", b""))


def main(arguments):
    if len(arguments) != 1 or not Path(arguments[0]).is_dir():
        print(__doc__, file=sys.stderr)
        return 2
    for glyph in (volume, mute):
        Path(arguments[0], f"{glyph.__name__}.png").write_bytes(png(glyph))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
