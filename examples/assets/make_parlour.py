#!/usr/bin/env python3
# SPDX-License-Identifier: Zlib
"""Writes parlour.gltf and parlour.bin, the corner of a room with a television set, and the pictures planks.png, wallpaper.png and
walnut.png, beside this file. Sizes are in feet; the back wall is at z = 0, z runs toward the viewer."""

import math
import os
import random
import struct
import sys
import zlib

FOLDER = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(FOLDER, "../../games/lantern_walk/assets"))

import gltf  # noqa: E402
from gltf import Mesh, Model  # noqa: E402

LEFT, RIGHT, FRONT, HIGH = -4.2, 5.4, 11.0, 9.6
SET, TURN = (0.1, 2.02, 2.2), math.radians(-12)  # where the television stands, and how it is turned


def save_picture(name, width, height, pixel):
    """`pixel` maps (column, row) to (r, g, b), 0 to 1."""
    rows = b""
    for row in range(height):
        rows += b"\0" + bytes(max(0, min(255, round(255 * c))) for column in range(width) for c in pixel(column, row))

    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

    with open(os.path.join(FOLDER, name + ".png"), "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)) +
                   chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def grain(seed, side):
    """Streaks along the columns that fit together at the edges: a number from -1 to 1 for (column, row)."""
    chance = random.Random(seed)
    waves = [(chance.randint(1, 3), chance.randint(4, 24), chance.uniform(0, 6.28), chance.uniform(0.3, 1)) for _ in range(9)]
    whole = sum(w[3] for w in waves)

    def value(column, row):
        x, y = 2 * math.pi * column / side, 2 * math.pi * row / side
        return sum(a * math.sin(u * x + v * y + p + 0.8 * math.sin(x)) for u, v, p, a in waves) / whole
    return value


def make_pictures():
    streak, tones = grain(1, 64), [0.92, 1.06, 0.85, 1.0]

    def planks(column, row):
        plank = row // 16
        tone = tones[plank] + 0.16 * streak(column + 23 * plank, row)
        joint = row % 16 == 0 or (column + 29 * plank) % 64 == 0
        return [c * tone * (0.55 if joint else 1.0) for c in (0.66, 0.43, 0.27)]

    fine = grain(5, 64)
    save_picture("planks", 64, 64, planks)
    save_picture("walnut", 64, 64, lambda c, r: [k * (1 + 0.26 * fine(c, r)) for k in (0.56, 0.33, 0.20)])

    def wallpaper(column, row):
        # Stripes, and leaves between them that stand in for each other by half a height.
        x, y = column % 32, (row + 32 * (column // 32)) % 64
        shade = 0.93 if x < 3 else 1.0
        leaf = max(1 - (((abs(x - 17.5) - 5) / 4.5) ** 2 + ((y - 30 - 0.7 * abs(x - 17.5)) / 8) ** 2), 0)
        stalk = abs(x - 17.5) < 1 and 16 < y < 50
        bud = (x - 17.5) ** 2 + (y - 14) ** 2 < 14
        base = [c * shade for c in (0.50, 0.63, 0.60)]
        if bud:
            return (0.86, 0.60, 0.42)
        return [c * (0.76 if leaf > 0.1 or stalk else 1.0) for c in base]

    save_picture("wallpaper", 64, 64, wallpaper)


class Placed(Mesh):
    """A mesh whose corners are turned about y and moved when they are added; sides of boxes share none, so edges are sharp."""

    def __init__(self, material, at=(0, 0, 0), turn=0.0):
        super().__init__(material)
        self.at, self.turn, self.faces = at, turn, 0

    def corner(self, place, uv):
        x, y, z = place
        sine, cosine = math.sin(self.turn), math.cos(self.turn)
        return super().corner((self.at[0] + x * cosine + z * sine, self.at[1] + y, self.at[2] + z * cosine - x * sine), uv)

    def sheet(self, origin, right, up, columns=1, rows=1, scale=0.5, sharp=True):
        """A parallelogram, lit by its own corners alone; `scale` repeats of its picture a unit, None: the picture once."""
        self.faces += 8 if sharp else 0
        wide, tall = [math.sqrt(sum(v * v for v in side)) for side in (right, up)]
        across, high = (1, 1) if scale is None else (wide * scale, tall * scale)
        self.grid(columns, rows, lambda c, r: tuple(o + u * c / columns + v * r / rows for o, u, v in zip(origin, right, up)),
                  lambda c, r: (self.faces + across * c / columns, high * (1 - r / rows)))

    def box(self, center, size, taper=1.0, scale=0.5, without=""):
        """`taper`: how much of its width and height the back has; `without`: sides that nobody sees."""
        (cx, cy, cz), (sx, sy, sz) = center, [s / 2 for s in size]
        f = [(cx + i * sx, cy + j * sy, cz + sz) for i, j in ((-1, -1), (1, -1), (1, 1), (-1, 1))]
        b = [(cx + i * sx * taper, cy + j * sy * taper, cz - sz) for i, j in ((-1, -1), (1, -1), (1, 1), (-1, 1))]
        sides = {"front": f, "right": [f[1], b[1], b[2], f[2]], "left": [b[0], f[0], f[3], b[3]],
                 "top": [f[3], f[2], b[2], b[3]], "bottom": [b[0], b[1], f[1], f[0]], "back": b[::-1]}
        for name, corners in sides.items():
            if name in without:
                continue
            self.faces += 8
            wide, tall = [math.dist(corners[0], corners[i]) * scale for i in (1, 3)]
            self.face(*[(c, (self.faces + wide * u, tall * (1 - v))) for c, (u, v) in zip(corners, ((0, 0), (1, 0), (1, 1), (0, 1)))])


def lathe(mesh, sides, profile, center, axis="y"):
    """As Mesh.turned, also about z, for knobs."""
    if axis == "y":
        return mesh.turned(sides, profile, center)

    def place(column, row):
        angle = 2 * math.pi * column / sides
        radius, depth, _ = profile[row]
        return (center[0] + radius * math.cos(angle), center[1] + radius * math.sin(angle), center[2] + depth)
    mesh.grid(sides, len(profile) - 1, place, lambda c, r: (c / sides, profile[r][2]))


def add_room(model, root):
    floor = Placed(model.material("floor", (0.86, 0.80, 0.78), "planks"))
    floor.sheet((LEFT, 0, FRONT), (RIGHT - LEFT, 0, 0), (0, 0, -FRONT), 12, 14, 0.4)
    model.node("floor", floor, parent=root)
    paper = Placed(model.material("wall", (0.94, 0.94, 0.92), "wallpaper"))
    paper.sheet((LEFT, 2.0, 0), (RIGHT - LEFT, 0, 0), (0, HIGH - 2, 0), 12, 8, 0.75)
    paper.sheet((LEFT, 2.0, FRONT), (0, 0, 3.9 - FRONT), (0, HIGH - 2, 0), 8, 8, 0.75)
    paper.sheet((LEFT, 2.0, 1.3), (0, 0, -1.3), (0, HIGH - 2, 0), 2, 8, 0.75)
    paper.sheet((LEFT, 2.0, 3.9), (0, 0, -2.6), (0, 1.2, 0), 3, 2, 0.75)
    paper.sheet((LEFT, 6.6, 3.9), (0, 0, -2.6), (0, HIGH - 6.6, 0), 3, 2, 0.75)
    model.node("wall", paper, parent=root)
    wood = Placed(model.material("panel", (0.86, 0.80, 0.78), "walnut"))
    wood.sheet((LEFT, 0, 0.06), (RIGHT - LEFT, 0, 0), (0, 2.0, 0), 14, 3, 0.5)
    wood.sheet((LEFT + 0.06, 0, FRONT), (0, 0, -FRONT), (0, 2.0, 0), 14, 3, 0.5)
    for y, deep in ((2.0, 0.2), (0.22, 0.16)):
        wood.sheet((LEFT, y - 0.18, deep), (RIGHT - LEFT, 0, 0), (0, 0.18, 0), 14, 1)
        wood.sheet((LEFT, y, deep), (RIGHT - LEFT, 0, 0), (0, 0, -deep), 14, 1)
        wood.sheet((LEFT + deep, y - 0.18, FRONT), (0, 0, -FRONT), (0, 0.18, 0), 14, 1)
        wood.sheet((LEFT + deep, y, FRONT), (0, 0, -FRONT), (-deep, 0, 0), 14, 1)
    model.node("panels", wood, parent=root)


def add_window(model, root):
    night = Placed(model.material("night", (0.80, 0.84, 1.0), "sky", unlit=True))
    night.sheet((LEFT - 0.5, 3.0, 4.4), (0, 0, -3.6), (0, 3.8, 0), scale=None)
    model.node("night", night, parent=root)
    moon = Placed(model.material("moon", (1, 1, 1), "moon", 0.999, True))
    moon.sheet((LEFT - 0.4, 5.2, 2.9), (0, 0, -1.0), (0, 1.0, 0), scale=None)
    model.node("moon", moon, parent=root)
    frame = Placed(model.material("frame", (0.80, 0.72, 0.66), "walnut"))
    for z in (1.3, 2.6, 3.9):
        frame.box((LEFT, 4.9, z), (0.36, 3.5, 0.16), without="back left")
    for y in (3.2, 4.9, 6.6):
        frame.box((LEFT + (0.14 if y < 4 else 0), y, 2.6), (0.64 if y < 4 else 0.36, 0.16, 2.8), without="back left")
    model.node("frame", frame, parent=root)
    cloth = Placed(model.material("curtain", (0.72, 0.30, 0.28)))
    for z0, z1, hang in ((0.75, 1.75, 0.35), (3.5, 4.5, -0.35)):
        folds = 10
        cloth.faces += 8

        def place(column, row):
            part = column / folds
            pinch = (0.0, 0.55, 0.15)[row]  # gathered below the middle
            z = z1 + (z0 - z1) * part
            z += pinch * ((z0 if hang > 0 else z1) - z)
            return (LEFT + 0.22 + 0.12 * (column % 2), (2.5, 3.9, 7.0)[row], z)
        cloth.grid(folds, 2, place, lambda c, r: (cloth.faces + c, r))
    model.node("curtains", cloth, parent=root)
    rod = Placed(model.material("brass", (0.84, 0.62, 0.30)))
    rod.box((LEFT + 0.28, 7.05, 2.6), (0.09, 0.09, 4.2), without="left bottom")
    model.node("rod", rod, parent=root)


def add_television(model, root):
    walnut = model.material("walnut", (0.94, 0.84, 0.78), "walnut")
    board = Placed(walnut, (SET[0], 0, SET[2] - 0.2))
    board.box((0.0, 1.86, 0.0), (5.0, 0.16, 2.1), without="bottom back")
    board.box((0.0, 1.2, 0.0), (4.7, 1.16, 1.9), without="bottom back top")
    for i in (-1, 0, 1):
        board.box((1.55 * i, 1.2, 0.97), (1.42, 0.94, 0.06), without="bottom back")
    for x in (-2.1, 2.1):
        for z in (-0.7, 0.8):
            board.box((x, 0.32, z), (0.2, 0.64, 0.2), without="bottom back top")
    model.node("board", board, parent=root)
    brass = model.material("knob", (0.92, 0.72, 0.36))
    knobs = Placed(brass, (SET[0], 0, SET[2] - 0.2))
    for i in (-1, 0, 1):
        lathe(knobs, 6, [(0.09, 0.0, 0), (0.09, 0.1, 0.5), (0.0, 0.13, 1)], (1.55 * i, 1.46, 1.0), "z")
    model.node("handles", knobs, parent=root)

    case = Placed(walnut, (SET[0], SET[1], SET[2]), TURN)
    case.box((0, 1.24, -0.75), (2.9, 2.1, 1.1), 0.72, without="bottom front")
    case.box((0, 1.24, 0.05), (3.1, 2.3, 0.6), without="bottom back front")
    # Its face is a frame around the picture tube, wider to the right, where the knobs are.
    outer, inner = (-1.55, 1.55, 0.09, 2.39), (-1.36, 0.78, 0.32, 2.18)
    z = 0.35
    for x0, x1, y0, y1 in ((outer[0], outer[1], inner[3], outer[3]), (outer[0], outer[1], outer[2], inner[2]),
                           (outer[0], inner[0], inner[2], inner[3])):
        case.sheet((x0, y0, z), (x1 - x0, 0, 0), (0, y1 - y0, 0))
    for x in (-1.1, 1.1):
        case.box((x, 0.0, 0.1), (0.2, 0.2, 0.9), without="bottom back")
    model.node("case", case, parent=root)
    dark = Placed(model.material("plate", (0.30, 0.25, 0.24)), SET, TURN)
    dark.sheet((inner[1], inner[2], z), (outer[1] - inner[1], 0, 0), (0, inner[3] - inner[2], 0), 2, 4)
    model.node("plate", dark, parent=root)
    trim = Placed(model.material("trim", (0.90, 0.84, 0.70)), SET, TURN)
    x0, x1, y0, y1 = inner
    for low, high in (((x0, y0), (x1, y0)), ((x1, y0), (x1, y1)), ((x1, y1), (x0, y1)), ((x0, y1), (x0, y0))):
        along = (high[0] - low[0], high[1] - low[1])
        length = math.hypot(*along)
        nx, ny = -along[1] / length * 0.1, along[0] / length * 0.1
        trim.faces += 8
        trim.face(*[(p, (trim.faces, 0)) for p in ((low[0], low[1], z + 0.06), (high[0], high[1], z + 0.06),
                                                   (high[0] + nx, high[1] + ny, z - 0.12), (low[0] + nx, low[1] + ny, z - 0.12))])
    for i in range(7):  # the loudspeaker
        trim.box((1.17, 0.52 + 0.1 * i, z + 0.02), (0.52, 0.045, 0.05), without="back")
    model.node("trim", trim, parent=root)
    dials = Placed(brass, SET, TURN)
    for y, radius in ((1.86, 0.21), (1.38, 0.15)):
        lathe(dials, 10, [(radius, 0.0, 0), (radius, 0.12, 0.5), (0.8 * radius, 0.17, 0.6), (0.0, 0.18, 1)], (1.17, y, z), "z")
        dials.box((1.17, y, z + 0.2), (0.06, 1.5 * radius, 0.06), without="back")
    for side in (-1, 1):  # the aerial
        dials.faces += 8
        foot, tip = (0.06 * side, 2.44, -0.3), (0.95 * side, 4.0, -0.5)
        for w in ((0.03, 0, 0), (0, 0, 0.03)):
            pairs = [tuple(f - v for f, v in zip(foot, w)), tuple(f + v for f, v in zip(foot, w)),
                     tuple(f + v for f, v in zip(tip, w)), tuple(f - v for f, v in zip(tip, w))]
            dials.face(*[(p, (dials.faces, 0)) for p in pairs])
        lathe(dials, 6, [(0.0, -0.07, 0), (0.07, 0.0, 0.5), (0.0, 0.07, 1)], tip)
    lathe(dials, 8, [(0.3, 0.0, 0), (0.24, 0.14, 0.5), (0.0, 0.18, 1)], (0, 2.36, -0.3))
    model.node("dials", dials, parent=root)

    # The tube bulges; its material waits for the film and is lit by nothing. A picture of a film begins with its upper row.
    tube = Placed(model.material("screen", (1, 1, 1), unlit=True), SET, TURN)
    x0, x1, y0, y1 = x0 + 0.08, x1 - 0.08, y0 + 0.08, y1 - 0.08

    def place(column, row):
        u, v = 2 * column / 6 - 1, 2 * row / 6 - 1
        return (x0 + (x1 - x0) * (u + 1) / 2, y0 + (y1 - y0) * (v + 1) / 2, z - 0.1 + 0.12 * (1 - u * u) * (1 - v * v) ** 0.5)
    tube.grid(6, 6, place, lambda c, r: (c / 6, r / 6))
    model.node("screen", tube, parent=root)


def add_lamp(model, root):
    foot = (2.75, 0.0, 0.75)
    iron = Placed(model.material("iron", (0.62, 0.48, 0.30)), foot)
    lathe(iron, 10, [(0.62, 0.0, 0), (0.58, 0.1, 0.2), (0.09, 0.2, 0.4), (0.05, 0.4, 0.5), (0.05, 5.2, 1)], (0, 0, 0))
    model.node("stand", iron, parent=root)
    shade = Placed(model.material("shade", (1.0, 0.80, 0.50), "paper", unlit=True), foot)
    lathe(shade, 12, [(1.05, 4.5, 0.9), (0.62, 5.8, 0.1)], (0, 0, 0))
    model.node("shade", shade, parent=root)
    glow = Placed(model.material("lampGlow", (1.0, 0.72, 0.40), "glow", 0.55, True), (foot[0], 5.1, foot[2] + 1.2), math.radians(8))
    glow.quad(2.3)
    model.node("lampGlow", glow, parent=root, radius=0)


def add_things(model, root):
    rings = (("cream", (0.86, 0.74, 0.58), 0.0, 0.7), ("rust", (0.66, 0.28, 0.22), 0.7, 1.9), ("border", (0.86, 0.74, 0.58), 1.9, 2.2),
             ("hem", (0.32, 0.24, 0.36), 2.2, 2.6))
    for name, color, inner, outer in rings:
        rug = Placed(model.material(name, color), (0.3, 0.03, 5.6))
        rows = 1 if outer - inner < 1 else 2

        def place(column, row):
            angle, radius = 2 * math.pi * column / 24, outer + (inner - outer) * row / rows
            return (1.25 * radius * math.sin(angle), 0, radius * math.cos(angle))
        rug.grid(24, rows, place, lambda c, r: (c / 24, r))
        model.node(name, rug, parent=root)
    picture = Placed(model.material("gilt", (0.86, 0.66, 0.34)))
    for x, y, w, h in ((0, 0.95, 2.3, 0.16), (0, -0.95, 2.3, 0.16), (-1.07, 0, 0.16, 1.8), (1.07, 0, 0.16, 1.8)):
        picture.box((-1.5 + x, 6.6 + y, 0.08), (w, h, 0.16), without="back")
    model.node("gilt", picture, parent=root)
    canvas = Placed(model.material("canvas", (0.9, 0.9, 0.9), "daysky"))
    canvas.sheet((-2.5, 5.7, 0.06), (2.0, 0, 0), (0, 1.8, 0), 3, 3, None)
    model.node("canvas", canvas, parent=root)
    books = (("red", (0.66, 0.24, 0.22)), ("blue", (0.26, 0.36, 0.56)), ("ochre", (0.80, 0.62, 0.30)))
    for i, (name, color) in enumerate(books):
        book = Placed(model.material("book" + name, color), (SET[0] - 2.1 + 0.03 * i, 1.94, SET[2] - 0.1), 0.15 * (i - 1))
        book.box((0, 0.1 + 0.19 * i, 0), (0.62, 0.18, 0.9 - 0.08 * i), without="bottom back")
        model.node("book" + name, book, parent=root)
    clay = Placed(model.material("clay", (0.72, 0.42, 0.30)), (SET[0] + 2.12, 1.94, SET[2] - 0.1))
    lathe(clay, 10, [(0.2, 0.0, 0), (0.32, 0.45, 0.5), (0.34, 0.5, 0.6), (0.26, 0.46, 1)], (0, 0, 0))
    model.node("pot", clay, parent=root)
    leaves = Placed(model.material("leaves", (0.36, 0.60, 0.34)), (SET[0] + 2.12, 2.38, SET[2] - 0.1))
    chance = random.Random(4)
    for i in range(11):
        angle, lean, length = i * 2.4, chance.uniform(0.25, 0.75), chance.uniform(0.7, 1.15)
        sine, cosine = math.sin(angle), math.cos(angle)
        points = [(0.0, 0.0, 0.05), (0.45, 0.6, 0.15), (1.0, 0.85, 0.0)]
        leaves.faces += 8
        corners = [((length * (lean * out * cosine) + side * wide * sine, length * up, length * (lean * out * sine) - side * wide * cosine),
                    (leaves.faces + out, side)) for out, up, wide in points for side in (-1, 1)]
        for quad in ((0, 1, 3, 2), (2, 3, 5, 4)):
            leaves.face(*[corners[j] for j in quad])
            leaves.face(*[(corners[j][0], (corners[j][1][0] + 4, corners[j][1][1])) for j in quad[::-1]])
    model.node("leaves", leaves, parent=root)


def add_cat(model, root):
    fur = model.material("fur", (0.50, 0.44, 0.46))
    at, turn = (-0.6, 0.05, 5.5), math.radians(8)
    body = Placed(fur, at, turn)
    lathe(body, 12, [(0.0, 0.0, 0), (0.62, 0.03, 0.1), (0.74, 0.3, 0.3), (0.62, 0.75, 0.5), (0.42, 1.2, 0.7), (0.32, 1.5, 1)], (0, 0, 0))
    lathe(body, 10, [(0.0, -0.38, 0), (0.34, -0.26, 0.2), (0.46, 0.0, 0.4), (0.40, 0.2, 0.6), (0.2, 0.36, 0.8), (0.0, 0.4, 1)],
          (0, 1.82, -0.08))
    for side in (-1, 1):
        lathe(body, 5, [(0.17, 0.0, 0), (0.0, 0.36, 1)], (0.25 * side, 2.1, -0.08))
    body.faces += 8
    tail = [(0.55, 0.1, 0.3), (0.95, 0.09, 0.42), (1.3, 0.1, 0.2), (1.42, 0.12, -0.15), (1.3, 0.14, -0.4)]
    steps, sides = len(tail) - 1, 6

    def place(column, row):
        x, y, z = tail[row]
        before, after = tail[max(row - 1, 0)], tail[min(row + 1, steps)]
        dx, dz = after[0] - before[0], after[2] - before[2]
        length, angle = math.hypot(dx, dz), 2 * math.pi * column / sides
        radius = 0.13 if row < steps else 0.02
        out = radius * math.cos(angle)
        return (x - dz / length * out, y + radius * math.sin(angle), z + dx / length * out)
    body.grid(sides, steps, place, lambda c, r: (body.faces + c, r))
    model.node("cat", body, parent=root)


def main():
    gltf.FOLDER = FOLDER
    make_pictures()
    model = Model()
    root = model.node("parlour")
    for add in (add_room, add_window, add_television, add_lamp, add_things, add_cat):
        add(model, root)
    model.save("parlour")
    print(sum(model.accessors[m["primitives"][0]["indices"]]["count"] // 3 for m in model.meshes), "triangles")


if __name__ == "__main__":
    main()
