#!/usr/bin/env python3
"""Draws the icons of the interactive tools anew, beside this script: 32 by 32 pixels, 24-bit BMP.

Shapes are filled by how much of a pixel they cover (8 by 8 samples), on the grey of a tool shelf.
"""
import math
import pathlib
import struct

SIZE, SAMPLES = 32, 8
SHELF = (68, 68, 68)


def polygon(points):
    def inside(x, y):
        result = False
        for (x1, y1), (x2, y2) in zip(points, points[1:] + points[:1]):
            if (y1 > y) != (y2 > y) and x < x1 + (y - y1) * (x2 - x1) / (y2 - y1):
                result = not result
        return result
    return inside


def stroke(points, width, closed=True):
    pairs = list(zip(points, points[1:] + points[:1] if closed else points[1:]))

    def inside(x, y):
        for (x1, y1), (x2, y2) in pairs:
            dx, dy = x2 - x1, y2 - y1
            share = max(0.0, min(1.0, ((x - x1) * dx + (y - y1) * dy) / (dx * dx + dy * dy)))
            if math.hypot(x - x1 - share * dx, y - y1 - share * dy) <= width / 2:
                return True
        return False
    return inside


def disc(cx, cy, radius):
    return lambda x, y: math.hypot(x - cx, y - cy) <= radius


def draw(shapes):
    rows = []
    for row in range(SIZE):
        pixels = []
        for column in range(SIZE):
            color = SHELF
            for inside, paint in shapes:
                hits = sum(inside(column + (i + 0.5) / SAMPLES, row + (j + 0.5) / SAMPLES)
                           for i in range(SAMPLES) for j in range(SAMPLES))
                share = hits / SAMPLES ** 2
                color = tuple(round(c + (p - c) * share) for c, p in zip(color, paint))
            pixels.append(color)
        rows.append(pixels)
    return rows


def write(path, rows):
    body = b"".join(bytes((b, g, r)) for row in reversed(rows) for r, g, b in row)
    header = struct.pack("<2sIHHI", b"BM", 54 + len(body), 0, 0, 54)
    info = struct.pack("<IiiHHIIiiII", 40, SIZE, SIZE, 1, 24, 0, len(body), 2835, 2835, 0, 0)
    path.write_bytes(header + info + body)


# A cube seen from above: its top pulled up, one corner picked, one edge in hand.
LEFT = [(5, 13), (16, 18), (16, 29), (5, 24)]
RIGHT = [(16, 18), (27, 13), (27, 24), (16, 29)]
TOP = [(5, 13), (16, 8), (27, 13), (16, 18)]
MODELING = [
    (polygon(LEFT), (108, 120, 134)),
    (polygon(RIGHT), (82, 92, 104)),
    (polygon(TOP), (86, 134, 214)),
    (stroke(LEFT, 1.0), (30, 34, 40)),
    (stroke(RIGHT, 1.0), (30, 34, 40)),
    (stroke(TOP, 1.0), (30, 34, 40)),
    (stroke([(5, 13), (16, 18)], 2.6, closed=False), (232, 66, 52)),
    (disc(27, 13, 3.1), (30, 34, 40)),
    (disc(27, 13, 2.4), (250, 220, 60)),
    (stroke([(16, 12), (16, 2.5)], 1.8, closed=False), (240, 240, 240)),
    (polygon([(16, 0.5), (12.4, 5.6), (19.6, 5.6)]), (240, 240, 240)),
]

# Two quads on a curved strip, the second being drawn: its last corner is still open.
FIRST = [(3, 12), (14, 8), (15, 21), (4, 26)]
SECOND = [(14, 8), (26, 7), (28, 20), (15, 21)]
QUAD = [
    (polygon(FIRST), (92, 104, 118)),
    (polygon(SECOND), (62, 122, 96)),
    (stroke(FIRST, 1.1), (24, 28, 32)),
    (stroke([(28, 20), (15, 21), (14, 8), (26, 7)], 1.6, closed=False), (120, 230, 150)),
    (stroke([(26, 7), (26.7, 11.4)], 1.6, closed=False), (120, 230, 150)),
    (stroke([(27.3, 15.4), (28, 20)], 1.6, closed=False), (120, 230, 150)),
] + [(disc(x, y, 2.3), (250, 220, 60)) for x, y in ((14, 8), (15, 21), (26, 7))] + [
    (disc(28, 20, 3.0), (240, 240, 240)),
    (disc(28, 20, 1.7), (62, 122, 96)),
]

if __name__ == "__main__":
    folder = pathlib.Path(__file__).resolve().parent
    write(folder / "advancedModelingToolContext.bmp", draw(MODELING))
    write(folder / "quadDrawContext.bmp", draw(QUAD))
