#!/usr/bin/env python3
# SPDX-License-Identifier: Zlib
"""Writes the small pictures of the interface, flame.png, lantern.png and star.png, and wing.png, beside this file."""

import math
import os
import struct
import zlib

SIDE, FINE = 32, 4


def save(name, pixel):
    """`pixel` maps (x, y), from -1 to 1 and y upward, to (r, g, b, a); edges are smooth."""
    rows = b""
    for row in range(SIDE):
        rows += b"\0"
        for column in range(SIDE):
            total, weight = [0.0] * 3, 0.0
            for i in range(FINE * FINE):
                x = (column + (i % FINE + 0.5) / FINE) / SIDE * 2 - 1
                y = 1 - (row + (i // FINE + 0.5) / FINE) / SIDE * 2
                r, g, b, a = pixel(x, y)
                total = [t + c * a for t, c in zip(total, (r, g, b))]
                weight += a
            color = [t / weight if weight else c for t, c in zip(total, (0.3, 0.2, 0.2))]
            rows += bytes(round(255 * c) for c in (*color, weight / FINE ** 2))

    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

    with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), name + ".png"), "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", SIDE, SIDE, 8, 6, 0, 0, 0)) +
                   chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def flame(x, y):
    def inside(scale, foot):
        v = (y + foot) / scale
        if not -1 < v < 1:
            return False
        width = 0.55 * scale * math.sqrt(max(0, 1 - v * v)) * (1 - 0.45 * (v + 0.2))
        return abs(x) < width

    if inside(0.5, 0.35):
        return (1, 0.96, 0.72, 1)
    if inside(0.9, 0.02):
        return (1, 0.62 + 0.2 * -y, 0.16, 1)
    return (0, 0, 0, 0)


def lantern(x, y):
    if abs(y) > 0.66:
        return (0.36, 0.2, 0.16, 1) if abs(x) < (0.34 if abs(y) < 0.84 else 0.1) and abs(y) < 0.97 else (0, 0, 0, 0)
    if abs(x) > 0.74 * math.sqrt(1 - (y / 1.02) ** 2):
        return (0, 0, 0, 0)
    shade = 1 - 0.28 * abs(x) - (0.16 if round(y * 14) % 4 == 0 else 0)
    return (shade, 0.60 * shade, 0.22 * shade, 1)


def star(x, y):
    angle, radius = math.atan2(x, y - -0.06), math.hypot(x, y + 0.06)
    fold = abs((angle + math.pi / 5) % (2 * math.pi / 5) - math.pi / 5)
    # The edge runs from a tip to the next notch.
    tip, notch = (0.97, 0), (0.42 * math.cos(math.pi / 5), 0.42 * math.sin(math.pi / 5))
    px, py = radius * math.cos(fold), radius * math.sin(fold)
    side = (notch[0] - tip[0]) * (py - tip[1]) - (notch[1] - tip[1]) * (px - tip[0])
    return (1, 0.93 - 0.25 * radius, 0.5 - 0.2 * radius, 1) if side > 0 else (0, 0, 0, 0)


def wing(x, y):
    """The right wings of a moth, whose body is at the left edge."""
    u = (x + 1) / 2
    fore = math.hypot((u - 0.52) / 0.50, (y - 0.34 - 0.34 * u) / 0.42)
    hind = math.hypot((u - 0.36) / 0.38, (y + 0.42) / 0.44)
    if u < 0.07 and abs(y) < 0.62:
        return (0.42, 0.34, 0.36, 1)
    if min(fore, hind) > 1:
        return (0.8, 0.76, 0.8, 0)
    spot = math.hypot((u - 0.58) / 0.12, (y - 0.56) / 0.2)
    if fore <= 1 and spot < 1:
        return (0.30, 0.22, 0.34, 1) if spot > 0.5 else (0.98, 0.86, 0.56, 1)
    edge = fore if fore <= 1 else hind
    if edge > 0.84:
        return (0.60, 0.50, 0.58, 1)
    shade = 1.0 - 0.18 * edge - (0.10 if fore <= 1 and round(6 * fore) % 2 else 0)
    return (shade, 0.95 * shade, 0.93 * shade, 1)


if __name__ == "__main__":
    for icon in (flame, lantern, star, wing):
        save(icon.__name__, icon)
