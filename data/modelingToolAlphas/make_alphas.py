#!/usr/bin/env python3
"""Draws the brush alphas anew, beside this script: square TIFF pictures of one channel, 16 bits.

test3.tif is a scale with a keel: round in front (up), open at the back, so that a stroke whose stamp
turns with it lays scale over scale.
"""
import math
import pathlib
import struct

SIZE = 128


def smooth(low, high, value):
    share = max(0.0, min(1.0, (value - low) / (high - low)))
    return share * share * (3.0 - 2.0 * share)


def scale(x, y):
    """The height at a place of the square, -1 to 1 from left to right and from the bottom up."""
    width = 0.72 * math.sqrt(max(0.0, 1.0 - max(0.0, y / 0.85) ** 2))
    inside = smooth(0.0, 0.16, width - abs(x)) * smooth(-0.9, 0.5, y)
    keel = math.exp(-(x / 0.12) ** 2)
    return inside * (0.72 + 0.28 * keel)


def write(path, value):
    rows = bytearray()
    for row in range(SIZE):  # the top one first
        for column in range(SIZE):
            x = (column + 0.5) / SIZE * 2.0 - 1.0
            y = 1.0 - (row + 0.5) / SIZE * 2.0
            rows += struct.pack("<H", round(65535 * max(0.0, min(1.0, value(x, y)))))
    short, long_ = 3, 4
    entries = [(256, long_, SIZE), (257, long_, SIZE), (258, short, 16), (259, short, 1),
               (262, short, 1), (273, long_, 8), (277, short, 1), (278, long_, SIZE),
               (279, long_, len(rows))]
    directory = struct.pack("<H", len(entries))
    for tag, kind, number in entries:
        directory += struct.pack("<HHII", tag, kind, 1, number)
    directory += struct.pack("<I", 0)
    path.write_bytes(struct.pack("<2sHI", b"II", 42, 8 + len(rows)) + rows + directory)


if __name__ == "__main__":
    write(pathlib.Path(__file__).parent / "test3.tif", scale)
